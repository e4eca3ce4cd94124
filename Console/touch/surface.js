// What fingers, a mouse, a wheel and keys do on a part of the page that steers the computer's pointer.

import { text } from "../text/text.js";
import { one } from "../ui/dom.js";
import { Note } from "../ui/note.js";
import { Recogniser } from "./recogniser.js";

const WHEEL_PAUSE = 1000;
const LINE_HEIGHT = 40;
const KEY_STEP = 10;
const KEY_STRIDE = 60;
const VIBRATION = 18;
/** @type {Record<number, "center" | "right">} */
const MOUSE_CLICKS = { 1: "center", 2: "right" };
/** @type {Record<string, "left" | "right">} */
const KEY_CLICKS = { Enter: "left", ContextMenu: "right" };
/** @type {Record<string, [number, number]>} */
const ARROWS = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

/** @typedef {Pick<PointerEvent, "clientX" | "clientY">} Place */

/**
 * Turns the events of `element` into gestures, with a mark under the finger and a line for notes
 * (its .pad-mark and .pad-note). What the gestures do is up to the class made from this one.
 */
export class Surface {
  pointer;
  momentum;
  settings;
  #element;
  #mark;
  #note;
  #recogniser;
  #line;
  #timer = 0;
  #self = Promise.resolve(false);
  #lastWheel = -Infinity;
  #halting = false;

  /**
   * @param {HTMLElement} element
   * @param {{pointer: import("./pointer.js").RemotePointer, momentum: import("./scrolling.js").Momentum,
   *   line: import("../connection/line.js").Line, settings: import("../settings/settings.js").Settings}} parts
   * @param {Partial<import("./recogniser.js").Actions>} actions but for taps, which are methods of this class
   */
  constructor(element, { pointer, momentum, line, settings }, actions) {
    this.pointer = pointer;
    this.momentum = momentum;
    this.settings = settings;
    this.#line = line;
    this.#element = element;
    this.#mark = one(element, ".pad-mark");
    this.#note = new Note(one(element, ".pad-note"));
    this.#recogniser = new Recogniser({
      move: (dx, dy) => pointer.move(dx, dy),
      scroll: (dx, dy, time) => this.scroll(dx, dy, time),
      scrolled: (time) => momentum.release(time),
      press: () => this.#press(),
      release: () => pointer.release(this),
      hold: () => this.hold(),
      tap: (button) => this.#tap(button),
      ...actions,
    });
    this.#listen();
  }

  get phase() {
    return this.#recogniser.phase;
  }

  /** Ends every gesture that is under way and lets go of what it holds. */
  cancel() {
    this.momentum.stop();
    this.#recogniser.cancelAll();
    this.#changed(null);
  }

  /** How fingers are to be understood from now on. @returns {import("./recogniser.js").Options} */
  options() {
    const { speed, holdDrag } = this.settings.values;
    return { speed, holds: holdDrag, tapDrags: true, places: false, pair: "scroll" };
  }

  /** Whether a pointer that comes down here is meant for the computer. @param {PointerEvent | WheelEvent} _event */
  accepts(_event) {
    return true;
  }

  /** A pointer came down. @param {PointerEvent} _event */
  began(_event) {}

  /** A pointer moved, came down or went up; null when it is gone. @param {PointerEvent | null} _event */
  followed(_event) {}

  /** A finger rests. */
  hold() {
    if (this.pointer.held !== null) return;
    this.pointer.press(this, "left");
    this.vibrate();
  }

  /** @param {string} button */
  click(button) {
    this.pointer.click(button);
  }

  /** @param {number} x @param {number} y @param {number} time */
  scroll(x, y, time) {
    this.momentum.move(x, y, time);
  }

  /** @param {number} x @param {number} y @param {WheelEvent} _event */
  wheel(x, y, _event) {
    this.pointer.scroll(x, y);
  }

  vibrate() {
    if (this.settings.values.vibration) navigator.vibrate?.(VIBRATION);
  }

  #listen() {
    /** @type {(type: string, listener: (event: any) => void) => void} */
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

  /** @param {PointerEvent} event */
  #down(event) {
    if (!this.accepts(event)) return;
    this.#element.setPointerCapture(event.pointerId);
    if (event.pointerType === "mouse") this.#self = this.pointer.isSelf(event);
    else this.#line.check();
    this.#element.classList.add("used");
    // A touch that stops what is still scrolling does nothing else.
    const halted = this.momentum.stop();
    if (this.phase === "idle") {
      this.#halting = halted;
      this.#recogniser.options = this.options();
    }
    this.#unlessSelf(event, () => {
      const button = MOUSE_CLICKS[event.button];
      if (!button && event.button !== 0) return;
      this.began(event);
      if (button) {
        this.#tap(button);
        return;
      }
      this.#recogniser.down({ id: event.pointerId, x: event.clientX, y: event.clientY,
        time: event.timeStamp, size: Math.max(event.width, event.height), mouse: event.pointerType === "mouse" });
      this.#changed(event);
    });
  }

  /** @param {PointerEvent} event */
  #move(event) {
    if (!this.#element.hasPointerCapture(event.pointerId)) return;
    this.#unlessSelf(event, () => {
      this.#recogniser.move({ id: event.pointerId, x: event.clientX, y: event.clientY,
        time: event.timeStamp });
      this.#changed(event);
    });
  }

  /** @param {PointerEvent} event */
  #up(event) {
    this.#unlessSelf(event, () => {
      this.#recogniser.up(event.pointerId, event.timeStamp);
      this.#changed(null);
    });
  }

  /** @param {PointerEvent} event */
  #cancelled(event) {
    this.#unlessSelf(event, () => {
      this.#recogniser.cancel(event.pointerId);
      this.#changed(null);
    });
  }

  /** @param {WheelEvent} event */
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

  /** @param {KeyboardEvent} event */
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
      else if (event.type === "pointerdown") this.#note.say(text("padSelf"));
    });
  }

  /** @param {string} button */
  #tap(button) {
    if (this.pointer.held !== null || this.#halting) return;
    this.click(button);
    this.vibrate();
    this.#pulse();
  }

  #press() {
    if (this.pointer.held !== null || this.#halting) return;
    this.pointer.press(this, "left");
    this.vibrate();
    this.#pulse();
  }

  /** @param {PointerEvent | null} event */
  #changed(event) {
    this.#arm();
    this.followed(event);
    this.#mark.classList.toggle("waiting", this.phase === "still");
    this.#mark.classList.toggle("shown", this.phase !== "idle");
    if (!event) return;
    const box = this.#element.getBoundingClientRect();
    const x = event.clientX - box.left - this.#element.clientLeft;
    const y = event.clientY - box.top - this.#element.clientTop;
    this.#mark.style.translate = `${x}px ${y}px`;
  }

  // Events bear the time of the touch, which is a little before now.
  #arm() {
    clearTimeout(this.#timer);
    const { due } = this.#recogniser;
    if (due === Infinity) return;
    this.#timer = setTimeout(() => {
      this.#recogniser.tick(Math.max(due, performance.now()));
      this.#changed(null);
    }, Math.max(0, due - performance.now()));
  }

  #pulse() {
    this.#mark.classList.remove("pulse");
    // Reading a size makes the browser notice the removal, so that the pulse starts again.
    void this.#mark.offsetWidth;
    this.#mark.classList.add("pulse");
  }
}
