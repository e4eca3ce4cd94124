// What the page sends often, one call at a time, so that a slow line delays it but never queues it.

/** Sums up what comes in while a call is under way, and sends it as one. */
export class Summed {
  #x = 0;
  #y = 0;
  #busy = false;
  #take;
  #send;

  /** `take(x, y)` gives the part that can go out now; `send` gets it and returns a promise. */
  constructor(take, send) {
    this.#take = take;
    this.#send = send;
  }

  add(x, y) {
    this.#x += x;
    this.#y += y;
    if (!this.#busy) this.#pump();
  }

  /** Sends what has been summed up at once, for a call that must come after it. */
  flush() {
    const [x, y] = this.#takePart();
    if (x || y) this.#send(x, y).catch(() => {});
  }

  drop() {
    this.#x = this.#y = 0;
  }

  #takePart() {
    const part = this.#take(this.#x, this.#y);
    this.#x -= part[0];
    this.#y -= part[1];
    return part;
  }

  async #pump() {
    const [x, y] = this.#takePart();
    if (!x && !y) return;
    this.#busy = true;
    try {
      await this.#send(x, y);
    } catch {
      this.drop();
    }
    this.#busy = false;
    this.#pump();
  }
}

/** Of what comes in while a call is under way, only the last is sent. */
export class Latest {
  #next = null;
  #busy = false;
  #send;

  /** `send` gets what was put and returns a promise. */
  constructor(send) {
    this.#send = send;
  }

  put(value) {
    this.#next = value;
    if (!this.#busy) this.#pump();
  }

  /** Sends what waits at once, for a call that must come after it. */
  flush() {
    if (this.#next !== null) this.#post().catch(() => {});
  }

  drop() {
    this.#next = null;
  }

  #post() {
    const value = this.#next;
    this.#next = null;
    return this.#send(value);
  }

  async #pump() {
    this.#busy = true;
    while (this.#next !== null) await this.#post().catch(() => {});
    this.#busy = false;
  }
}
