// A line of text that says for a while what came of something.

const NOTE_TIME = 5000;

export class Note {
  #line;
  #timer = 0;

  constructor(line) {
    this.#line = line;
  }

  say(text, failed = false) {
    clearTimeout(this.#timer);
    this.#line.textContent = text;
    this.#line.classList.toggle("failed", failed);
    this.#timer = setTimeout(() => { this.#line.textContent = ""; }, NOTE_TIME);
  }

  /** Does `action`, then says `afterwards`, or what went wrong. */
  async attempt(action, afterwards = "") {
    try {
      await action();
      this.say(afterwards);
    } catch (error) {
      this.say(error.message, true);
    }
  }
}
