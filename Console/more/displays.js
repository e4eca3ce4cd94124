// The computer's displays drawn to scale, and the pointer on them.

import { Poller } from "../connection/polling.js";

const SVG = "http://www.w3.org/2000/svg";
const CURSOR_INTERVAL = 300;
const TALLEST = 460;
const GAP = 3;
const TEXT_MARGIN = 9;
const LINE_HEIGHT = 19;

/** Keeps the display records up to date; emits "change". */
export class DisplayList extends EventTarget {
  records = [];
  #connection;

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
    }
  }

  #take(records) {
    this.records = records ?? [];
    this.dispatchEvent(new Event("change"));
  }
}

/** The place of each display in a drawing `width` by `height`, centred; pure. */
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
  #list;
  #empty;
  #displays;
  #pointer;
  #connection;
  #boxes = [];
  #cursor = null;
  #cursorOn = 0;
  #poller;

  constructor(panel, displays, pointer, connection) {
    this.#drawing = panel.querySelector(".arrangement");
    this.#list = panel.querySelector(".display-list");
    this.#empty = panel.querySelector(".empty");
    this.#displays = displays;
    this.#pointer = pointer;
    this.#connection = connection;
    displays.addEventListener("change", () => this.#redraw());
    new ResizeObserver(() => this.#redraw()).observe(this.#drawing.parentElement);
    this.#poller = new Poller(panel, connection, async () => {
      await this.#findCursor();
      return CURSOR_INTERVAL;
    });
  }

  #redraw() {
    const records = this.#displays.records;
    const { clientWidth } = this.#drawing.parentElement;
    this.#empty.hidden = records.length > 0;
    this.#drawing.toggleAttribute("hidden", records.length === 0);
    this.#list.replaceChildren(...records.map(listEntry));
    this.#boxes = [];
    if (records.length === 0 || clientWidth === 0) return;

    const tallest = Math.min(TALLEST, Math.max(200, window.innerHeight * 0.5));
    const { width, height, boxes } = arrange(records, clientWidth, tallest);
    this.#drawing.setAttribute("viewBox", `0 0 ${width} ${height}`);
    this.#drawing.setAttribute("width", width);
    this.#drawing.setAttribute("height", height);
    this.#boxes = boxes;
    this.#cursor = element("circle", { class: "cursor", r: 5, visibility: "hidden" });
    // In the document first: only there can a text be measured.
    const drawn = records.map((record, index) => this.#drawDisplay(record, boxes[index]));
    this.#drawing.replaceChildren(...drawn, this.#cursor);
    drawn.forEach((group, index) => label(group, records[index], boxes[index], index + 1));
    this.#poller.hurry();
  }

  #drawDisplay(record, box) {
    const group = element("g", {
      class: record.primary ? "display primary" : "display", role: "button", tabindex: 0,
      "aria-label": `${describe(record)}. Move the pointer here`,
    });
    group.append(element("rect", {
      x: box.x + GAP, y: box.y + GAP, rx: 7,
      width: Math.max(1, box.width - 2 * GAP), height: Math.max(1, box.height - 2 * GAP),
    }));
    group.addEventListener("click", (event) => {
      const drawing = this.#drawing.getBoundingClientRect();
      this.#jump(record, (event.clientX - drawing.left - box.x) / box.width,
        (event.clientY - drawing.top - box.y) / box.height);
    });
    group.addEventListener("keydown", (event) => {
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
    this.#cursor.setAttribute("cx", box.x + place.x * box.width);
    this.#cursor.setAttribute("cy", box.y + place.y * box.height);
    this.#cursor.setAttribute("visibility", "visible");
  }
}

function element(name, attributes) {
  const made = document.createElementNS(SVG, name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  return made;
}

function resolution({ pxW, pxH }) {
  return `${pxW} × ${pxH}`;
}

function describe(record) {
  const primary = record.primary ? ", primary" : "";
  return `${record.name}, ${resolution(record)} pixels${primary}`;
}

// A display too small for its name bears its number in the list instead.
function label(group, record, box, number) {
  const width = box.width - 2 * TEXT_MARGIN;
  const lines = [["name", record.name], ["detail", resolution(record)]];
  if (record.primary) lines.push(["badge", "Primary"]);
  const shown = lines.slice(0, Math.max(1, Math.floor((box.height - TEXT_MARGIN) / LINE_HEIGHT)))
    .map(([kind, text]) => textLine(group, kind, text))
    .filter((line, index) => index === 0 || keepIf(line, line.getComputedTextLength() <= width));
  if (shown[0].getComputedTextLength() > width) {
    shown.splice(1).forEach((line) => line.remove());
    shown[0].textContent = number;
  }
  shown.forEach((line, index) => {
    line.setAttribute("x", box.x + box.width / 2);
    line.setAttribute("y", box.y + box.height / 2 + (index - (shown.length - 1) / 2) * LINE_HEIGHT);
  });
}

function textLine(group, kind, text) {
  const line = element("text", {
    "class": kind, "text-anchor": "middle", "dominant-baseline": "central",
  });
  line.textContent = text;
  group.append(line);
  return line;
}

function keepIf(line, kept) {
  if (!kept) line.remove();
  return kept;
}

function listEntry(record, index) {
  const entry = htmlElement("li");
  const name = htmlElement("strong", record.name);
  if (record.primary) name.append(htmlElement("span", "Primary", "pill"));
  const parts = [`${resolution(record)} pixels`, `at\u00a0${signed(record.x)},\u00a0${signed(record.y)}`];
  if (record.scale !== 1) parts.push(`scale ${record.scale}`);
  const text = htmlElement("div");
  text.append(name, htmlElement("span", parts.join(" · ")));
  entry.append(htmlElement("span", index + 1, "number"), text);
  return entry;
}

function signed(value) {
  return String(value).replace("-", "−");
}

function htmlElement(name, text = "", className = "") {
  const made = document.createElement(name);
  made.textContent = text;
  made.className = className;
  return made;
}
