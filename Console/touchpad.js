// The touchpad: pointer, wheel and key events of the pad become gestures and pointer calls.

import { Gestures } from "./gestures.js";

const NOTE_FOR = 4000;
const WHEEL_PAUSE = 1000;
const LINE_HEIGHT = 40;
const KEY_STEP = 10;
const KEY_STRIDE = 60;
const MOUSE_CLICKS = { 1: "center", 2: "right" };
const ARROWS = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

export class Touchpad {
  #pad;
  #mark;
  #note;
  #pointer;
  #gestures;
  #noteTimer = 0;
  #self = Promise.resolve(false);
  #lastWheel = -Infinity;
  #momentum;
  #halting = false;

  constructor(pad, pointer, momentum) {
    this.#pad = pad;
    this.#mark = pad.querySelector(".pad-mark");
    this.#note = pad.querySelector(".pad-note");
    this.#pointer = pointer;
    this.#momentum = momentum;
    this.#gestures = new Gestures({
      move: (dx, dy) => pointer.move(dx, dy),
      scroll: (x, y, time) => momentum.move(x, y, time),
      scrolled: (time) => momentum.release(time),
      tap: (button) => this.#tap(button),
      hold: () => this.#hold(),
      letGo: () => pointer.release(this),
    });
    this.#listen();
  }

  /** Ends every gesture that is under way and lets go of what it holds. */
  cancel() {
    this.#momentum.stop();
    this.#gestures.cancelAll();
    this.#showMark(null);
  }

  #listen() {
    const on = (type, listener) =>
      this.#pad.addEventListener(type, listener.bind(this), { passive: false });
    on("pointerdown", this.#down);
    on("pointermove", this.#move);
    on("pointerup", this.#up);
    on("pointercancel", this.#cancelled);
    on("lostpointercapture", this.#cancelled);
    on("wheel", this.#wheel);
    on("keydown", this.#key);
    on("contextmenu", (event) => event.preventDefault());
    this.#pointer.addEventListener("held", () => {
      this.#pad.classList.toggle("holding", this.#pointer.held !== null);
    });
  }

  #down(event) {
    this.#pad.setPointerCapture(event.pointerId);
    if (event.pointerType === "mouse") this.#self = this.#pointer.isSelf(event);
    this.#pad.classList.add("used");
    // A touch that stops what is still scrolling does nothing else.
    const halted = this.#momentum.stop();
    if (this.#gestures.phase === "idle") this.#halting = halted;
    this.#unlessSelf(event, () => {
      const button = MOUSE_CLICKS[event.button];
      if (button) {
        this.#tap(button);
      } else if (event.button === 0) {
        const mouse = event.pointerType === "mouse";
        this.#gestures.down(event.pointerId, event.clientX, event.clientY, event.timeStamp, mouse);
        this.#showMark(event);
      }
    });
  }

  #move(event) {
    if (!this.#pad.hasPointerCapture(event.pointerId)) return;
    this.#unlessSelf(event, () => {
      this.#gestures.move(event.pointerId, event.clientX, event.clientY, event.timeStamp);
      this.#showMark(event);
    });
  }

  #up(event) {
    this.#unlessSelf(event, () => {
      this.#gestures.up(event.pointerId, event.timeStamp);
      this.#showMark(null);
    });
  }

  #cancelled(event) {
    this.#unlessSelf(event, () => {
      this.#gestures.cancel(event.pointerId);
      this.#showMark(null);
    });
  }

  #wheel(event) {
    event.preventDefault();
    if (event.timeStamp - this.#lastWheel > WHEEL_PAUSE) this.#self = this.#pointer.isSelf(event);
    this.#lastWheel = event.timeStamp;
    const unit = [1, LINE_HEIGHT, this.#pad.clientHeight][event.deltaMode];
    const [x, y] = event.shiftKey && !event.deltaX
      ? [event.deltaY, 0] : [event.deltaX, event.deltaY];
    this.#whenKnown((self) => {
      if (!self) this.#pointer.scroll(-x * unit, -y * unit);
    });
  }

  #key(event) {
    const arrow = ARROWS[event.key];
    if (arrow) {
      const step = event.shiftKey ? KEY_STRIDE : KEY_STEP;
      this.#pointer.move(arrow[0] * step, arrow[1] * step);
    } else if (event.key === "Enter" && !event.repeat) {
      this.#tap("left");
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
    this.#whenKnown((self) => {
      if (!self) action();
      else if (event.type === "pointerdown") this.#say("This pad would move the mouse that is on it. "
        + "Open this page on a phone or another computer.");
    });
  }

  #whenKnown(action) {
    this.#self.then(action);
  }

  #tap(button) {
    if (this.#pointer.held !== null || this.#halting) return;
    this.#pointer.click(button);
    this.#pulse();
  }

  #hold() {
    if (this.#pointer.held !== null) return;
    this.#pointer.press(this, "left");
    navigator.vibrate?.(25);
  }

  #showMark(event) {
    this.#mark.classList.toggle("waiting", this.#gestures.phase === "still");
    this.#mark.classList.toggle("shown", this.#gestures.phase !== "idle");
    if (!event) return;
    const box = this.#pad.getBoundingClientRect();
    const x = event.clientX - box.left - this.#pad.clientLeft;
    const y = event.clientY - box.top - this.#pad.clientTop;
    this.#mark.style.translate = `${x}px ${y}px`;
  }

  #pulse() {
    this.#mark.classList.remove("pulse");
    // Reading a size makes the browser notice the removal, so that the pulse starts again.
    void this.#mark.offsetWidth;
    this.#mark.classList.add("pulse");
  }

  #say(text) {
    clearTimeout(this.#noteTimer);
    this.#note.textContent = text;
    this.#noteTimer = setTimeout(() => { this.#note.textContent = ""; }, NOTE_FOR);
  }
}
