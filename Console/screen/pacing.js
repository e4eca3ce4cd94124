// When to ask for the next picture of the screen.

const FIRST_DELAY = 20;
const GROWTH = 1.6;
const LONGEST_DELAY = 100;
/** While only the pointer moves: often enough to see it glide. */
const POINTER_DELAY = 33;
const FAILURE_DELAY = 1000;

/** Delays in ms; 0 means with the page's next frame. Knows no clock. */
export class Pacing {
  #delay = 0;

  /** The picture was another one: what moves is followed as closely as the line allows. */
  changed() {
    return this.#delay = 0;
  }

  /** The picture was the same: the longer so, the later the next, but never out of touch. */
  unchanged(pointerMoved) {
    this.#delay = Math.min(LONGEST_DELAY, Math.max(FIRST_DELAY, this.#delay * GROWTH));
    if (pointerMoved) this.#delay = Math.min(this.#delay, POINTER_DELAY);
    return this.#delay;
  }

  /** Something is about to happen on the screen. */
  hurry() {
    this.#delay = 0;
  }

  failed() {
    this.#delay = 0;
    return FAILURE_DELAY;
  }
}
