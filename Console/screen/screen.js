// The pictures of a display, one after the other.

import { Pacing } from "./pacing.js";
import { Poller } from "../connection/polling.js";

/**
 * Asks for the screen's pictures while `panel` is looked at: as fast as they come, one call at a time.
 * `wish()` gives {display, maxWidth, quality}, or null while no picture is wanted. Events: "picture"
 * with the detail {bitmap, display} (the listener draws and closes the bitmap at once), "cursor" with
 * the host's reply about the pointer or null, and "problem" when `problem` has changed: "" or a code.
 */
export class ScreenFeed extends EventTarget {
  problem = "";
  #connection;
  #wish;
  #poller;
  #pacing = new Pacing();
  #last = null;
  #cursor = null;
  #showing = Promise.resolve();

  constructor(panel, connection, wish) {
    super();
    this.#connection = connection;
    this.#wish = wish;
    this.#poller = new Poller(panel, connection, (first) => this.#ask(first));
  }

  /** Something is about to happen on the screen, or the wish is another one. */
  hurry() {
    this.#pacing.hurry();
    this.#poller.hurry();
  }

  async #ask(first) {
    const wish = this.#wish();
    if (!wish) return this.#failed();
    try {
      const [reply, cursor] = await this.#request(wish, first);
      // The picture before this one must be on the page, or a slow page would fall behind.
      await this.#showing;
      return this.#take(reply, cursor, wish);
    } catch (error) {
      if (this.#connection.connected) this.#report(error.code);
      return this.#failed();
    }
  }

  // The host compares with the picture before, whosever that was: a new start needs a whole one.
  async #request(wish, first) {
    const { display, quality } = this.#last ?? {};
    if (first || display !== wish.display || quality !== wish.quality) {
      await this.#connection.call("resetScreenCapture");
    }
    this.#last = wish;
    return Promise.all([
      this.#connection.call("captureScreen", wish),
      this.#connection.call("screenCursor", { display: wish.display }).catch(() => null),
    ]);
  }

  #take(reply, cursor, wish) {
    const moved = this.#takeCursor(cursor);
    if (reply?.unchanged) {
      this.#report("");
      return this.#pacing.unchanged(moved);
    }
    if (!reply?.jpeg) {
      this.#report(reply?.error ?? "capture_failed");
      return this.#failed();
    }
    this.#showing = this.#show(reply.jpeg, wish.display);
    return this.#pacing.changed();
  }

  async #show(jpeg, display) {
    try {
      const bitmap = await createImageBitmap(new Blob([jpeg], { type: "image/jpeg" }));
      this.dispatchEvent(new CustomEvent("picture", { detail: { bitmap, display } }));
      this.#report("");
    } catch {
      this.#last = null;
      this.#report("damaged");
    }
  }

  // The host may hold a picture to compare with that never came here.
  #failed() {
    this.#last = null;
    return this.#pacing.failed();
  }

  #takeCursor(cursor) {
    const moved = cursor?.onDisplay !== this.#cursor?.onDisplay || cursor?.x !== this.#cursor?.x
      || cursor?.y !== this.#cursor?.y;
    this.#cursor = cursor;
    this.dispatchEvent(new CustomEvent("cursor", { detail: cursor }));
    return moved;
  }

  #report(problem) {
    if (problem === this.problem) return;
    this.problem = problem;
    this.dispatchEvent(new Event("problem"));
  }
}
