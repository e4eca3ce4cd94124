// Asking the host again and again, and only while somebody looks.

/**
 * Asks one question at a time while `panel` is shown, the page is in view and the host is there.
 * `ask(first)` returns a promise of the time (ms) until the next question, 0 for the next frame of the
 * page; `first` is true when the panel was out of view before. It must not reject.
 */
export class Poller {
  #panel;
  #connection;
  #ask;
  #running = false;
  #first = true;
  #due = Infinity;
  #timer = 0;
  #wake = () => {};

  /**
   * @param {HTMLElement} panel
   * @param {import("./connection.js").Connection} connection
   * @param {(first: boolean) => Promise<number>} ask
   */
  constructor(panel, connection, ask) {
    this.#panel = panel;
    this.#connection = connection;
    this.#ask = ask;
    for (const source of [document, panel]) {
      source.addEventListener("visibilitychange", () => this.#changed());
    }
    connection.addEventListener("state", () => this.#changed());
  }

  get active() {
    return !this.#panel.hidden && !document.hidden && this.#connection.connected;
  }

  /** Asks within `delay` ms, even if the next question would come later. */
  hurry(delay = 0) {
    this.#due = Math.min(this.#due, performance.now() + delay);
    this.#arm();
  }

  #changed() {
    if (!this.active) this.#first = true;
    this.#wake();
    this.#run();
  }

  async #run() {
    if (this.#running) return;
    this.#running = true;
    while (this.active) {
      const first = this.#first;
      this.#first = false;
      this.#due = Infinity;
      await this.#pause(await this.#ask(first));
    }
    this.#running = false;
  }

  async #pause(delay) {
    if (delay <= 0) {
      await new Promise(requestAnimationFrame);
    } else if (this.active) {
      await new Promise((/** @type {(value?: unknown) => void} */ resolve) => {
        this.#wake = resolve;
        this.hurry(delay);
      });
      clearTimeout(this.#timer);
      this.#wake = () => {};
    }
  }

  #arm() {
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.#wake(), this.#due - performance.now());
  }
}
