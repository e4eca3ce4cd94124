// The pictures of a display, one after the other.

import { Pacing } from "./pacing.js";

/** @typedef {{display: string, maxWidth: number, quality: number}} Wish */

/**
 * Asks for the screen's pictures while `panel` is looked at, a few at a time while it changes. `wish()`
 * gives what to ask for, or null while no picture is wanted. Events: "picture" with the detail {bitmap,
 * display} (the listener draws and closes the bitmap at once), "cursor" with the host's reply about the
 * pointer or null, and "problem" when `problem` has changed: "" or a code.
 */
export class ScreenFeed extends EventTarget {
  problem = "";
  #panel;
  #connection;
  #wish;
  #pacing = new Pacing();
  /** @type {Wish | null} What the last whole picture was asked for with. */
  #last = null;
  #cursor = /** @type {{x: number, y: number, onDisplay: boolean} | null} */ (null);
  #asked = 0;
  #drawn = 0;
  #timer = 0;
  /** Answers of an earlier line or view count for nothing. */
  #era = 0;

  /**
   * @param {HTMLElement} panel
   * @param {import("../connection/connection.js").Connection} connection
   * @param {() => Wish | null} wish
   */
  constructor(panel, connection, wish) {
    super();
    this.#panel = panel;
    this.#connection = connection;
    this.#wish = wish;
    for (const source of [document, panel]) {
      source.addEventListener("visibilitychange", () => this.#begin());
    }
    connection.addEventListener("state", () => this.#begin());
  }

  get #active() {
    return !this.#panel.hidden && !document.hidden && this.#connection.connected;
  }

  /** Something is about to happen on the screen, or the wish is another one. */
  hurry() {
    this.#pacing.hurry(performance.now());
    this.#pump();
  }

  #begin() {
    this.#era++;
    this.#last = null;
    this.#pacing = new Pacing();
    clearTimeout(this.#timer);
    this.#pump();
  }

  #pump() {
    clearTimeout(this.#timer);
    if (!this.#active) return;
    const now = performance.now();
    const next = this.#pacing.nextAt(now);
    if (next === Infinity) return;
    if (next > now) this.#timer = setTimeout(() => this.#pump(), next - now);
    else this.#ask(now);
  }

  /** @param {number} now */
  async #ask(now) {
    const era = this.#era;
    const wish = this.#wish();
    this.#pacing.started(now);
    if (!wish) {
      this.#failed();
    } else {
      const asked = ++this.#asked;
      try {
        const [reply, cursor] = await this.#request(wish);
        if (era === this.#era) await this.#take(reply, cursor, wish, asked);
      } catch (error) {
        if (era === this.#era) this.#failed();
        if (this.#connection.connected) this.#report(/** @type {any} */ (error).code ?? "capture_failed");
      }
    }
    if (era === this.#era) this.#pump();
  }

  /** @param {Wish} wish */
  #request(wish) {
    const { display, maxWidth, quality } = wish;
    const same = this.#last?.display === display && this.#last.quality === quality;
    this.#last = wish;
    // What the host sent last may never have come here, or in another quality.
    const whole = same ? {} : { force: true };
    const answers = Promise.all([
      this.#connection.call("captureScreen", { display, maxWidth, quality, ...whole }),
      this.#connection.call("screenCursor", { display }).catch(() => null),
    ]);
    setTimeout(() => this.#pump());
    return answers;
  }

  async #take(reply, cursor, wish, asked) {
    const moved = this.#takeCursor(cursor);
    if (reply?.unchanged) {
      this.#report("");
      this.#pacing.unchanged(performance.now(), moved);
    } else if (reply?.jpeg) {
      await this.#show(reply.jpeg, wish.display, asked);
    } else {
      this.#report(reply?.error ?? "capture_failed");
      this.#failed();
    }
  }

  // A picture counts as dealt with when it is on the page, or a slow page would fall behind.
  async #show(jpeg, display, asked) {
    const era = this.#era;
    try {
      const bitmap = await createImageBitmap(new Blob([jpeg], { type: "image/jpeg" }));
      if (era !== this.#era) {
        bitmap.close();
        return;
      }
      this.#pacing.changed(performance.now());
      if (asked < this.#drawn) {
        bitmap.close();
      } else {
        this.#drawn = asked;
        this.dispatchEvent(new CustomEvent("picture", { detail: { bitmap, display } }));
      }
      this.#report("");
    } catch {
      if (era !== this.#era) return;
      this.#report("damaged");
      this.#failed();
    }
  }

  #failed() {
    this.#last = null;
    this.#pacing.failed(performance.now());
  }

  #takeCursor(cursor) {
    const moved = cursor?.onDisplay !== this.#cursor?.onDisplay || cursor?.x !== this.#cursor?.x
      || cursor?.y !== this.#cursor?.y;
    this.#cursor = cursor;
    this.dispatchEvent(new CustomEvent("cursor", { detail: cursor }));
    return moved;
  }

  /** @param {string} problem */
  #report(problem) {
    if (problem === this.problem) return;
    this.problem = problem;
    this.dispatchEvent(new Event("problem"));
  }
}
