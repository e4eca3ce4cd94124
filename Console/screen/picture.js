// The picture of a screen under fingers and a mouse: what is done on it happens at that very place.

import { SCROLL_GAIN } from "../touch/gestures.js";
import { Surface } from "../touch/surface.js";

/** Taps as close in time (ms) and place (pixels) as this are meant for the same point. */
const DOUBLE_TAP = 400;
const DOUBLE_TAP_SLOP = 14;

export class Picture extends Surface {
  #view;
  #finger = null;
  #carrying = false;
  #scrolling = false;
  #lastTap = { time: -Infinity };

  /**
   * `view` has placeAt(clientX, clientY), which gives {display, x, y, inside} or null while there is
   * no picture; pointsPerPixel(); pointing(), whether a drag only moves the pointer; used(), called
   * when something is done.
   */
  constructor(stage, pointer, momentum, view) {
    super(stage, pointer, momentum, {
      move: () => {},
      scroll: (x, y, time) => this.#scroll(x, y, time),
      scrolled: (time) => momentum.release(time),
      hold: () => this.#hold(),
      letGo: () => {},
    });
    this.#view = view;
  }

  // A second finger may lie beside the picture.
  accepts(event) {
    const place = this.#view.placeAt(event.clientX, event.clientY);
    return place !== null && (place.inside || this.phase !== "idle");
  }

  began(event) {
    this.#view.used();
    if (this.phase !== "still" && this.phase !== "idle") return;
    this.#finger = { id: event.pointerId, x: event.clientX, y: event.clientY,
      isMouse: event.pointerType === "mouse" };
    this.#scrolling = false;
  }

  followed(event) {
    const carries = this.phase === "moving" || (this.#carrying && this.phase === "holding");
    if (this.#carrying && !carries) this.#putDown();
    if (!carries || event?.pointerId !== this.#finger.id) return;
    if (!this.#carrying) this.#pickUp();
    this.#withPlace(event.clientX, event.clientY, (...place) => this.pointer.follow(...place));
  }

  click(button) {
    const { x, y } = this.#finger;
    const time = performance.now();
    const again = time - this.#lastTap.time < DOUBLE_TAP
      && Math.hypot(x - this.#lastTap.x, y - this.#lastTap.y) < DOUBLE_TAP_SLOP;
    const at = again ? this.#lastTap : { x, y };
    this.#lastTap = { x: at.x, y: at.y, time };
    this.#jump(at.x, at.y);
    this.pointer.click(button);
    this.#view.used();
  }

  wheel(x, y, event) {
    this.#withPlace(event.clientX, event.clientY, (...place) => this.pointer.follow(...place));
    this.pointer.scroll(x, y);
    this.#view.used();
  }

  // A mouse has a button of its own for the right one, and may rest before it drags.
  #hold() {
    if (this.#finger.isMouse) {
      this.#pickUp();
    } else {
      navigator.vibrate?.(25);
      this.click("right");
    }
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

  // The content follows the fingers, however small its picture is.
  #scroll(x, y, time) {
    if (!this.#scrolling) this.#jump(this.#finger.x, this.#finger.y);
    this.#scrolling = true;
    const factor = Math.max(1, this.#view.pointsPerPixel() / SCROLL_GAIN);
    this.momentum.move(x * factor, y * factor, time);
    this.#view.used();
  }

  #jump(x, y) {
    this.#withPlace(x, y, (...place) => this.pointer.jump(...place).catch(() => {}));
  }

  #withPlace(clientX, clientY, action) {
    const place = this.#view.placeAt(clientX, clientY);
    if (place) action(place.display, place.x, place.y);
  }
}
