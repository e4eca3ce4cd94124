// The computer's displays drawn to scale, and the pointer on them.

import { Poller } from "../connection/polling.js";
import { number, text } from "../text/text.js";
import { draw, make, one } from "../ui/dom.js";

const CURSOR_INTERVAL = 300;
const TALLEST = 460;
const GAP = 3;
const TEXT_MARGIN = 9;
const LINE_HEIGHT = 19;

/**
 * @typedef {{id: string, name: string, x: number, y: number, w: number, h: number, scale: number,
 *   pxW: number, pxH: number, primary: boolean}} DisplayRecord as the host describes a display
 * @typedef {{x: number, y: number, width: number, height: number}} Box
 */

/** Keeps the display records up to date; emits "change". */
export class DisplayList extends EventTarget {
  /** @type {DisplayRecord[]} */
  records = [];
  /** Whether the host has been asked for them and has answered. */
  loaded = false;
  #connection;

  /** @param {import("../connection/connection.js").Connection} connection */
  constructor(connection) {
    super();
    this.#connection = connection;
    connection.onHostCall("displaysChanged", (records) => this.#take(records));
    connection.addEventListener("state", () => this.#refresh());
  }

  async #refresh() {
    if (!this.#connection.connected) return;
    try {
      this.#take(await this.#connection.call("getDisplays"));
    } catch {
      // The next connection asks again.
      this.#take(this.records);
    }
  }

  #take(records) {
    this.records = records ?? [];
    this.loaded = true;
    this.dispatchEvent(new Event("change"));
  }
}

/**
 * The place of each display in a drawing `width` by `height`, centred; pure.
 * @param {DisplayRecord[]} records
 * @param {number} width
 * @param {number} height
 */
export function arrange(records, width, height) {
  const left = Math.min(...records.map(({ x }) => x));
  const top = Math.min(...records.map(({ y }) => y));
  const across = Math.max(...records.map(({ x, w }) => x + w)) - left;
  const down = Math.max(...records.map(({ y, h }) => y + h)) - top;
  const scale = Math.min(width / across, height / down);
  return {
    width: across * scale,
    height: down * scale,
    boxes: records.map(({ x, y, w, h }) => ({
      x: (x - left) * scale, y: (y - top) * scale, width: w * scale, height: h * scale,
    })),
  };
}

export class DisplayView {
  #drawing;
  #frame;
  #list;
  #empty;
  #displays;
  #pointer;
  #connection;
  /** @type {Box[]} */
  #boxes = [];
  #cursor = /** @type {Element | null} */ (null);
  #cursorOn = 0;
  #poller;

  /**
   * @param {HTMLElement} panel
   * @param {DisplayList} displays
   * @param {import("../touch/pointer.js").RemotePointer} pointer
   * @param {import("../connection/connection.js").Connection} connection
   */
  constructor(panel, displays, pointer, connection) {
    this.#drawing = one(panel, ".arrangement", SVGSVGElement);
    this.#frame = one(panel, ".drawing > div");
    this.#list = one(panel, ".display-list");
    this.#empty = one(panel, ".empty");
    this.#displays = displays;
    this.#pointer = pointer;
    this.#connection = connection;
    displays.addEventListener("change", () => this.#redraw());
    new ResizeObserver(() => this.#redraw()).observe(this.#frame);
    this.#poller = new Poller(panel, connection, async () => {
      await this.#findCursor();
      return CURSOR_INTERVAL;
    });
  }

  #redraw() {
    const records = this.#displays.records;
    const { clientWidth } = this.#frame;
    this.#empty.hidden = records.length > 0;
    this.#drawing.toggleAttribute("hidden", records.length === 0);
    this.#list.replaceChildren(...records.map(listEntry));
    this.#boxes = [];
    if (records.length === 0 || clientWidth === 0) return;

    const tallest = Math.min(TALLEST, Math.max(200, window.innerHeight * 0.5));
    const { width, height, boxes } = arrange(records, clientWidth, tallest);
    this.#drawing.setAttribute("viewBox", `0 0 ${width} ${height}`);
    this.#drawing.setAttribute("width", String(width));
    this.#drawing.setAttribute("height", String(height));
    this.#boxes = boxes;
    this.#cursor = draw("circle", { class: "cursor", r: 5, visibility: "hidden" });
    // In the document first: only there can a text be measured.
    const drawn = records.map((record, index) => this.#drawDisplay(record, boxes[index]));
    this.#drawing.replaceChildren(...drawn, this.#cursor);
    drawn.forEach((group, index) => label(group, records[index], boxes[index], index + 1));
    this.#poller.hurry();
  }

  #drawDisplay(record, box) {
    const group = draw("g", {
      class: record.primary ? "display primary" : "display", role: "button", tabindex: 0,
      "aria-label": text("displayHere", { name: record.name, size: resolution(record) }),
    });
    group.append(draw("rect", {
      x: box.x + GAP, y: box.y + GAP, rx: 7,
      width: Math.max(1, box.width - 2 * GAP), height: Math.max(1, box.height - 2 * GAP),
    }));
    group.addEventListener("click", (/** @type {any} */ event) => {
      const drawing = this.#drawing.getBoundingClientRect();
      this.#jump(record, (event.clientX - drawing.left - box.x) / box.width,
        (event.clientY - drawing.top - box.y) / box.height);
    });
    group.addEventListener("keydown", (/** @type {any} */ event) => {
      if (event.key !== "Enter" && event.key !== " ") return;
      event.preventDefault();
      this.#jump(record, 0.5, 0.5);
    });
    return group;
  }

  #jump(record, x, y) {
    this.#pointer.jump(record.id, x, y).catch(() => {});
  }

  // The display that had the pointer last is asked first.
  async #findCursor() {
    const records = this.#displays.records;
    for (let step = 0; step < records.length; step++) {
      const index = (this.#cursorOn + step) % records.length;
      let place;
      try {
        place = await this.#connection.call("screenCursor", { display: records[index].id });
      } catch {
        break;
      }
      if (records !== this.#displays.records) return;
      if (!place?.onDisplay) continue;
      this.#cursorOn = index;
      this.#showCursor(this.#boxes[index], place);
      return;
    }
    this.#cursor?.setAttribute("visibility", "hidden");
  }

  #showCursor(box, place) {
    if (!box) return;
    this.#cursor?.setAttribute("cx", box.x + place.x * box.width);
    this.#cursor?.setAttribute("cy", box.y + place.y * box.height);
    this.#cursor?.setAttribute("visibility", "visible");
  }
}

/** @param {DisplayRecord} record */
const resolution = ({ pxW, pxH }) => `${pxW} × ${pxH}`;

// A display too small for its name bears its number in the list instead.
/** @param {Element} group @param {DisplayRecord} record @param {Box} box @param {number} place */
function label(group, record, box, place) {
  const width = box.width - 2 * TEXT_MARGIN;
  const lines = [["name", record.name], ["detail", resolution(record)]];
  if (record.primary) lines.push(["badge", text("displayPrimary")]);
  const shown = lines.slice(0, Math.max(1, Math.floor((box.height - TEXT_MARGIN) / LINE_HEIGHT)))
    .map(([kind, content]) => textLine(group, kind, content))
    .filter((line, index) => index === 0 || keepIf(line, line.getComputedTextLength() <= width));
  if (shown[0].getComputedTextLength() > width) {
    shown.splice(1).forEach((line) => line.remove());
    shown[0].textContent = number(place);
  }
  shown.forEach((line, index) => {
    line.setAttribute("x", String(box.x + box.width / 2));
    line.setAttribute("y", String(box.y + box.height / 2 + (index - (shown.length - 1) / 2) * LINE_HEIGHT));
  });
}

/** @param {Element} group @param {string} kind @param {string} content */
function textLine(group, kind, content) {
  const line = /** @type {SVGTextElement} */ (draw("text", {
    "class": kind, "text-anchor": "middle", "dominant-baseline": "central",
  }));
  line.textContent = content;
  group.append(line);
  return line;
}

/** @param {Element} line @param {boolean} kept */
function keepIf(line, kept) {
  if (!kept) line.remove();
  return kept;
}

/** @param {DisplayRecord} record @param {number} index */
function listEntry(record, index) {
  const entry = make("li");
  const name = make("strong", "", record.name);
  if (record.primary) name.append(make("span", "pill", text("displayPrimary")));
  const parts = [text("displaySize", { size: resolution(record) }),
    text("displayAt", { x: record.x, y: record.y }).replaceAll(" ", "\u00a0")];
  if (record.scale !== 1) parts.push(text("displayScale", { scale: record.scale }));
  const about = make("div");
  about.append(name, make("span", "", parts.join(" · ")));
  entry.append(make("span", "number", number(index + 1)), about);
  return entry;
}
