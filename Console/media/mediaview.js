// The media panel: what is playing, its keys and the volume.

import { text } from "../text/text.js";
import { all, one } from "../ui/dom.js";
import { Note } from "../ui/note.js";
import { NowPlaying } from "./nowplaying.js";
import { clockText } from "./trackclock.js";
import { bindVolume } from "./volume.js";

export class MediaView {
  #card;
  #cover;
  #slider;
  #playing;
  #note;
  #timer = 0;
  #dragged = false;

  /** @param {HTMLElement} panel @param {import("../connection/connection.js").Connection} connection */
  constructor(panel, connection) {
    this.#note = new Note(one(panel, ".outcome"));
    this.#card = one(panel, ".now-playing");
    this.#cover = one(panel, ".cover img", HTMLImageElement);
    this.#slider = one(panel, ".position input", HTMLInputElement);
    this.#playing = new NowPlaying(panel, connection);
    this.#playing.addEventListener("change", () => this.#show());
    this.#playing.addEventListener("unanswered", () => this.#note.say(text("noAnswerFromPlayer"), true));
    this.#listen();
    bindVolume(one(panel, ".volume"), panel, connection, this.#note);
    this.#show();
  }

  #listen() {
    for (const button of all(this.#card, "[data-media]")) {
      button.addEventListener("click", () =>
        this.#note.attempt(() => this.#playing.command(button.dataset.media ?? "")));
    }
    this.#cover.addEventListener("error", () => this.#showCover(""));
    this.#slider.addEventListener("input", () => {
      this.#dragged = true;
      this.#showPosition();
    });
    this.#slider.addEventListener("pointercancel", () => {
      this.#dragged = false;
      this.#tick();
    });
    this.#slider.addEventListener("change", () => {
      this.#dragged = false;
      this.#note.attempt(() => this.#playing.seek(Number(this.#slider.value)));
    });
  }

  #show() {
    const { track, failure, art, plays } = this.#playing;
    const idle = text(track === undefined && !failure ? "lookingForPlayers" : "nothingPlays");
    this.#card.classList.toggle("playing", plays);
    this.#card.classList.toggle("idle", !track);
    this.#write(".pill", track?.app ?? "");
    this.#write("h2", track?.title ?? idle);
    this.#write(".artist", track?.artist ?? failure);
    this.#write(".album", track?.album ?? "");
    this.#showCover(art);
    one(this.#card, "[data-media=mediaPlayPause]").setAttribute("aria-label", text(plays ? "pause" : "play"));
    one(this.#card, ".position").hidden = !track;
    this.#slider.hidden = !track?.canSeek;
    if (track) this.#showLength(track);
    this.#tick();
  }

  // Written only when it is another text: a screen reader reads out what changes here.
  /** @param {string} selector @param {string} content */
  #write(selector, content) {
    const line = one(this.#card, selector);
    if (line.textContent !== content) line.textContent = content;
    line.hidden = !content;
  }

  /** @param {string} art */
  #showCover(art) {
    const source = art && `data:image/jpeg;base64,${art}`;
    if (source && this.#cover.getAttribute("src") !== source) this.#cover.src = source;
    if (!source) this.#cover.removeAttribute("src");
    this.#cover.hidden = !source;
  }

  /** @param {import("./nowplaying.js").Track} track */
  #showLength({ canSeek, duration }) {
    this.#slider.max = String(Math.ceil(duration));
    one(this.#card, ".length").textContent = canSeek ? clockText(duration) : "";
  }

  // The position goes on by itself, a second at a time, while somebody looks.
  #tick() {
    clearTimeout(this.#timer);
    const { track } = this.#playing;
    if (!track) return;
    if (!this.#dragged) this.#slider.value = String(this.#playing.position);
    this.#showPosition();
    if (!track.playing || !this.#playing.watched) return;
    this.#timer = setTimeout(() => this.#tick(), 1000 - (this.#playing.position % 1) * 1000);
  }

  #showPosition() {
    const { position, track } = this.#playing;
    if (!track) return;
    const shown = this.#dragged ? Number(this.#slider.value) : position;
    const [elapsed, length] = [clockText(shown), clockText(track.duration)];
    one(this.#card, ".elapsed").textContent = elapsed;
    this.#slider.setAttribute("aria-valuetext", text("positionOf", { position: elapsed, length }));
    this.#slider.style.setProperty("--played", String(track.canSeek ? shown / track.duration : 0));
  }
}
