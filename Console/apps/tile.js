// One application in the grid: a button with an icon, a name and a mark when it is running.

import { characters } from "../keyboard/typing.js";
import { text } from "../text/text.js";
import { make } from "../ui/dom.js";

const HOLD = 550;
/** The click of a finger comes this soon (ms) after it went up. */
const AFTER_HOLD = 100;

export class Tile {
  element = make("li");
  hasIcon = false;
  inView = false;
  name = "";
  bundleId;
  #button = make("button");
  #icon = make("span", "app-icon");
  #label = make("span", "app-name");
  #running = make("span", "unseen", text("appRunning"));

  /** @param {string} bundleId @param {() => void} onTap @param {() => void} onHold */
  constructor(bundleId, onTap, onHold) {
    this.bundleId = bundleId;
    this.element.dataset.app = bundleId;
    this.#button.type = "button";
    this.#icon.setAttribute("aria-hidden", "true");
    this.#button.append(this.#icon, this.#label, this.#running);
    this.element.append(this.#button);
    this.#listen(onTap, onHold);
  }

  /** @param {() => void} onTap @param {() => void} onHold */
  #listen(onTap, onHold) {
    const button = this.#button;
    let timer = 0;
    // What is held may move away from under the finger, and the click would meet another tile.
    const swallow = (/** @type {Event} */ event) => event.stopPropagation();
    button.addEventListener("pointerdown", () => {
      timer = setTimeout(() => {
        document.addEventListener("click", swallow, true);
        onHold();
      }, HOLD);
    });
    for (const type of ["pointerup", "pointercancel", "pointerleave"]) {
      button.addEventListener(type, () => {
        clearTimeout(timer);
        setTimeout(() => document.removeEventListener("click", swallow, true), AFTER_HOLD);
      });
    }
    button.addEventListener("click", onTap);
    button.addEventListener("contextmenu", (event) => event.preventDefault());
    // The keys' own way to what holding does.
    button.addEventListener("keydown", (event) => {
      if (event.key !== "ContextMenu" && !(event.shiftKey && event.key === "F10")) return;
      event.preventDefault();
      onHold();
    });
  }

  /** @param {import("./apps.js").AppRecord} record */
  show({ name, isRunning }) {
    this.name = name;
    this.#label.textContent = name;
    this.#button.title = name;
    this.#running.hidden = !isRunning;
    this.element.classList.toggle("running", isRunning);
  }

  /** @param {boolean} shown */
  narrow(shown) {
    this.element.hidden = !shown;
  }

  /** An application without an icon gets its initial instead. @param {string} base64 */
  showIcon(base64) {
    this.hasIcon = true;
    if (!base64) {
      this.#drawInitial();
      return;
    }
    const image = make("img");
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
