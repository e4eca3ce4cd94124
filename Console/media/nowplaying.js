// What the computer plays, and the commands for it.

import { Poller } from "../connection/polling.js";
import { text } from "../text/text.js";
import { goodFor, positionAt } from "./trackclock.js";

/** Players take a moment to do what they are told: for so long (ms) they are asked more often. */
const SETTLING = 2500;
const WHILE_SETTLING = 400;
const AFTER_FAILURE = 6000;

/**
 * @typedef {{title: string, artist: string, album: string, duration: number, position: number,
 *   playing: boolean, canSeek: boolean, app: string, trackId: string, art?: string}} Track as the host
 *   describes what plays
 */

/** @param {Track | null | undefined} track */
const keyOf = (track) => track && `${track.app}|${track.trackId}`;

/**
 * Asks what is playing while `panel` is looked at. Emits "change"; `track` is the host's record, null
 * when nothing is loaded, undefined while that is not known. `failure` says why nothing can be known,
 * or is "". Emits "unanswered" when a player did not do what it was told.
 */
export class NowPlaying extends EventTarget {
  track = /** @type {Track | null | undefined} */ (undefined);
  failure = "";
  #connection;
  #poller;
  #toldAt = 0;
  #art = "";
  /** @type {string | null | undefined} */
  #artFor = null;
  /** What play and pause were told to make of it, until it is so or too long ago. @type {boolean | null} */
  #told = null;
  #commands = 0;
  #settledAt = 0;
  #supported = /** @type {boolean | null} */ (null);

  /** @param {HTMLElement} panel @param {import("../connection/connection.js").Connection} connection */
  constructor(panel, connection) {
    super();
    this.#connection = connection;
    this.#poller = new Poller(panel, connection, (first) => this.#ask(first));
  }

  get watched() {
    return this.#poller.active;
  }

  /** The base64 text of the JPEG of the track's cover, or "". */
  get art() {
    return this.track && keyOf(this.track) === this.#artFor ? this.#art : "";
  }

  /** The position (s) by now. */
  get position() {
    return this.track ? positionAt(this.track, this.#toldAt, performance.now()) : 0;
  }

  /** Whether it plays, as far as anybody was told. */
  get plays() {
    return this.#told ?? this.track?.playing === true;
  }

  /** @param {string} method */
  command(method) {
    if (method === "mediaPlayPause" && this.track) {
      this.#told = !this.plays;
      this.dispatchEvent(new Event("change"));
    }
    return this.#tell(method, null);
  }

  /** @param {number} position in seconds */
  seek(position) {
    if (!this.track) return Promise.resolve();
    this.#toldAt = performance.now();
    this.track = { ...this.track, position };
    this.dispatchEvent(new Event("change"));
    return this.#tell("mediaSeek", { position });
  }

  // An answer to a question from before the command would show what was before it.
  async #tell(method, args) {
    this.#commands++;
    try {
      await this.#connection.call(method, args);
    } finally {
      this.#commands++;
      this.#settledAt = performance.now() + SETTLING;
      this.#poller.hurry(WHILE_SETTLING);
    }
  }

  async #ask(first) {
    try {
      if (first) this.#supported = await this.#connection.call("supportsNowPlaying");
      this.#fail(this.#supported ? "" : text("playersUnseen"));
      if (this.#supported) await this.#read();
      else this.#take(null);
    } catch (error) {
      if (this.#connection.connected) this.#fail(/** @type {Error} */ (error).message);
      return AFTER_FAILURE;
    }
    return performance.now() < this.#settledAt ? WHILE_SETTLING : goodFor(this.track);
  }

  // The cover is asked for once a track, which is shown without it until then. It belongs to the
  // track that comes in the same answer, which may be the next one already.
  async #read() {
    const commands = this.#commands;
    const track = await this.#connection.call("getNowPlaying", { includeArt: false });
    if (commands === this.#commands) this.#take(track);
    if (!track || keyOf(track) === this.#artFor) return;
    const whole = await this.#connection.call("getNowPlaying", { includeArt: true });
    this.#artFor = keyOf(whole);
    this.#art = whole?.art ?? "";
    // The position of this answer is as old as finding the cover took.
    if (commands === this.#commands && keyOf(whole) !== keyOf(track)) this.#take(whole);
    else this.dispatchEvent(new Event("change"));
  }

  /** @param {Track | null} track */
  #take(track) {
    this.track = track;
    const settled = performance.now() >= this.#settledAt;
    if (this.#told !== null && (settled || !track || track.playing === this.#told)) {
      const did = !track || track.playing === this.#told;
      this.#told = null;
      if (!did) this.dispatchEvent(new Event("unanswered"));
    }
    this.#toldAt = performance.now();
    this.dispatchEvent(new Event("change"));
  }

  #fail(text) {
    if (text === this.failure) return;
    this.failure = text;
    this.dispatchEvent(new Event("change"));
  }
}
