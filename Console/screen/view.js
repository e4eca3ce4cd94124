// The screen panel: the picture, what can be done with it, and why there is none.

import { bindRequests } from "../settings/permissions.js";
import { bindChoice } from "../settings/view.js";
import { text } from "../text/text.js";
import { all, byId, make, one } from "../ui/dom.js";
import { Note } from "../ui/note.js";
import { ScreenFeed } from "./feed.js";
import { Picture } from "./picture.js";
import { Zoom } from "./zoom.js";

/** @typedef {import("../text/text.js").TextKey} TextKey */

/** @type {Record<string, TextKey>} */
const PROBLEMS = {
  no_display: "screenNoDisplay", capture_failed: "screenCaptureFailed", encode_failed: "screenEncodeFailed",
  damaged: "screenDamaged", NOT_IMPLEMENTED: "screenNotOffered",
};
/** How many of the host's pixels one of the page's gets, at most, and the JPEG quality. */
/** @type {Record<string, {density: (ratio: number) => number, quality: number}>} */
const QUALITIES = {
  fast: { density: (ratio) => 0.6 * Math.min(ratio, 1.5), quality: 45 },
  balanced: { density: (ratio) => Math.min(ratio, 2), quality: 60 },
  sharp: { density: (ratio) => ratio, quality: 85 },
};
/** A zoom under way asks for no new width before it has rested for so long (ms). */
const ZOOM_RESTS = 200;

export class ScreenView {
  /** The picture's gestures, to be cancelled when the panel is left. */
  picture;
  /** The display that is shown, by its identifier. */
  display = "";
  zoom = new Zoom();
  #stage;
  #canvas;
  #cursor;
  #notice;
  #chips = byId("display-chips");
  #feed;
  #displays;
  #line;
  #laser;
  #settings;
  #shown = /** @type {{display: string} | null} */ (null);
  #width = 0;
  #zoomTimer = 0;

  /**
   * @param {HTMLElement} panel
   * @param {ConstructorParameters<typeof import("../touch/surface.js").Surface>[1] & {
   *   connection: import("../connection/connection.js").Connection, laser: import("./laser.js").Laser,
   *   displays: import("../more/displays.js").DisplayList}} parts
   */
  constructor(panel, parts) {
    const { connection, displays, line, laser, settings } = parts;
    this.#stage = one(panel, "#stage");
    this.#canvas = one(panel, "canvas", HTMLCanvasElement);
    this.#cursor = one(panel, ".remote-cursor", SVGSVGElement);
    this.#notice = one(panel, ".screen-notice");
    this.#displays = displays;
    this.#line = line;
    this.#laser = laser;
    this.#settings = settings;
    this.#feed = new ScreenFeed(panel, connection, () => this.#wish());
    this.picture = new Picture(this.#stage, parts, {
      placeAt: (x, y) => this.#placeAt(x, y),
      pointsPerPixel: () => (this.#record(this.#shown?.display)?.w ?? 0) / this.zoom.rect.width,
      direct: () => settings.values.screenMode === "direct",
      zoomed: () => this.zoom.zoomed,
      pointing: () => laser.on,
      transform: (change) => this.#transform(change),
      fit: () => {
        this.zoom.fit();
        this.#zoomed();
      },
      used: () => this.#feed.hurry(),
    });
    bindChoice("quality", settings);
    bindRequests(one(this.#notice, ".actions"), "screen", line, new Note(one(panel, ".outcome")));
    this.#listen();
    this.#showNotice();
  }

  #listen() {
    this.#feed.addEventListener("picture", (event) => this.#draw(/** @type {CustomEvent} */ (event).detail));
    this.#feed.addEventListener("cursor", (event) => this.#showCursor(/** @type {CustomEvent} */ (event).detail));
    this.#feed.addEventListener("problem", () => this.#showNotice());
    this.#displays.addEventListener("change", () => this.#listDisplays());
    this.#settings.addEventListener("change", () => this.#zoomed());
    this.#line.addEventListener("change", () => {
      this.#showNotice();
      this.#feed.hurry();
    });
    new ResizeObserver(() => {
      this.#measure();
      this.#zoomed();
    }).observe(this.#stage);
  }

  // What is asked for.

  // Another display or width costs another whole picture: the first waits until both are known.
  #wish() {
    if (this.#line.granted.screen === false || this.#stage.clientWidth === 0 || !this.#displays.loaded) return null;
    if (this.#width === 0) this.#measure();
    const { quality } = QUALITIES[this.#settings.values.quality] ?? QUALITIES.balanced;
    return { display: this.display, maxWidth: this.#width || this.#wantedWidth(), quality };
  }

  #measure() {
    this.zoom.setBox(this.#stage.clientWidth, this.#stage.clientHeight);
  }

  #wantedWidth() {
    const { density } = QUALITIES[this.#settings.values.quality] ?? QUALITIES.balanced;
    const record = this.#record(this.display);
    if (record) this.zoom.setPicture(record.pxW, record.pxH);
    return this.zoom.wantedWidth(density(devicePixelRatio));
  }

  /** @param {string} [id] */
  #record(id) {
    return this.#displays.records.find((record) => record.id === id);
  }

  #listDisplays() {
    const { records } = this.#displays;
    if (!this.#record(this.display)) this.display = (records.find(({ primary }) => primary) ?? records[0])?.id ?? "";
    this.#chips.hidden = records.length < 2;
    this.#chips.replaceChildren(...records.map(({ id, name }) => {
      const chip = make("button", "", name);
      chip.type = "button";
      chip.setAttribute("aria-pressed", String(id === this.display));
      chip.addEventListener("click", () => this.#choose(id));
      return chip;
    }));
    this.#width = 0;
    this.#zoomed();
    this.#feed.hurry();
  }

  /** @param {string} id */
  #choose(id) {
    this.display = id;
    this.zoom.fit();
    this.#listDisplays();
    all(this.#chips, "button").find((chip) => chip.ariaPressed === "true")?.focus();
  }

  // What is shown.

  #transform(change) {
    const box = this.#stage.getBoundingClientRect();
    this.zoom.change({ ...change, x: change.x - box.left, y: change.y - box.top });
    this.#zoomed();
  }

  #zoomed() {
    clearTimeout(this.#zoomTimer);
    if (this.#stage.clientWidth === 0) {
      this.#width = 0;
      return;
    }
    this.#lay();
    this.#zoomTimer = setTimeout(() => {
      this.#width = this.#wantedWidth();
      this.#lay();
      this.#feed.hurry();
    }, this.#width === 0 ? 0 : ZOOM_RESTS);
  }

  #lay() {
    const { x, y, width, height } = this.zoom.rect;
    Object.assign(this.#canvas.style, { width: `${width}px`, height: `${height}px`, translate: `${x}px ${y}px` });
    this.#placeCursor();
  }

  #draw({ bitmap, display }) {
    const canvas = this.#canvas;
    if (canvas.width !== bitmap.width || canvas.height !== bitmap.height || this.#shown?.display !== display) {
      canvas.width = bitmap.width;
      canvas.height = bitmap.height;
      if (!this.#record(display)) this.zoom.setPicture(bitmap.width, bitmap.height);
      this.#lay();
    }
    canvas.getContext("2d", { alpha: false })?.drawImage(bitmap, 0, 0);
    bitmap.close();
    canvas.hidden = false;
    this.#shown = { display };
    this.#showNotice();
  }

  #placeAt(clientX, clientY) {
    if (!this.#shown) return null;
    const box = this.#stage.getBoundingClientRect();
    const x = clientX - box.left - this.#stage.clientLeft;
    const y = clientY - box.top - this.#stage.clientTop;
    return { display: this.#shown.display, ...this.zoom.fractionsAt(x, y) };
  }

  /** @type {{x: number, y: number} | null} */
  #pointer = null;

  // The laser's dot is in the picture itself, and the arrow would cover it.
  #showCursor(place) {
    const shown = this.#shown !== null && place?.onDisplay === true && !this.#laser.on;
    this.#cursor.toggleAttribute("hidden", !shown);
    const moved = shown && (place.x !== this.#pointer?.x || place.y !== this.#pointer?.y);
    this.#pointer = shown ? place : null;
    const follows = moved && this.#settings.values.screenMode === "trackpad";
    if (follows && this.zoom.reveal(place.x, place.y)) this.#lay();
    else this.#placeCursor();
  }

  #placeCursor() {
    if (!this.#pointer) return;
    const { x, y, width, height } = this.zoom.rect;
    this.#cursor.style.translate = `${x + this.#pointer.x * width}px ${y + this.#pointer.y * height}px`;
  }

  #showNotice() {
    const missing = this.#line.granted.screen === false;
    const { problem } = this.#feed;
    const content = missing ? text("screenNotAllowed")
      : problem ? text(PROBLEMS[problem] ?? PROBLEMS.capture_failed)
        : this.#shown ? "" : text("screenWaiting");
    this.#notice.hidden = !content;
    one(this.#notice, "p").textContent = content;
    one(this.#notice, ".actions").hidden = !missing;
  }
}
