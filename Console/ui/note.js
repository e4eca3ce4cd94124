// A line of text that says for a while what came of something.

const NOTE_TIME = 5000;

export class Note {
  #line;
  #timer = 0;

  /** @param {HTMLElement} line */
  constructor(line) {
    this.#line = line;
  }

  /** @param {string} content @param {boolean} [failed] */
  say(content, failed = false) {
    clearTimeout(this.#timer);
    this.#line.textContent = content;
    this.#line.classList.toggle("failed", failed);
    this.#timer = setTimeout(() => { this.#line.textContent = ""; }, NOTE_TIME);
  }

  /**
   * Does `action`, then says `afterwards`, or what went wrong.
   * @param {() => Promise<unknown>} action
   * @param {string} [afterwards]
   */
  async attempt(action, afterwards = "") {
    try {
      await action();
      this.say(afterwards);
    } catch (error) {
      this.say(/** @type {Error} */ (error).message, true);
    }
  }
}
