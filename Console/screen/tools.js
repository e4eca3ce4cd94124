// What stands below the picture: laser, windows, full screen, what fingers do.

import { text } from "../text/text.js";
import { byId, one } from "../ui/dom.js";

/** @typedef {import("../ui/note.js").Note} Note */

/**
 * The switch of the laser, and what says on every place that it is on.
 * @param {import("./laser.js").Laser} laser
 * @param {Note} note
 */
export function bindLaser(laser, note) {
  const [button, banner] = [byId("laser"), byId("laser-on")];
  button.addEventListener("click", () => note.attempt(() => laser.turn(!laser.on)));
  banner.addEventListener("click", () => note.attempt(() => laser.turn(false)));
  laser.addEventListener("change", () => {
    button.setAttribute("aria-pressed", String(laser.on));
    banner.hidden = !laser.on;
  });
}

/** @param {import("../settings/settings.js").Settings} settings */
export function bindMode(settings) {
  const button = byId("screen-mode");
  const show = () => {
    const direct = settings.values.screenMode === "direct";
    one(button, "span").textContent = text(direct ? "modeDirect" : "modeTrackpad");
    button.setAttribute("aria-pressed", String(!direct));
  };
  button.addEventListener("click", () => {
    settings.set("screenMode", settings.values.screenMode === "direct" ? "trackpad" : "direct");
  });
  settings.addEventListener("change", show);
  show();
}

/**
 * Brings the window in front to the display that `view` shows; one display needs no such thing.
 * @param {import("../connection/connection.js").Connection} connection
 * @param {import("../more/displays.js").DisplayList} displays
 * @param {import("./view.js").ScreenView} view
 * @param {Note} note
 */
export function bindWindow(connection, displays, view, note) {
  const button = byId("bring-window");
  let supported = false;
  const show = () => { button.hidden = !supported || displays.records.length < 2; };
  displays.addEventListener("change", show);
  connection.addEventListener("state", async () => {
    if (!connection.connected) return;
    supported = await connection.call("supportsWindowMove").catch(() => false) === true;
    show();
  });
  button.addEventListener("click", () => note.attempt(
    () => connection.call("moveWindowToDisplay", { display: view.display }), text("windowComes")));
}

/** The picture alone, with the tools behind a handle. Emits "change". */
export class FullScreen extends EventTarget {
  #panel;
  #handle = byId("tools-handle");
  #button = byId("full-screen");

  /** @param {HTMLElement} panel */
  constructor(panel) {
    super();
    this.#panel = panel;
    this.#button.addEventListener("click", () => this.isOpen ? this.close() : this.open());
    this.#handle.addEventListener("click", () =>
      this.#showTools(!document.body.classList.contains("tools-shown")));
    document.addEventListener("fullscreenchange", () => { if (!document.fullscreenElement) this.close(); });
  }

  get isOpen() {
    return document.body.classList.contains("full");
  }

  // Where the browser offers none of its own, the page's whole window is as much as there is.
  async open() {
    this.#become(true);
    try {
      await document.documentElement.requestFullscreen({ navigationUI: "hide" });
      await /** @type {any} */ (screen.orientation).lock("landscape");
    } catch {
      // not every device has one, or turns
    }
  }

  close() {
    if (!this.isOpen) return;
    this.#become(false);
    if (document.fullscreenElement) document.exitFullscreen().catch(() => {});
  }

  /** @param {boolean} on */
  #become(on) {
    document.body.classList.toggle("full", on);
    this.#handle.hidden = !on;
    this.#button.setAttribute("aria-pressed", String(on));
    this.#showTools(false);
    this.#panel.scrollTop = 0;
    this.dispatchEvent(new Event("change"));
  }

  /** @param {boolean} on */
  #showTools(on) {
    document.body.classList.toggle("tools-shown", on);
    this.#handle.setAttribute("aria-expanded", String(on));
  }
}
