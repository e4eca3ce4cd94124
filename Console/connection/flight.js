// How many requests may be under way at once. Knows no clock and no line.

/** So many fill a line of 100 ms with 30 answers a second. */
const LIMIT = 3;
/** While one has been under way for longer (ms), the line is stuck and no other follows. */
const MAX_AGE = 250;

/** Accounts for requests under way, which are answered in the order they were sent. */
export class Flight {
  /** When each of those under way was sent. @type {number[]} */
  #sent = [];
  #limit;
  /** How long (ms) a request takes of late. */
  roundTrip = 0;

  constructor(limit = LIMIT) {
    this.#limit = limit;
  }

  get count() {
    return this.#sent.length;
  }

  /** Whether another one may be sent at the time `now`. @param {number} now */
  mayStart(now) {
    return this.count === 0 || (this.count < this.#limit && now - this.#sent[0] < MAX_AGE);
  }

  /** How long (ms) to wait between two, so that their answers come evenly. */
  get spacing() {
    return this.roundTrip / this.#limit;
  }

  /** @param {number} now */
  started(now) {
    this.#sent.push(now);
  }

  /** The oldest was answered, or is not going to be. @param {number} now */
  ended(now) {
    const took = now - (this.#sent.shift() ?? now);
    this.roundTrip = this.roundTrip === 0 ? took : 0.8 * this.roundTrip + 0.2 * took;
  }
}
