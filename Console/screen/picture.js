// The picture of a screen under fingers and a mouse: what is done on it happens at that very place, or
// moves the pointer from where it is, as on a touchpad.

import { SCROLL_GAIN } from "../touch/scrolling.js";
import { Surface } from "../touch/surface.js";

/** Taps as close in time (ms) and place (pixels) as this are meant for the same point. */
const DOUBLE_TAP = 400;
const DOUBLE_TAP_SLOP = 14;

/**
 * @typedef {object} View what the picture's fingers are on
 * @property {(x: number, y: number) => {display: string, x: number, y: number, inside: boolean} | null} placeAt
 * @property {() => number} pointsPerPixel
 * @property {() => boolean} direct whether fingers mean places
 * @property {() => boolean} zoomed
 * @property {() => boolean} pointing whether a drag only moves the pointer
 * @property {(change: {factor: number, dx: number, dy: number, x: number, y: number}) => void} transform
 * @property {() => void} fit
 * @property {() => void} used something is done
 */

export class Picture extends Surface {
  #view;
  /** @type {{id: number, x: number, y: number, isMouse: boolean}} */
  #finger = { id: -1, x: 0, y: 0, isMouse: false };
  #carrying = false;
  #scrolling = false;
  #lastTap = { x: 0, y: 0, time: -Infinity };

  /**
   * @param {HTMLElement} stage
   * @param {ConstructorParameters<typeof Surface>[1]} parts
   * @param {View} view
   */
  constructor(stage, parts, view) {
    super(stage, parts, {
      move: (dx, dy) => this.#move(dx, dy),
      transform: (change) => view.transform(change),
      fit: () => view.fit(),
    });
    this.#view = view;
  }

  options() {
    const pair = /** @type {"pan" | "pinch"} */ (this.#view.zoomed() ? "pan" : "pinch");
    const direct = this.#direct;
    return { ...super.options(), holds: direct || super.options().holds, tapDrags: !direct, places: direct, pair };
  }

  // A mouse is where it is.
  get #direct() {
    return this.#finger.isMouse || this.#view.direct();
  }

  // A second finger may lie beside the picture.
  accepts(event) {
    if (this.phase === "idle") {
      this.#finger.isMouse = event.pointerType === "mouse" || event.type === "wheel";
    }
    const place = this.#view.placeAt(event.clientX, event.clientY);
    return place !== null && (place.inside || this.phase !== "idle" || !this.#direct);
  }

  began(event) {
    this.#view.used();
    if (this.phase !== "idle") return;
    this.#finger = { id: event.pointerId, x: event.clientX, y: event.clientY,
      isMouse: event.pointerType === "mouse" };
    this.#scrolling = false;
  }

  followed(event) {
    if (!this.#direct) return;
    const carries = this.phase === "moving" || (this.#carrying && this.phase === "holding");
    if (this.#carrying && !carries) this.#putDown();
    if (!carries || event?.pointerId !== this.#finger.id) return;
    if (!this.#carrying) this.#pickUp();
    this.#withPlace(event.clientX, event.clientY, (...place) => this.pointer.follow(...place));
  }

  click(button) {
    if (this.#direct) this.#jumpToTap();
    this.pointer.click(button);
    this.#view.used();
  }

  wheel(x, y, event) {
    this.#withPlace(event.clientX, event.clientY, (...place) => this.pointer.follow(...place));
    this.pointer.scroll(x, y);
    this.#view.used();
  }

  // A mouse has a button of its own for the right one, and may rest before it drags.
  hold() {
    if (!this.#direct) {
      super.hold();
    } else if (this.#finger.isMouse) {
      this.#pickUp();
    } else {
      this.vibrate();
      this.click("right");
    }
  }

  // The content follows the fingers, however small its picture is.
  scroll(x, y, time) {
    if (!this.#scrolling && this.#direct) this.#jump(this.#finger.x, this.#finger.y);
    this.#scrolling = true;
    const factor = Math.max(1, this.#view.pointsPerPixel() / SCROLL_GAIN);
    this.momentum.move(x * factor, y * factor, time);
    this.#view.used();
  }

  // Places are followed by `followed`.
  #move(dx, dy) {
    if (this.#direct) return;
    this.pointer.move(dx, dy);
    this.#view.used();
  }

  #jumpToTap() {
    const { x, y } = this.#finger;
    const time = performance.now();
    const again = time - this.#lastTap.time < DOUBLE_TAP
      && Math.hypot(x - this.#lastTap.x, y - this.#lastTap.y) < DOUBLE_TAP_SLOP;
    const at = again ? this.#lastTap : { x, y };
    this.#lastTap = { x: at.x, y: at.y, time };
    this.#jump(at.x, at.y);
  }

  #pickUp() {
    this.#carrying = true;
    this.#jump(this.#finger.x, this.#finger.y);
    if (!this.#view.pointing()) this.pointer.press(this, "left");
  }

  #putDown() {
    this.#carrying = false;
    this.pointer.release(this);
    this.#view.used();
  }

  #jump(x, y) {
    this.#withPlace(x, y, (...place) => this.pointer.jump(...place).catch(() => {}));
  }

  /** @param {number} clientX @param {number} clientY @param {(display: string, x: number, y: number) => void} action */
  #withPlace(clientX, clientY, action) {
    const place = this.#view.placeAt(clientX, clientY);
    if (place) action(place.display, place.x, place.y);
  }
}
