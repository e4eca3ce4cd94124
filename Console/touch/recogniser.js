// Fingers told apart: moving, tapping, holding, dragging, scrolling, pinching. Knows no page, no host
// and no clock: every call brings its time, and what is due later is told by `due`.

/** From here on (pixels) a finger moves the pointer; nothing of its way is lost. */
const MOVE_SLOP = 2;
/** A finger that has gone further than this is not resting. */
const HOLD_SLOP = 3;
const TAP_SLOP = 9;
/** A finger that has been down for longer (ms) was not tapping. */
const TAP_TIME = 250;
const TAP_TIME_TOGETHER = 350;
const HOLD_AFTER = 450;
/** A finger that comes down again this soon (ms) and this close after a tap goes on with it. */
const AGAIN_WITHIN = 160;
const AGAIN_SLOP = 32;
/** The same for a second tap of two fingers. */
const TOGETHER_AGAIN = 280;
const TOGETHER_SLOP = 7;
/** Two fingers that come apart, or together, by so much pinch. */
const PINCH_SLOP = 14;
/** A contact as broad as this (pixels) is the ball of the thumb. */
const PALM = 64;
/** A scroll this many times longer one way than the other stays on that axis. */
const AXIS_RATIO = 2;
const MOUSE_SLOP = 3;

const smooth = (part) => part * part * (3 - 2 * part);
const between = (value, low, high) => Math.min(1, Math.max(0, (value - low) / (high - low)));

/**
 * How many points the pointer goes per pixel of a finger that moves at `speed` pixels a ms: less than
 * one when it aims, more when it crosses the screen.
 * @param {number} speed
 */
export function pointerGain(speed) {
  return 0.5 + 0.5 * smooth(between(speed, 0.02, 0.25)) + 2.6 * smooth(between(speed, 0.3, 2));
}

/**
 * @typedef {object} Actions what gestures do
 * @property {(dx: number, dy: number) => void} move the pointer, by points
 * @property {(dx: number, dy: number, time: number) => void} scroll two fingers moved together, by pixels
 * @property {(time: number) => void} scrolled the first of two scrolling fingers went up
 * @property {(button: "left" | "right" | "center") => void} tap
 * @property {() => void} press the left button, until `release`
 * @property {() => void} release
 * @property {() => void} hold a finger rested; `release` follows when it goes up
 * @property {(change: {factor: number, dx: number, dy: number, x: number, y: number}) => void} [transform]
 *   two fingers about (x, y) moved by (dx, dy) and apart by `factor`
 * @property {() => void} [fit] two fingers tapped twice
 *
 * @typedef {object} Options
 * @property {number} speed a factor on all that moves the pointer
 * @property {boolean} holds whether a finger that rests does something
 * @property {boolean} tapDrags whether a tap can go on as a drag; its click lasts a little longer then
 * @property {boolean} places whether fingers mean places, so that small movements mean nothing
 * @property {"scroll" | "pinch" | "pan"} pair what two fingers do: scroll only, scroll or pinch, pan and pinch
 */

/** @type {Options} */
export const USUAL = { speed: 1, holds: true, tapDrags: true, places: false, pair: "scroll" };

/**
 * Phases: "idle"; "still" (one finger, not moved yet); "again" (a finger that came down on a tap);
 * "moving"; "holding"; "pair" (two or three fingers that have not moved yet); "scrolling";
 * "transforming"; "over" (nothing more until all fingers are up). What is pressed is always let go of.
 */
export class Recogniser {
  phase = "idle";
  /** When `tick` is to be called next (ms). */
  due = Infinity;
  #actions;
  /** @type {Options} */
  options;
  /** @type {Map<number, {x: number, y: number, startX: number, startY: number, time: number, mouse: boolean}>} */
  #fingers = new Map();
  #startedAt = 0;
  /** How far the first finger has been from where it came down. */
  #travel = 0;
  #speed = 0;
  #moved = { x: 0, y: 0 };
  #most = 0;
  #tapping = true;
  /** @type {"x" | "y" | null} */
  #axis = null;
  /** @type {{x: number, y: number, until: number} | null} A tap whose button is still down. */
  #tapped = null;
  /** When a tap of two fingers is not going to be a double one any more. */
  #togetherUntil = Infinity;

  /** @param {Actions} actions @param {Options} options */
  constructor(actions, options = USUAL) {
    this.#actions = actions;
    this.options = options;
  }

  /** @param {{id: number, x: number, y: number, time: number, size?: number, mouse?: boolean}} finger */
  down({ id, x, y, time, size = 0, mouse = false }) {
    if (size > PALM) return;
    this.tick(time);
    this.#fingers.set(id, { x, y, startX: x, startY: y, time, mouse });
    this.#most = Math.max(this.#most, this.#fingers.size);
    if (this.phase === "holding") return;
    if (this.#fingers.size === 1) this.#first(x, y, time);
    else this.#another(time);
    this.#setDue();
  }

  /** @param {{id: number, x: number, y: number, time: number}} place */
  move({ id, x, y, time }) {
    const finger = this.#fingers.get(id);
    if (!finger) return;
    this.tick(time);
    const [dx, dy] = [x - finger.x, y - finger.y];
    const travel = Math.hypot(x - finger.startX, y - finger.startY);
    const before = this.#centre();
    this.#follow(dx, dy, time - finger.time);
    Object.assign(finger, { x, y, time });
    this.#travel = Math.max(this.#travel, travel);
    if (travel > TAP_SLOP) this.#tapping = false;
    switch (this.phase) {
      case "still":
      case "again":
        if (travel > this.#moveSlop(finger)) this.#start(finger);
        break;
      case "moving":
      case "holding":
        this.#move(dx, dy);
        break;
      case "pair":
        if (travel > TOGETHER_SLOP) this.#startTogether();
        break;
      case "scrolling":
        this.#scroll(dx, dy, time);
        break;
      case "transforming":
        this.#transform(before);
    }
    this.#setDue();
  }

  /** @param {number} id @param {number} time */
  up(id, time) {
    const finger = this.#fingers.get(id);
    if (!finger) return;
    this.tick(time);
    this.#fingers.delete(id);
    const last = this.#fingers.size === 0;
    // Where small movements mean nothing, a tap may take its time.
    const unhurried = finger.mouse || this.options.places;
    const quick = time - this.#startedAt <= (unhurried ? HOLD_AFTER : TAP_TIME);
    if (this.phase === "scrolling") this.#actions.scrolled(time);
    if (this.phase === "still" || this.phase === "moving") {
      if (quick && this.#tapping) this.#tap(finger.x, finger.y, time);
    } else if (this.phase === "again") {
      this.#letGo();
      this.#tap(finger.x, finger.y, time);
    } else if (this.phase === "holding" && last) {
      this.#actions.release();
    } else if (this.phase === "pair" && last && this.#tapping
      && time - this.#startedAt < TAP_TIME_TOGETHER) {
      this.#tapTogether(time);
    }
    if (last) this.phase = "idle";
    else if (this.phase === "scrolling" || this.phase === "transforming") this.phase = "over";
    this.#setDue();
  }

  /** The system took this pointer away: whatever it was doing ends without an effect. @param {number} id */
  cancel(id) {
    if (!this.#fingers.delete(id)) return;
    this.#letGo();
    if (this.phase === "holding") this.#actions.release();
    this.phase = this.#fingers.size === 0 ? "idle" : "over";
    this.#setDue();
  }

  cancelAll() {
    for (const id of [...this.#fingers.keys()]) this.cancel(id);
    this.#letGo();
    this.#togetherUntil = Infinity;
    this.#setDue();
  }

  /** Does what has become due by `time`. @param {number} time */
  tick(time) {
    if (this.#togetherUntil <= time) {
      this.#togetherUntil = Infinity;
      this.#actions.tap("right");
    }
    if (this.#tapped && this.phase !== "again" && this.#tapped.until <= time) this.#letGo();
    if (this.#holdDue <= time) this.#hold();
    this.#setDue();
  }

  get #holdDue() {
    const resting = this.phase === "again" || ((this.phase === "still" || this.phase === "moving")
      && this.options.holds && this.#travel <= this.#holdSlop);
    return resting ? this.#startedAt + HOLD_AFTER : Infinity;
  }

  #setDue() {
    const tapEnd = this.#tapped && this.phase !== "again" ? this.#tapped.until : Infinity;
    this.due = Math.min(this.#holdDue, tapEnd, this.#togetherUntil);
  }

  get #holdSlop() {
    return this.options.places ? TAP_SLOP : HOLD_SLOP;
  }

  /** @param {{mouse: boolean}} finger */
  #moveSlop({ mouse }) {
    if (mouse) return MOUSE_SLOP;
    return this.options.places || this.phase === "again" ? TAP_SLOP : MOVE_SLOP;
  }

  // One finger.

  /** @param {number} x @param {number} y @param {number} time */
  #first(x, y, time) {
    this.#startedAt = time;
    this.#travel = this.#speed = 0;
    this.#moved = { x: 0, y: 0 };
    this.#most = 1;
    this.#tapping = true;
    const again = this.#tapped && Math.hypot(x - this.#tapped.x, y - this.#tapped.y) < AGAIN_SLOP;
    if (!again) this.#letGo();
    this.phase = again ? "again" : "still";
  }

  /** The finger's way so far counts from where it came down. */
  #start({ x, y, startX, startY }) {
    if (this.phase === "again") this.#drag();
    else this.phase = "moving";
    this.#move(x - startX, y - startY);
  }

  // A press that a tap has begun goes on as a drag.
  #drag() {
    this.#tapped = null;
    this.phase = "holding";
  }

  #hold() {
    if (this.phase === "again") {
      this.#drag();
      return;
    }
    this.#takeBack();
    this.phase = "holding";
    this.#actions.hold();
  }

  /** @param {number} dx @param {number} dy */
  #move(dx, dy) {
    const gain = this.options.places ? 1 : pointerGain(this.#speed) * this.options.speed;
    this.#moved.x += dx * gain;
    this.#moved.y += dy * gain;
    this.#actions.move(dx * gain, dy * gain);
  }

  /** @param {number} dx @param {number} dy @param {number} elapsed */
  #follow(dx, dy, elapsed) {
    const speed = Math.hypot(dx, dy) / Math.max(1, elapsed);
    this.#speed = this.phase === "still" ? speed : 0.5 * this.#speed + 0.5 * speed;
  }

  // What a tap moved on its way was not meant.
  #takeBack() {
    const { x, y } = this.#moved;
    if (x || y) this.#actions.move(-x, -y);
    this.#moved = { x: 0, y: 0 };
  }

  /** @param {number} x @param {number} y @param {number} time */
  #tap(x, y, time) {
    this.#takeBack();
    if (!this.options.tapDrags) {
      this.#actions.tap("left");
      return;
    }
    this.#actions.press();
    this.#tapped = { x, y, until: time + AGAIN_WITHIN };
  }

  #letGo() {
    if (!this.#tapped) return;
    this.#tapped = null;
    this.#actions.release();
  }

  // Two fingers and three.

  /** @param {number} time */
  #another(time) {
    this.#letGo();
    const early = time - this.#startedAt < TAP_TIME;
    const could = this.phase === "still" || this.phase === "again" || this.phase === "moving"
      || (this.phase === "pair" && this.#fingers.size === 3);
    if (!could) {
      this.phase = "over";
      return;
    }
    this.#tapping &&= early;
    if (this.#tapping) this.#takeBack();
    this.phase = "pair";
    // Each goes on from where it is now.
    for (const finger of this.#fingers.values()) {
      finger.startX = finger.x;
      finger.startY = finger.y;
    }
  }

  #startTogether() {
    if (this.#fingers.size !== 2) {
      if (this.#fingers.size > 2) this.phase = "over";
      return;
    }
    const { pair } = this.options;
    const [a, b] = [...this.#fingers.values()];
    const apart = Math.hypot(a.x - b.x, a.y - b.y)
      - Math.hypot(a.startX - b.startX, a.startY - b.startY);
    const [dx, dy] = [(a.x + b.x - a.startX - b.startX) / 2, (a.y + b.y - a.startY - b.startY) / 2];
    const together = Math.hypot(dx, dy);
    if (pair === "pinch" && Math.abs(apart) <= PINCH_SLOP && together <= TOGETHER_SLOP) return;
    const pinches = pair === "pan" || (pair === "pinch" && Math.abs(apart) > together);
    this.#tapping = false;
    this.phase = pinches ? "transforming" : "scrolling";
    this.#axis = dominantAxis(dx, dy);
    // What it took to see that they pinch counts too.
    if (pinches) this.#transform(centre(a.startX, a.startY, b.startX, b.startY));
  }

  // Two fingers that move together move the content once, not twice.
  /** @param {number} dx @param {number} dy @param {number} time */
  #scroll(dx, dy, time) {
    const share = Math.max(1, this.#fingers.size);
    this.#actions.scroll(this.#axis === "y" ? 0 : dx / share, this.#axis === "x" ? 0 : dy / share, time);
  }

  #centre() {
    const [a, b] = [...this.#fingers.values()];
    return b ? centre(a.x, a.y, b.x, b.y) : null;
  }

  /** @param {{x: number, y: number, apart: number} | null} before */
  #transform(before) {
    const now = this.#centre();
    if (!before || !now) return;
    this.#actions.transform?.({
      factor: before.apart > 0 ? now.apart / before.apart : 1,
      dx: now.x - before.x, dy: now.y - before.y, x: now.x, y: now.y,
    });
  }

  /** @param {number} time */
  #tapTogether(time) {
    if (this.#most === 3) {
      this.#actions.tap("center");
    } else if (!this.#actions.fit) {
      this.#actions.tap("right");
    } else if (this.#togetherUntil < Infinity) {
      this.#togetherUntil = Infinity;
      this.#actions.fit();
    } else {
      this.#togetherUntil = time + TOGETHER_AGAIN;
    }
  }
}

/** The middle of two fingers and how far they are apart. */
const centre = (x1, y1, x2, y2) =>
  ({ x: (x1 + x2) / 2, y: (y1 + y2) / 2, apart: Math.hypot(x1 - x2, y1 - y2) });

/** @param {number} dx @param {number} dy @returns {"x" | "y" | null} */
function dominantAxis(dx, dy) {
  if (Math.abs(dy) > AXIS_RATIO * Math.abs(dx)) return "y";
  if (Math.abs(dx) > AXIS_RATIO * Math.abs(dy)) return "x";
  return null;
}
