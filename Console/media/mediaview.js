// The media panel: what is playing, its keys, the volume and the computer's own switches.

import { Note } from "../ui/note.js";
import { NowPlaying } from "./nowplaying.js";
import { bindPower } from "../more/power.js";
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

  constructor(panel, connection) {
    const [note, powerNote] = [...panel.querySelectorAll(".outcome")].map((line) => new Note(line));
    this.#note = note;
    this.#card = panel.querySelector(".now-playing");
    this.#cover = panel.querySelector(".cover img");
    this.#slider = panel.querySelector("[type=range]");
    this.#playing = new NowPlaying(panel, connection);
    this.#playing.addEventListener("change", () => this.#show());
    this.#listen();
    bindVolume(panel.querySelector(".volume"), panel, connection, note);
    bindPower(panel.querySelectorAll("[data-power]"), panel.querySelector("dialog"), connection,
      powerNote);
    this.#show();
  }

  #listen() {
    for (const button of this.#card.querySelectorAll("[data-media]")) {
      button.addEventListener("click", () =>
        this.#note.attempt(() => this.#playing.command(button.dataset.media)));
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
    const { track, failure, art } = this.#playing;
    const idle = track === undefined && !failure ? "Looking…" : "Nothing is playing";
    this.#card.classList.toggle("playing", track?.playing === true);
    this.#card.classList.toggle("idle", !track);
    this.#write(".pill", track?.app ?? "");
    this.#write("h3", track?.title ?? idle);
    this.#write(".artist", track?.artist ?? failure);
    this.#write(".album", track?.album ?? "");
    this.#showCover(art);
    this.#card.querySelector("[data-media=mediaPlayPause]")
      .setAttribute("aria-label", track?.playing ? "Pause" : "Play");
    this.#card.querySelector(".position").hidden = !track;
    this.#slider.hidden = !track?.canSeek;
    if (track) this.#showLength(track);
    this.#tick();
  }

  // Written only when it is another text: a screen reader reads out what changes here.
  #write(selector, text) {
    const line = this.#card.querySelector(selector);
    if (line.textContent !== text) line.textContent = text;
    line.hidden = !text;
  }

  #showCover(art) {
    const source = art && `data:image/jpeg;base64,${art}`;
    if (source && this.#cover.getAttribute("src") !== source) this.#cover.src = source;
    if (!source) this.#cover.removeAttribute("src");
    this.#cover.hidden = !source;
  }

  #showLength({ canSeek, duration }) {
    this.#slider.max = Math.ceil(duration);
    this.#card.querySelector(".length").textContent = canSeek ? clockText(duration) : "";
  }

  // The position goes on by itself, a second at a time, while somebody looks.
  #tick() {
    clearTimeout(this.#timer);
    const { track } = this.#playing;
    if (!track) return;
    if (!this.#dragged) this.#slider.value = this.#playing.position;
    this.#showPosition();
    if (!track.playing || !this.#playing.watched) return;
    this.#timer = setTimeout(() => this.#tick(), 1000 - (this.#playing.position % 1) * 1000);
  }

  #showPosition() {
    const { position, track } = this.#playing;
    const shown = this.#dragged ? Number(this.#slider.value) : position;
    const [elapsed, length] = [clockText(shown), clockText(track.duration)];
    this.#card.querySelector(".elapsed").textContent = elapsed;
    this.#slider.setAttribute("aria-valuetext", `${elapsed} of ${length}`);
    this.#slider.style.setProperty("--played", track.canSeek ? shown / track.duration : 0);
  }
}
