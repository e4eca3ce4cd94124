// The computer's pointer as the page drives it: moves and scrolls that never pile up, buttons that
// never stay pressed.

import { Latest, Summed } from "../connection/pacers.js";

/** How far apart (points) the pointer and an event may be and still be taken for the same. */
const SAME_PLACE = 6;
/** How long (ms) the page may take to hear of a movement of the mouse that is on it. */
const EVENT_DELAY = 30;

const isNear = (value, seen) =>
  value >= Math.min(...seen) - SAME_PLACE && value <= Math.max(...seen) + SAME_PLACE;

const whole = (x, y) => [Math.trunc(x), Math.trunc(y)];

/**
 * Emits "held" whenever `held` (the name of the pressed button, or null) changes, and "clicked" after a
 * click and a release.
 */
export class RemotePointer extends EventTarget {
  held = /** @type {string | null} */ (null);
  /** @type {object | null} */
  #holder = null;
  #connection;
  #displays;
  #moves;
  #places;
  #scrolls;

  /**
   * @param {import("../connection/connection.js").Connection} connection
   * @param {() => import("../more/displays.js").DisplayRecord[]} displays
   */
  constructor(connection, displays) {
    super();
    this.#connection = connection;
    this.#displays = displays;
    this.#moves = new Summed((x, y) => [x, y], (dx, dy) => connection.call("moveMouse", { dx, dy }));
    this.#places = new Latest((place) => connection.call("moveMouseAbs", place));
    this.#scrolls = new Summed(whole, (x, y) => this.#postScroll(x, y));
    connection.addEventListener("state", () => this.#lineChanged());
  }

  move(dx, dy) {
    if (!this.#connection.connected) return;
    this.#places.flush();
    this.#moves.add(dx, dy);
  }

  /** Scrolls by points; positive values go toward the top and the left, as fingers pull content. */
  scroll(x, y) {
    if (!this.#connection.connected) return;
    this.#flush();
    this.#scrolls.add(x, y);
  }

  click(button) {
    this.#now("click", { button });
    this.dispatchEvent(new Event("clicked"));
  }

  /** Presses a button for `holder`, an object of the caller's; who held one before lets go. */
  press(holder, button) {
    if (!this.#connection.connected) return;
    this.#letGo();
    this.#now("mouseDown", { button });
    this.#setHeld(holder, button);
  }

  release(holder) {
    if (this.#holder === holder) this.#letGo();
  }

  releaseAll() {
    this.#letGo();
  }

  /** Moves the pointer to a place on a display, given as fractions of its width and height. */
  jump(display, x, y) {
    this.#moves.drop();
    this.#places.drop();
    return this.#connection.call("moveMouseAbs", { display, x, y });
  }

  /** Like `jump`, for places that follow one another closely: on a slow line some are left out. */
  follow(display, x, y) {
    if (!this.#connection.connected) return;
    this.#moves.drop();
    this.#places.put({ display, x, y });
  }

  /**
   * Whether this mouse event comes from the very pointer that the host moves: the page is then open
   * on the computer it controls, and passing the event on would make the pointer chase itself.
   */
  async isSelf(event) {
    const display = this.#displays().find(({ x, y, w, h }) => event.screenX >= x
      && event.screenX < x + w && event.screenY >= y && event.screenY < y + h);
    if (!display) return false;
    // The mouse may go on while the host is asked: it is looked for all along its way.
    const xs = [event.screenX];
    const ys = [event.screenY];
    const follow = ({ screenX, screenY }) => {
      xs.push(screenX);
      ys.push(screenY);
    };
    window.addEventListener("pointermove", follow);
    try {
      const cursor = await this.#connection.call("screenCursor", { display: display.id });
      await new Promise((resolve) => setTimeout(resolve, EVENT_DELAY));
      return cursor.onDisplay && isNear(display.x + cursor.x * display.w, xs)
        && isNear(display.y + cursor.y * display.h, ys);
    } catch {
      return false;
    } finally {
      window.removeEventListener("pointermove", follow);
    }
  }

  #letGo() {
    if (this.held === null) return;
    this.#now("mouseUp", { button: this.held });
    this.#setHeld(null, null);
    this.dispatchEvent(new Event("clicked"));
  }

  #setHeld(holder, button) {
    this.#holder = holder;
    this.held = button;
    this.dispatchEvent(new Event("held"));
  }

  // What was moved before a button changes must have arrived before it.
  #now(method, args) {
    this.#flush();
    this.#connection.call(method, args).catch(() => {});
  }

  #flush() {
    this.#places.flush();
    this.#moves.flush();
  }

  #postScroll(x, y) {
    /** @type {(method: string, value: number) => Promise<unknown>} */
    const post = (method, value) =>
      this.#connection.call(method, { amount: Math.abs(value), direction: value > 0 ? 1 : -1 });
    const calls = [];
    if (y) calls.push(post("scroll", y));
    if (x) calls.push(post("scrollHorizontal", x));
    return Promise.all(calls);
  }

  // The host lets go of what a lost connection held.
  #lineChanged() {
    if (this.#connection.connected) return;
    this.#moves.drop();
    this.#places.drop();
    this.#scrolls.drop();
    if (this.held !== null) this.#setHeld(null, null);
  }
}
