// The applications panel: what is pinned, what runs, what was started last, and all; a field narrows it.

import { text } from "../text/text.js";
import { all, one } from "../ui/dom.js";
import { Note } from "../ui/note.js";
import { grouped, matches, withRecent } from "./apps.js";
import { IconLoader } from "./icons.js";
import { Tile } from "./tile.js";

/** When to look whether an application has started: some take their time. */
const LOOK_AGAIN = [1500, 4000, 10_000];
/** Icons this far out of view are asked for too, so that slow scrolling meets them ready. */
const ICON_MARGIN = "120px";

/** @typedef {import("./apps.js").AppRecord} AppRecord */

const later = (delay) => new Promise((resolve) => setTimeout(resolve, delay));

export class AppView {
  #panel;
  #list;
  #search;
  #nothing;
  #note;
  #apps;
  #connection;
  #settings;
  #icons;
  #inView;
  /** Each application's tiles by group and identifier. @type {Map<string, Tile>} */
  #tiles = new Map();
  /** @type {Map<Element, Tile>} */
  #byElement = new Map();

  /**
   * @param {HTMLElement} panel
   * @param {import("./apps.js").AppList} apps
   * @param {import("../connection/connection.js").Connection} connection
   * @param {import("../settings/settings.js").Settings} settings
   */
  constructor(panel, apps, connection, settings) {
    this.#panel = panel;
    this.#list = one(panel, ".app-list");
    this.#search = one(panel, "input", HTMLInputElement);
    this.#nothing = one(panel, ".nothing");
    this.#note = new Note(one(panel, ":scope > .outcome"));
    this.#apps = apps;
    this.#connection = connection;
    this.#settings = settings;
    this.#icons = new IconLoader(connection);
    this.#inView = new IntersectionObserver((entries) => entries.forEach(
      ({ target, isIntersecting }) => this.#look(target, isIntersecting)),
    { root: this.#list, rootMargin: ICON_MARGIN });
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
    one(this.#nothing, "button").addEventListener("click", refresh);
    this.#apps.addEventListener("change", () => this.#show());
    this.#settings.addEventListener("change", (event) => {
      if (["pinned", "recent"].includes(/** @type {CustomEvent} */ (event).detail)) this.#show();
    });
    this.#search.addEventListener("input", () => {
      this.#list.scrollTop = 0;
      this.#narrow();
    });
    // There is nothing to send: the phone's keyboard makes room for the grid.
    this.#search.addEventListener("keydown", ({ key }) => { if (key === "Enter") this.#search.blur(); });
  }

  #show() {
    const { records, failure } = this.#apps;
    if (records && failure) this.#note.say(failure, true);
    const groups = grouped(records ?? [], this.#settings.values);
    const kept = new Set();
    for (const group of all(this.#list, ".app-group")) {
      const name = /** @type {keyof import("./apps.js").Groups} */ (group.dataset.group);
      const tiles = groups[name].map((record) => this.#tileOf(name, record));
      for (const tile of tiles) kept.add(tile);
      fill(one(group, "ul"), tiles.map(({ element }) => element));
    }
    for (const [key, tile] of this.#tiles) {
      if (!kept.has(tile)) this.#remove(key, tile);
    }
    this.#narrow();
  }

  /** @param {string} group @param {AppRecord} record */
  #tileOf(group, record) {
    const key = `${group} ${record.bundleId}`;
    let tile = this.#tiles.get(key);
    if (!tile) {
      const made = new Tile(record.bundleId, () => this.#launch(made), () => this.#pin(made));
      tile = made;
      this.#tiles.set(key, tile);
      this.#byElement.set(tile.element, tile);
      this.#inView.observe(tile.element);
    }
    tile.show(record);
    return tile;
  }

  /** @param {string} key @param {Tile} tile */
  #remove(key, tile) {
    this.#inView.unobserve(tile.element);
    this.#byElement.delete(tile.element);
    this.#tiles.delete(key);
    tile.element.remove();
    if (![...this.#tiles.values()].some(({ bundleId }) => bundleId === tile.bundleId)) {
      this.#icons.leave(tile.bundleId);
    }
  }

  /** @param {Element} element @param {boolean} isInView */
  #look(element, isInView) {
    const tile = this.#byElement.get(element);
    if (!tile) return;
    tile.inView = isInView;
    const same = [...this.#tiles.values()].filter(({ bundleId }) => bundleId === tile.bundleId);
    if (!same.some((each) => each.inView)) {
      this.#icons.leave(tile.bundleId);
    } else if (isInView && !tile.hasIcon) {
      this.#icons.want(tile.bundleId, (icon) => same.forEach((each) => each.showIcon(icon)));
    }
  }

  #narrow() {
    const search = this.#search.value.trim();
    let shown = 0;
    for (const group of all(this.#list, ".app-group")) {
      // What is looked for is shown once.
      group.hidden = search !== "" && group.dataset.group !== "all";
      let some = false;
      for (const element of one(group, "ul").children) {
        const tile = this.#byElement.get(element);
        tile?.narrow(matches(tile.name, search));
        some ||= tile?.element.hidden === false;
        if (!group.hidden && tile?.element.hidden === false) shown++;
      }
      group.hidden ||= !some;
    }
    this.#showNothing(shown, search);
  }

  /** @param {number} shown @param {string} search */
  #showNothing(shown, search) {
    const { records, failure } = this.#apps;
    const lacking = !records || records.length === 0;
    this.#nothing.hidden = shown > 0;
    one(this.#nothing, "p").textContent = shown > 0 ? ""
      : failure ? text("appsUnlisted", { reason: failure })
        : lacking ? text("appsNone") : text("appsNotFound", { name: search });
    one(this.#nothing, ".actions").hidden = !lacking;
  }

  /** @param {Tile} tile */
  #pin({ bundleId, name }) {
    const { pinned, vibration } = this.#settings.values;
    const isPinned = pinned.includes(bundleId);
    this.#settings.set("pinned",
      isPinned ? pinned.filter((id) => id !== bundleId) : [...pinned, bundleId]);
    if (vibration) navigator.vibrate?.(25);
    this.#note.say(text(isPinned ? "appUnpinned" : "appPinned", { name }));
  }

  /** @param {Tile} tile */
  async #launch(tile) {
    const { bundleId, name } = tile;
    tile.flash();
    this.#note.say(text(this.#apps.isRunning(bundleId) ? "appComes" : "appStarts", { name }));
    try {
      await this.#apps.launch(bundleId);
    } catch (error) {
      this.#note.say(/** @type {Error} */ (error).message, true);
      return;
    }
    this.#settings.set("recent", withRecent(this.#settings.values.recent, bundleId));
    for (const delay of LOOK_AGAIN) {
      await later(delay);
      if (!this.#visible || !this.#connection.connected) return;
      await this.#apps.refresh();
      if (this.#apps.isRunning(bundleId)) return;
    }
  }
}

/** @param {HTMLElement} grid @param {Element[]} elements */
function fill(grid, elements) {
  if (grid.children.length === elements.length
    && elements.every((element, index) => element === grid.children[index])) return;
  const focused = /** @type {HTMLElement | null} */ (document.activeElement);
  grid.replaceChildren(...elements);
  if (grid.contains(focused)) focused?.focus({ preventScroll: true });
}
