// One place at a time: five that a thumb reaches, and those behind More.

import { all, byId } from "./dom.js";

const MAIN = ["touchpad", "screen", "media", "apps", "more"];
const FIRST = MAIN[0];

/**
 * Binds everything that leads somewhere (its place in data-place). A panel gets a "visibilitychange"
 * event when it is shown or hidden; "change" is emitted afterwards.
 */
export class Places extends EventTarget {
  current = "";
  #settings;

  /** @param {import("../settings/settings.js").Settings} settings */
  constructor(settings) {
    super();
    this.#settings = settings;
    for (const button of all(document, "[data-place]")) {
      button.addEventListener("click", () => this.show(button.dataset.place ?? FIRST));
    }
  }

  /** Shows the place where this device was last. */
  start() {
    const { place } = this.#settings.values;
    this.show(document.getElementById(`panel-${place}`) ? place : FIRST);
  }

  get isFirst() {
    return this.current === FIRST;
  }

  showFirst() {
    this.show(FIRST);
  }

  /** @param {string} place */
  show(place) {
    if (place === this.current) return;
    this.current = place;
    for (const panel of all(document, "main > section")) {
      panel.hidden = panel.id !== `panel-${place}`;
      panel.dispatchEvent(new Event("visibilitychange"));
    }
    const shown = MAIN.includes(place) ? place : "more";
    for (const name of MAIN) {
      const button = byId(`tab-${name}`);
      if (name === shown) button.setAttribute("aria-current", "page");
      else button.removeAttribute("aria-current");
    }
    document.body.dataset.place = place;
    this.#settings.set("place", place);
    this.dispatchEvent(new Event("change"));
  }
}
