// The applications panel: a grid to tap on, and a field that narrows it.

import { matches } from "./apps.js";
import { IconLoader } from "./icons.js";
import { Note } from "../ui/note.js";
import { characters } from "../keyboard/typing.js";

/** When to look whether an application has started: some take their time. */
const LOOK_AGAIN = [1500, 4000, 10_000];
/** Icons this far out of view are asked for too, so that slow scrolling meets them ready. */
const ICON_MARGIN = "120px";

const later = (delay) => new Promise((resolve) => setTimeout(resolve, delay));

export class AppView {
  #panel;
  #search;
  #grid;
  #nothing;
  #note;
  #apps;
  #connection;
  #icons;
  #inView;
  #tiles = new Map();

  constructor(panel, apps, connection) {
    this.#panel = panel;
    this.#search = panel.querySelector("input");
    this.#grid = panel.querySelector(".app-grid");
    this.#nothing = panel.querySelector(".nothing");
    this.#note = new Note(panel.querySelector(".outcome"));
    this.#apps = apps;
    this.#connection = connection;
    this.#icons = new IconLoader(connection);
    this.#inView = new IntersectionObserver((entries) => entries.forEach(
      ({ target, isIntersecting }) => this.#look(target.dataset.app, isIntersecting)),
    { root: panel, rootMargin: ICON_MARGIN });
    this.#listen();
  }

  get #visible() {
    return !this.#panel.hidden && !document.hidden;
  }

  #listen() {
    const refresh = () => {
      if (this.#visible && this.#connection.connected) this.#apps.refresh();
    };
    for (const source of [document, this.#panel]) source.addEventListener("visibilitychange", refresh);
    this.#connection.addEventListener("state", refresh);
    this.#nothing.querySelector("button").addEventListener("click", refresh);
    this.#apps.addEventListener("change", () => this.#show());
    this.#search.addEventListener("input", () => {
      this.#panel.scrollTop = 0;
      this.#narrow();
    });
    // There is nothing to send: the phone's keyboard makes room for the grid.
    this.#search.addEventListener("keydown", ({ key }) => { if (key === "Enter") this.#search.blur(); });
  }

  #show() {
    const { records, failure } = this.#apps;
    if (records && failure) this.#note.say(failure, true);
    const tiles = (records ?? []).map((record) => this.#tileOf(record));
    for (const [bundleId, tile] of this.#tiles) {
      if (!tiles.includes(tile)) this.#remove(bundleId, tile);
    }
    if (tiles.some(({ element }, index) => element !== this.#grid.children[index])) {
      const focused = document.activeElement;
      this.#grid.replaceChildren(...tiles.map(({ element }) => element));
      if (this.#grid.contains(focused)) focused.focus({ preventScroll: true });
    }
    this.#narrow();
  }

  #tileOf(record) {
    let tile = this.#tiles.get(record.bundleId);
    if (!tile) {
      tile = new Tile(record.bundleId, () => this.#launch(tile));
      this.#tiles.set(record.bundleId, tile);
      this.#inView.observe(tile.element);
    }
    tile.show(record);
    return tile;
  }

  #remove(bundleId, tile) {
    this.#inView.unobserve(tile.element);
    this.#icons.leave(bundleId);
    this.#tiles.delete(bundleId);
    tile.element.remove();
  }

  #look(bundleId, isInView) {
    const tile = this.#tiles.get(bundleId);
    if (!isInView) this.#icons.leave(bundleId);
    else if (tile && !tile.hasIcon) this.#icons.want(bundleId, (icon) => tile.showIcon(icon));
  }

  #narrow() {
    const search = this.#search.value.trim();
    let shown = 0;
    for (const { element, name } of this.#tiles.values()) {
      element.hidden = !matches(name, search);
      if (!element.hidden) shown++;
    }
    this.#showNothing(shown, search);
  }

  #showNothing(shown, search) {
    const { records, failure } = this.#apps;
    const lacking = !records || records.length === 0;
    const reason = failure ? `The applications could not be listed. ${failure}`
      : lacking ? "The computer names no applications." : `No application is called “${search}”.`;
    this.#nothing.hidden = shown > 0;
    this.#nothing.querySelector("p").textContent = shown > 0 ? "" : reason;
    this.#nothing.querySelector(".actions").hidden = !lacking;
  }

  async #launch(tile) {
    const { bundleId, name } = tile;
    tile.flash();
    this.#note.say(this.#apps.isRunning(bundleId) ? `${name} comes to the front.` : `Starting ${name}…`);
    try {
      await this.#apps.launch(bundleId);
    } catch (error) {
      this.#note.say(error.message, true);
      return;
    }
    for (const delay of LOOK_AGAIN) {
      await later(delay);
      if (!this.#visible || !this.#connection.connected) return;
      await this.#apps.refresh();
      if (this.#apps.isRunning(bundleId)) return;
    }
  }
}

/** One application in the grid: a button with an icon, a name and a mark when it is running. */
class Tile {
  element = document.createElement("li");
  hasIcon = false;
  name = "";
  #button = document.createElement("button");
  #icon = document.createElement("span");
  #label = document.createElement("span");
  #running = document.createElement("span");

  constructor(bundleId, onTap) {
    this.bundleId = bundleId;
    this.element.dataset.app = bundleId;
    this.#button.type = "button";
    this.#button.addEventListener("click", onTap);
    this.#icon.className = "app-icon";
    this.#icon.setAttribute("aria-hidden", true);
    this.#label.className = "app-name";
    this.#running.className = "unseen";
    this.#running.textContent = ", running";
    this.#button.append(this.#icon, this.#label, this.#running);
    this.element.append(this.#button);
  }

  show({ name, isRunning }) {
    this.name = name;
    this.#label.textContent = name;
    this.#button.title = name;
    this.#running.hidden = !isRunning;
    this.element.classList.toggle("running", isRunning);
  }

  /** An application without an icon gets its initial instead. */
  showIcon(base64) {
    this.hasIcon = true;
    if (!base64) {
      this.#drawInitial();
      return;
    }
    const image = document.createElement("img");
    image.alt = "";
    image.addEventListener("error", () => this.#drawInitial());
    image.src = `data:image/png;base64,${base64}`;
    this.#icon.classList.add("loaded");
    this.#icon.replaceChildren(image);
  }

  flash() {
    this.#icon.classList.remove("launched");
    // Read in between, or the animation would not start again.
    void this.#icon.offsetWidth;
    this.#icon.classList.add("launched");
  }

  #drawInitial() {
    this.#icon.classList.remove("loaded");
    this.#icon.classList.add("drawn");
    this.#icon.textContent = characters(this.name.trim())[0]?.toUpperCase() ?? "?";
  }
}
