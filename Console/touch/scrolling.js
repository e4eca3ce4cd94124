// Scrolling that goes on by itself for a while, and a strip to scroll with one finger.

/** Movement older than this (ms) says nothing about the speed at which a finger leaves. */
const RECENT = 90;
/** A finger that has rested for so long (ms) was not throwing. */
const REST = 50;
/** Speeds are in points per ms. */
const SLOWEST_THROW = 0.2;
const FASTEST = 6;
const STANDSTILL = 0.03;
/** The speed falls to about a third within this time (ms). */
const DECAY = 325;

const STRIP_GAIN = 1.5;
/** @type {Record<string, number>} */
const KEY_STEPS = { ArrowUp: 27, ArrowDown: -27, PageUp: 270, PageDown: -270 };

const calm = matchMedia("(prefers-reduced-motion: reduce)");

/** How many points two fingers scroll per pixel. */
export const SCROLL_GAIN = 1.5;

/** Passes scrolling on to `scroll(x, y)` and lets it run out after the fingers are gone. */
export class Momentum {
  #scroll;
  #settings;
  /** @type {{x: number, y: number, time: number}[]} */
  #recent = [];
  #frame = 0;

  /**
   * @param {(x: number, y: number) => void} scroll
   * @param {import("../settings/settings.js").Settings} settings
   */
  constructor(scroll, settings) {
    this.#scroll = scroll;
    this.#settings = settings;
  }

  /** Scrolls as a finger does that moves by pixels; `time` is the event's. */
  move(x, y, time) {
    const { scrollSpeed, scrollFollows } = this.#settings.values;
    const gain = SCROLL_GAIN * scrollSpeed * (scrollFollows ? 1 : -1);
    [x, y] = [x * gain, y * gain];
    this.#recent = this.#recent.filter((step) => time - step.time < RECENT);
    this.#recent.push({ x, y, time });
    this.#scroll(x, y);
  }

  /** The fingers are gone: what was moving goes on. */
  release(time) {
    const steps = this.#recent.filter((step) => time - step.time < RECENT);
    this.#recent = [];
    if (calm.matches || steps.length < 2 || time - steps[steps.length - 1].time > REST) return;
    const elapsed = Math.max(8, steps[steps.length - 1].time - steps[0].time);
    // The first step led to the first time, so it is no part of what came since.
    const sum = (axis) => steps.slice(1).reduce((total, step) => total + step[axis], 0);
    const speed = Math.hypot(sum("x"), sum("y")) / elapsed;
    if (speed < SLOWEST_THROW) return;
    const factor = Math.min(1, FASTEST / speed) / elapsed;
    this.#glide(sum("x") * factor, sum("y") * factor, performance.now());
  }

  /** Stops at once; says whether there was anything to stop. */
  stop() {
    const moving = this.#frame !== 0;
    cancelAnimationFrame(this.#frame);
    this.#frame = 0;
    this.#recent = [];
    return moving;
  }

  #glide(x, y, before) {
    this.#frame = requestAnimationFrame((now) => {
      const kept = Math.exp(-Math.max(0, now - before) / DECAY);
      this.#scroll(x * DECAY * (1 - kept), y * DECAY * (1 - kept));
      this.#frame = 0;
      if (Math.hypot(x, y) * kept > STANDSTILL) this.#glide(x * kept, y * kept, now);
    });
  }
}

/**
 * Makes `strip` scroll up and down under one finger, a mouse or the keys.
 * @param {HTMLElement} strip
 * @param {Momentum} momentum
 */
export function bindScrollStrip(strip, momentum) {
  let finger = /** @type {number | null} */ (null);
  let last = 0;

  const end = (event, thrown) => {
    if (event.pointerId !== finger) return;
    finger = null;
    strip.classList.remove("pressed");
    if (thrown) momentum.release(event.timeStamp);
  };
  /** @type {(type: string, listener: (event: any) => void) => void} */
  const on = (type, listener) => strip.addEventListener(type, (event) => {
    event.stopPropagation();
    listener(event);
  });

  on("pointerdown", (event) => {
    if (finger !== null) return;
    momentum.stop();
    strip.setPointerCapture(event.pointerId);
    strip.classList.add("pressed");
    finger = event.pointerId;
    last = event.clientY;
  });
  on("pointermove", (event) => {
    if (event.pointerId !== finger) return;
    momentum.move(0, (event.clientY - last) * STRIP_GAIN, event.timeStamp);
    last = event.clientY;
  });
  on("pointerup", (event) => end(event, true));
  for (const type of ["pointercancel", "lostpointercapture"]) on(type, (event) => end(event, false));
  on("keydown", (event) => {
    const step = KEY_STEPS[event.key];
    if (!step) return;
    event.preventDefault();
    momentum.move(0, step, event.timeStamp);
  });
  on("contextmenu", (event) => event.preventDefault());
}
