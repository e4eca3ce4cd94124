// Modifier keys as a phone's Shift: a tap for the next key only, a second one at once to lock.

import { text } from "../text/text.js";

/** Two taps as close as this (ms) lock. */
const LOCK_WITHIN = 400;

/** @typedef {"once" | "locked"} Hold */

/** Emits "change" whenever `held`, the modifiers that are down and for how long, changes. */
export class Modifiers extends EventTarget {
  /** @type {Map<string, Hold>} */
  held = new Map();
  #connection;
  #queue;
  #tapped = { name: "", time: -Infinity };

  /**
   * @param {import("../connection/connection.js").Connection} connection
   * @param {import("./typing.js").TypingQueue} queue
   */
  constructor(connection, queue) {
    super();
    this.#connection = connection;
    this.#queue = queue;
    // The host lets go of what a lost connection held.
    connection.addEventListener("state", () => { if (!connection.connected) this.#clear(); });
  }

  /** Whether what is typed means keys and not text: Shift alone does not make it so. */
  get command() {
    return [...this.held.keys()].some((name) => name !== "shift");
  }

  /** @param {string} name @param {number} time in ms */
  tap(name, time) {
    if (!this.#connection.connected) return;
    const again = this.#tapped.name === name && time - this.#tapped.time < LOCK_WITHIN;
    this.#tapped = { name, time };
    if (again && this.held.get(name) === "once") {
      this.held.set(name, "locked");
    } else if (this.held.delete(name)) {
      this.#queue.hold(name, false);
    } else {
      this.held.set(name, "once");
      this.#queue.hold(name, true);
    }
    this.dispatchEvent(new Event("change"));
  }

  /** A key was pressed or a button clicked: what was meant for it alone is let go of. */
  used() {
    const once = [...this.held].filter(([, hold]) => hold === "once");
    for (const [name] of once) {
      this.held.delete(name);
      this.#queue.hold(name, false);
    }
    if (once.length > 0) this.dispatchEvent(new Event("change"));
  }

  releaseAll() {
    if (this.held.size === 0) return;
    this.#queue.letGo();
    this.#clear();
  }

  #clear() {
    if (this.held.size === 0) return;
    this.held.clear();
    this.dispatchEvent(new Event("change"));
  }
}

/**
 * Makes `button` (with the modifier's name in data-modifier) press that modifier and let go of it.
 * @param {HTMLElement} button
 * @param {Modifiers} modifiers
 * @param {(name: string) => string} nameOf
 */
export function bindModifier(button, modifiers, nameOf) {
  const name = button.dataset.modifier ?? "";
  const show = () => {
    const hold = modifiers.held.get(name);
    button.setAttribute("aria-pressed", String(hold !== undefined));
    button.dataset.hold = hold ?? "";
    if (hold) {
      button.setAttribute("aria-label",
        text(hold === "once" ? "modifierOnce" : "modifierLocked", { name: nameOf(name) }));
    } else {
      button.removeAttribute("aria-label");
    }
  };
  button.textContent = nameOf(name);
  button.addEventListener("click", ({ timeStamp }) => modifiers.tap(name, timeStamp));
  modifiers.addEventListener("change", show);
  show();
}
