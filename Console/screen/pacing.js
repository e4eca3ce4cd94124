// When to ask for the next picture of the screen. Knows no clock and no line.

import { Flight } from "../connection/flight.js";

const FIRST_DELAY = 20;
const GROWTH = 1.6;
const MAX_DELAY = 100;
/** What moves may be the same for so many pictures in a row. */
const STILL_AFTER = 3;
/** A screen that has stood still for so long (ms) is asked for only so often. */
const RESTING_AFTER = 3000;
const RESTING_DELAY = 350;
/** While only the pointer moves: often enough to see it glide. */
const POINTER_DELAY = 33;
const FAILURE_DELAY = 1000;
/** No display shows more than so many pictures (ms between two). */
const FRAME = 16;

/** Times in ms. Several requests are under way only while the screen changes. */
export class Pacing {
  #flight = new Flight();
  #several = new Flight();
  #delay = 0;
  #nextAt = 0;
  #stillSince = 0;
  /** How many pictures in a row were the same. */
  #same = 0;

  constructor() {
    this.#flight = new Flight(1);
  }

  /** When the next request may go out; Infinity while an answer must come first. @param {number} now */
  nextAt(now) {
    const flight = this.#delay === 0 ? this.#several : this.#flight;
    return flight.mayStart(now) ? Math.max(now, this.#nextAt) : Infinity;
  }

  /** @param {number} now */
  started(now) {
    this.#flight.started(now);
    this.#several.started(now);
    this.#nextAt = now + Math.max(FRAME, this.#delay, this.#several.spacing);
  }

  /** The oldest request has been dealt with, and this is when. @param {number} now */
  #ended(now) {
    this.#flight.ended(now);
    this.#several.ended(now);
  }

  /** The picture was another one: what moves is followed as closely as the line allows. @param {number} now */
  changed(now) {
    this.#ended(now);
    this.#delay = this.#same = 0;
    this.#stillSince = now;
  }

  /** The picture was the same: the longer so, the later the next, but never out of touch. */
  unchanged(now, pointerMoved = false) {
    this.#ended(now);
    // What is under way already asks for what may have changed meanwhile.
    if (this.#several.count > 0 && ++this.#same <= STILL_AFTER) return;
    const rests = now - this.#stillSince > RESTING_AFTER && this.#delay >= MAX_DELAY;
    const longer = Math.min(MAX_DELAY, Math.max(FIRST_DELAY, this.#delay * GROWTH));
    this.#delay = pointerMoved ? Math.min(longer, POINTER_DELAY) : rests ? RESTING_DELAY : longer;
    if (pointerMoved) this.#stillSince = now;
    this.#nextAt = now + this.#delay;
  }

  /** Something is about to happen on the screen. @param {number} now */
  hurry(now) {
    if (this.#several.count === 0) this.#nextAt = Math.min(this.#nextAt, now);
    this.#delay = Math.min(this.#delay, FIRST_DELAY);
    this.#stillSince = now;
  }

  /** @param {number} now */
  failed(now) {
    this.#ended(now);
    this.#delay = FIRST_DELAY;
    this.#nextAt = now + FAILURE_DELAY;
  }
}
