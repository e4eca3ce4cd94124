// Fingers on a pad told apart: moving, tapping, holding, scrolling. Knows no page and no host.

const TAP_SLOP = 9;
const MOUSE_SLOP = 3;
const SCROLL_SLOP = 7;
const HOLD_AFTER = 450;
const TWO_FINGER_TAP = 350;
/** How many points two fingers scroll per pixel. */
export const SCROLL_GAIN = 1.5;
/** A scroll this many times longer one way than the other stays on that axis. */
const AXIS_RATIO = 2;

/** How many points the pointer goes per pixel of a finger that moves at `speed` pixels a ms. */
export function pointerGain(speed) {
  const eager = Math.min(1, Math.max(0, (speed - 0.1) / 1.9));
  return 1 + 2.6 * eager * eager * (3 - 2 * eager);
}

/**
 * Turns pointers that come down, move and go up into gestures. Positions are in pixels, times in
 * milliseconds. `actions` gets move(dx, dy), scroll(x, y, time), scrolled(time) when a scrolling finger
 * goes up, tap(button), hold() and letGo(); what is held is always let go of, by `up` or by `cancel`.
 *
 * Phases: "idle"; "still" (one finger that has not moved yet); "moving"; "holding"; "pair" (two
 * fingers that have not moved yet); "scrolling"; "over" (nothing more until all fingers are up).
 */
export class Gestures {
  phase = "idle";
  #actions;
  #fingers = new Map();
  #timer = 0;
  #pairedAt = 0;
  #axis = null;

  constructor(actions) {
    this.#actions = actions;
  }

  down(id, x, y, time, isMouse = false) {
    this.#fingers.set(id, { x, y, startX: x, startY: y, time, slop: isMouse ? MOUSE_SLOP : TAP_SLOP });
    clearTimeout(this.#timer);
    if (this.phase === "holding") return;
    if (this.#fingers.size === 1) {
      this.phase = "still";
      this.#timer = setTimeout(() => this.#hold(), HOLD_AFTER);
    } else if (this.#fingers.size === 2 && this.phase !== "over") {
      // A finger that has been moving cannot become half of a tap.
      this.#pairedAt = this.phase === "still" ? time : -Infinity;
      this.phase = "pair";
      this.#axis = null;
    } else {
      this.phase = "over";
    }
  }

  move(id, x, y, time) {
    const finger = this.#fingers.get(id);
    if (!finger) return;
    const dx = x - finger.x;
    const dy = y - finger.y;
    const elapsed = Math.max(1, time - finger.time);
    if (this.phase === "still" && travel(finger, x, y) > finger.slop) {
      clearTimeout(this.#timer);
      this.phase = "moving";
    } else if (this.#isFullPair() && travel(finger, x, y) > SCROLL_SLOP) {
      this.phase = "scrolling";
      this.#axis = dominantAxis(x - finger.startX, y - finger.startY);
    }
    if (this.phase === "moving" || this.phase === "holding") {
      const gain = pointerGain(Math.hypot(dx, dy) / elapsed);
      this.#actions.move(dx * gain, dy * gain);
    } else if (this.phase === "scrolling") {
      this.#scroll(dx, dy, time);
    }
    Object.assign(finger, { x, y, time });
  }

  up(id, time) {
    if (!this.#fingers.delete(id)) return;
    clearTimeout(this.#timer);
    const last = this.#fingers.size === 0;
    if (this.phase === "still") this.#actions.tap("left");
    // A second finger may help to drag; what is held goes with the last of them.
    if (this.phase === "holding" && last) this.#actions.letGo();
    if (this.phase === "pair" && last && time - this.#pairedAt < TWO_FINGER_TAP) {
      this.#actions.tap("right");
    }
    if (this.phase === "scrolling") this.#actions.scrolled(time);
    if (last) this.phase = "idle";
    else if (this.phase === "scrolling") this.phase = "over";
  }

  /** The system took this pointer away: whatever it was doing ends without an effect. */
  cancel(id) {
    if (!this.#fingers.delete(id)) return;
    clearTimeout(this.#timer);
    if (this.phase === "holding") this.#actions.letGo();
    this.phase = this.#fingers.size === 0 ? "idle" : "over";
  }

  cancelAll() {
    for (const id of [...this.#fingers.keys()]) this.cancel(id);
  }

  #isFullPair() {
    return this.phase === "pair" && this.#fingers.size === 2;
  }

  #hold() {
    this.phase = "holding";
    this.#actions.hold();
  }

  // Two fingers that move together move the content once, not twice.
  #scroll(dx, dy, time) {
    const factor = SCROLL_GAIN / Math.max(1, this.#fingers.size);
    const [x, y] = [this.#axis === "y" ? 0 : dx, this.#axis === "x" ? 0 : dy];
    this.#actions.scroll(x * factor, y * factor, time);
  }
}

function travel(finger, x, y) {
  return Math.hypot(x - finger.startX, y - finger.startY);
}

function dominantAxis(dx, dy) {
  if (Math.abs(dy) > AXIS_RATIO * Math.abs(dx)) return "y";
  if (Math.abs(dx) > AXIS_RATIO * Math.abs(dy)) return "x";
  return null;
}
