// What fingers, a mouse, a wheel and keys do on a part of the page that steers the computer's pointer.

import { Gestures } from "./gestures.js";
import { Note } from "../ui/note.js";

const WHEEL_PAUSE = 1000;
const LINE_HEIGHT = 40;
const KEY_STEP = 10;
const KEY_STRIDE = 60;
const MOUSE_CLICKS = { 1: "center", 2: "right" };
const KEY_CLICKS = { Enter: "left", ContextMenu: "right" };
const ARROWS = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

/**
 * Turns the events of `element` into gestures, with a mark under the finger and a line for notes
 * (its .pad-mark and .pad-note). What the gestures do is up to the class made from this one.
 */
export class Surface {
  pointer;
  momentum;
  #element;
  #mark;
  #note;
  #gestures;
  #self = Promise.resolve(false);
  #lastWheel = -Infinity;
  #halting = false;

  /** `actions` as Gestures has them, but for "tap", which is the method of this class. */
  constructor(element, pointer, momentum, actions) {
    this.pointer = pointer;
    this.momentum = momentum;
    this.#element = element;
    this.#mark = element.querySelector(".pad-mark");
    this.#note = new Note(element.querySelector(".pad-note"));
    this.#gestures = new Gestures({ ...actions, tap: (button) => this.#tap(button) });
    this.#listen();
  }

  get phase() {
    return this.#gestures.phase;
  }

  /** Ends every gesture that is under way and lets go of what it holds. */
  cancel() {
    this.momentum.stop();
    this.#gestures.cancelAll();
    this.#changed(null);
  }

  /** Whether a pointer that comes down here is meant for the computer. */
  accepts() {
    return true;
  }

  /** A pointer came down; the first of a gesture is told by the phase "still". */
  began() {}

  /** A pointer moved, came down or went up; null when it is gone. */
  followed() {}

  click(button) {
    this.pointer.click(button);
  }

  wheel(x, y) {
    this.pointer.scroll(x, y);
  }

  #listen() {
    const on = (type, listener) =>
      this.#element.addEventListener(type, listener.bind(this), { passive: false });
    on("pointerdown", this.#down);
    on("pointermove", this.#move);
    on("pointerup", this.#up);
    on("pointercancel", this.#cancelled);
    on("lostpointercapture", this.#cancelled);
    on("wheel", this.#wheel);
    on("keydown", this.#key);
    on("contextmenu", (event) => event.preventDefault());
    this.pointer.addEventListener("held", () => {
      this.#element.classList.toggle("holding", this.pointer.held !== null);
    });
  }

  #down(event) {
    if (!this.accepts(event)) return;
    this.#element.setPointerCapture(event.pointerId);
    if (event.pointerType === "mouse") this.#self = this.pointer.isSelf(event);
    this.#element.classList.add("used");
    // A touch that stops what is still scrolling does nothing else.
    const halted = this.momentum.stop();
    if (this.phase === "idle") this.#halting = halted;
    this.#unlessSelf(event, () => {
      const button = MOUSE_CLICKS[event.button];
      if (!button && event.button !== 0) return;
      if (!button) {
        const mouse = event.pointerType === "mouse";
        this.#gestures.down(event.pointerId, event.clientX, event.clientY, event.timeStamp, mouse);
      }
      this.began(event);
      if (button) this.#tap(button);
      else this.#changed(event);
    });
  }

  #move(event) {
    if (!this.#element.hasPointerCapture(event.pointerId)) return;
    this.#unlessSelf(event, () => {
      this.#gestures.move(event.pointerId, event.clientX, event.clientY, event.timeStamp);
      this.#changed(event);
    });
  }

  #up(event) {
    this.#unlessSelf(event, () => {
      this.#gestures.up(event.pointerId, event.timeStamp);
      this.#changed(null);
    });
  }

  #cancelled(event) {
    this.#unlessSelf(event, () => {
      this.#gestures.cancel(event.pointerId);
      this.#changed(null);
    });
  }

  #wheel(event) {
    event.preventDefault();
    if (!this.accepts(event)) return;
    if (event.timeStamp - this.#lastWheel > WHEEL_PAUSE) this.#self = this.pointer.isSelf(event);
    this.#lastWheel = event.timeStamp;
    const unit = [1, LINE_HEIGHT, this.#element.clientHeight][event.deltaMode];
    const [x, y] = event.shiftKey && !event.deltaX
      ? [event.deltaY, 0] : [event.deltaX, event.deltaY];
    this.#self.then((self) => {
      if (!self) this.wheel(-x * unit, -y * unit, event);
    });
  }

  #key(event) {
    const arrow = ARROWS[event.key];
    if (arrow) {
      const step = event.shiftKey ? KEY_STRIDE : KEY_STEP;
      this.pointer.move(arrow[0] * step, arrow[1] * step);
    } else if (KEY_CLICKS[event.key] && !event.repeat) {
      if (this.pointer.held === null) this.pointer.click(KEY_CLICKS[event.key]);
      this.#pulse();
    } else {
      return;
    }
    event.preventDefault();
  }

  // A finger can be on a screen of the computer only by way of another device; a mouse can be the
  // one that the host moves.
  #unlessSelf(event, action) {
    if (event.pointerType !== "mouse") {
      action();
      return;
    }
    this.#self.then((self) => {
      if (!self) action();
      else if (event.type === "pointerdown") this.#note.say("This would move the mouse that is on it. "
        + "Open this page on a phone or another computer.");
    });
  }

  #tap(button) {
    if (this.pointer.held !== null || this.#halting) return;
    this.click(button);
    this.#pulse();
  }

  #changed(event) {
    this.followed(event);
    this.#mark.classList.toggle("waiting", this.phase === "still");
    this.#mark.classList.toggle("shown", this.phase !== "idle");
    if (!event) return;
    const box = this.#element.getBoundingClientRect();
    const x = event.clientX - box.left - this.#element.clientLeft;
    const y = event.clientY - box.top - this.#element.clientTop;
    this.#mark.style.translate = `${x}px ${y}px`;
  }

  #pulse() {
    this.#mark.classList.remove("pulse");
    // Reading a size makes the browser notice the removal, so that the pulse starts again.
    void this.#mark.offsetWidth;
    this.#mark.classList.add("pulse");
  }
}
