// The slim bar above the phone's keyboard.

import { all, byId, one } from "../ui/dom.js";

/** Emits "change" when it is opened or closed. */
export class TypingBar extends EventTarget {
  #bar = byId("typing-bar");
  #more = byId("bar-more");
  #keyboard;

  /** @param {import("./keyboard.js").Keyboard} keyboard */
  constructor(keyboard) {
    super();
    this.#keyboard = keyboard;
    for (const button of all(document, ".open-typing")) {
      button.addEventListener("click", () => this.isOpen ? this.close() : this.open());
    }
    byId("bar-close").addEventListener("click", () => this.close());
    this.#more.addEventListener("click", () => this.#showMore(this.#more.ariaExpanded !== "true"));
    for (const type of ["resize", "scroll"]) {
      window.visualViewport?.addEventListener(type, () => this.#place());
    }
  }

  get isOpen() {
    return !this.#bar.hidden;
  }

  // The phone's keyboard comes only for a focus that belongs to the tap.
  open() {
    this.#keyboard.moveField(false);
    this.#bar.hidden = false;
    document.body.classList.add("typing-open");
    this.#place();
    this.#keyboard.focus();
    this.dispatchEvent(new Event("change"));
  }

  close() {
    if (!this.isOpen) return;
    this.#keyboard.rest();
    this.#showMore(false);
    this.#bar.hidden = true;
    document.body.classList.remove("typing-open");
    /** @type {HTMLElement | null} */ (document.activeElement)?.blur();
    this.dispatchEvent(new Event("change"));
  }

  /** @param {boolean} on */
  #showMore(on) {
    this.#more.setAttribute("aria-expanded", String(on));
    one(this.#bar, ".bar-more").hidden = !on;
  }

  // Where the phone's keyboard covers the page instead of making it smaller, and the browser moves what
  // is seen of it, the page makes itself as small and goes along.
  #place() {
    const view = window.visualViewport;
    const covers = view !== null && view.scale === 1;
    const covered = covers ? Math.max(0, document.documentElement.clientHeight - view.height) : 0;
    document.documentElement.style.setProperty("--covered", `${Math.round(covered)}px`);
    document.body.style.translate = covers && view.offsetTop > 0 ? `0 ${view.offsetTop}px` : "";
  }
}
