// The screen panel: the picture, what can be done with it, and why there is none.

import { fit, fractionsAt, pictureWidth } from "./letterbox.js";
import { Note } from "../ui/note.js";
import { Picture } from "./picture.js";
import { ScreenFeed } from "./screen.js";
import { bindFullScreen, bindLaser, bindQuality, bindWindow } from "./screentools.js";

const WAITING = "Waiting for the first picture…";
const NOT_ALLOWED = "The computer does not allow its screen to be seen yet.";
const PROBLEMS = {
  no_display: "The computer does not know this display any more.",
  capture_failed: "The computer could not take a picture of its screen. This page goes on trying.",
  encode_failed: "The computer could not compress the picture. This page goes on trying.",
  damaged: "The picture arrived damaged. This page goes on trying.",
  NOT_IMPLEMENTED: "This host does not show its screen.",
};

export class ScreenView {
  /** The picture's gestures, to be cancelled when the panel is left. */
  picture;
  #box;
  #stage;
  #canvas;
  #cursor;
  #notice;
  #choice;
  #note;
  #quality;
  #feed;
  #displays;
  #permissions;
  #laser;
  #shown = null;

  constructor(panel, { connection, displays, permissions, pointer, momentum, laser }) {
    this.#box = panel.querySelector(".screen-box");
    this.#stage = panel.querySelector("#stage");
    this.#canvas = panel.querySelector("canvas");
    this.#cursor = panel.querySelector(".remote-cursor");
    this.#notice = panel.querySelector(".screen-notice");
    this.#choice = panel.querySelector("#screen-display");
    this.#note = new Note(panel.querySelector(".outcome"));
    this.#displays = displays;
    this.#permissions = permissions;
    this.#laser = laser;
    this.#feed = new ScreenFeed(panel, connection, () => this.#wish());
    this.picture = new Picture(this.#stage, pointer, momentum, {
      placeAt: (x, y) => this.#placeAt(x, y),
      pointsPerPixel: () => this.#pointsPerPixel(),
      pointing: () => laser.on,
      used: () => this.#feed.hurry(),
    });
    this.#quality = bindQuality([...panel.querySelectorAll("[name=quality]")], () => this.#feed.hurry());
    bindLaser(panel.querySelector("#laser"), laser, this.#note);
    bindWindow(panel.querySelector("#bring-window"), connection, displays,
      () => this.#choice.value, this.#note);
    bindFullScreen(panel.querySelector("#full-screen"), panel, this.#note);
    this.#listen();
    this.#showNotice();
  }

  #listen() {
    this.#feed.addEventListener("picture", ({ detail }) => this.#draw(detail));
    this.#feed.addEventListener("cursor", ({ detail }) => this.#showCursor(detail));
    this.#feed.addEventListener("problem", () => this.#showNotice());
    this.#displays.addEventListener("change", () => this.#listDisplays());
    this.#choice.addEventListener("change", () => this.#feed.hurry());
    this.#permissions.addEventListener("change", () => {
      this.#showNotice();
      this.#feed.hurry();
    });
    new ResizeObserver(() => this.#feed.hurry()).observe(this.#stage);
    const [request, settings] = this.#notice.querySelectorAll("button");
    request.addEventListener("click", () => this.#note.attempt(
      () => this.#permissions.request("screen"),
      "Asked. Answer on the computer; this page notices by itself."));
    settings.addEventListener("click", () => this.#note.attempt(
      () => this.#permissions.openSettings("screen"), "The settings open on the computer."));
  }

  // What is asked for.

  #wish() {
    if (this.#permissions.granted.screen === false) return null;
    const display = this.#choice.value;
    const record = this.#record(display);
    const { pxW, pxH } = record ?? { pxW: this.#canvas.width, pxH: this.#canvas.height };
    const rect = fit(pxW, pxH, this.#stage.clientWidth, this.#stage.clientHeight);
    return { display, maxWidth: pictureWidth(rect, devicePixelRatio), quality: this.#quality() };
  }

  #record(display) {
    return this.#displays.records.find(({ id }) => id === display);
  }

  #listDisplays() {
    const chosen = this.#choice.value;
    const { records } = this.#displays;
    this.#choice.replaceChildren(...records.map(({ id, name, primary }) =>
      new Option(primary ? `${name} (primary)` : name, id, primary)));
    if (this.#record(chosen)) this.#choice.value = chosen;
    this.#choice.parentElement.hidden = records.length < 2;
    this.#feed.hurry();
  }

  // What is shown.

  #draw({ bitmap, display }) {
    const canvas = this.#canvas;
    if (canvas.width !== bitmap.width || canvas.height !== bitmap.height) {
      canvas.width = bitmap.width;
      canvas.height = bitmap.height;
      this.#box.style.setProperty("--aspect", bitmap.width / bitmap.height);
    }
    canvas.getContext("2d", { alpha: false }).drawImage(bitmap, 0, 0);
    bitmap.close();
    canvas.hidden = false;
    this.#shown = { display };
    this.#showNotice();
  }

  #rect() {
    const { width, height } = this.#canvas;
    return fit(width, height, this.#stage.clientWidth, this.#stage.clientHeight);
  }

  #pointsPerPixel() {
    return (this.#record(this.#shown?.display)?.w ?? 0) / this.#rect().width;
  }

  #placeAt(clientX, clientY) {
    if (!this.#shown) return null;
    const box = this.#stage.getBoundingClientRect();
    const x = clientX - box.left - this.#stage.clientLeft;
    const y = clientY - box.top - this.#stage.clientTop;
    return { display: this.#shown.display, ...fractionsAt(this.#rect(), x, y) };
  }

  // The laser's dot is in the picture itself, and the arrow would cover it.
  #showCursor(place) {
    const shown = this.#shown !== null && place?.onDisplay === true && !this.#laser.on;
    this.#cursor.toggleAttribute("hidden", !shown);
    if (!shown) return;
    const { x, y, width, height } = this.#rect();
    this.#cursor.style.translate = `${x + place.x * width}px ${y + place.y * height}px`;
  }

  #showNotice() {
    const missing = this.#permissions.granted.screen === false;
    const { problem } = this.#feed;
    const text = missing ? NOT_ALLOWED : problem ? PROBLEMS[problem] ?? PROBLEMS.capture_failed
      : this.#shown ? "" : WAITING;
    this.#notice.hidden = !text;
    this.#notice.querySelector("p").textContent = text;
    this.#notice.querySelector(".actions").hidden = !missing;
  }
}
