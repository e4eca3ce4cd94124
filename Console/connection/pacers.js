// What the page sends often: a few calls at a time, so that a slow line delays it but never queues it.

import { Flight } from "./flight.js";

/** Sums up what comes in while no call can go out, and sends it as one. */
export class Summed {
  #x = 0;
  #y = 0;
  #flight = new Flight();
  #take;
  #send;
  #now;

  /**
   * @param {(x: number, y: number) => number[]} take gives the part that can go out now
   * @param {(x: number, y: number) => Promise<unknown>} send
   */
  constructor(take, send, now = () => performance.now()) {
    this.#take = take;
    this.#send = send;
    this.#now = now;
  }

  /** @param {number} x @param {number} y */
  add(x, y) {
    this.#x += x;
    this.#y += y;
    if (this.#flight.mayStart(this.#now())) this.flush();
  }

  /** Sends what has been summed up at once, for a call that must come after it. */
  flush() {
    const [x, y] = this.#take(this.#x, this.#y);
    if (!x && !y) return;
    this.#x -= x;
    this.#y -= y;
    this.#post(x, y);
  }

  drop() {
    this.#x = this.#y = 0;
  }

  /** @param {number} x @param {number} y */
  async #post(x, y) {
    this.#flight.started(this.#now());
    try {
      await this.#send(x, y);
    } catch {
      this.drop();
    }
    this.#flight.ended(this.#now());
    if (this.#flight.mayStart(this.#now())) this.flush();
  }
}

/** Of what comes in while no call can go out, only the last is sent. @template T */
export class Latest {
  /** @type {T | null} */
  #next = null;
  #flight = new Flight();
  #send;
  #now;

  /** @param {(value: T) => Promise<unknown>} send */
  constructor(send, now = () => performance.now()) {
    this.#send = send;
    this.#now = now;
  }

  /** @param {T} value */
  put(value) {
    this.#next = value;
    if (this.#flight.mayStart(this.#now())) this.flush();
  }

  /** Sends what waits at once, for a call that must come after it. */
  flush() {
    const value = this.#next;
    this.#next = null;
    if (value !== null) this.#post(value);
  }

  drop() {
    this.#next = null;
  }

  /** @param {T} value */
  async #post(value) {
    this.#flight.started(this.#now());
    await this.#send(value).catch(() => {});
    this.#flight.ended(this.#now());
    if (this.#flight.mayStart(this.#now())) this.flush();
  }
}
