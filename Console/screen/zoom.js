// Where a picture lies in the box that shows it, enlarged or whole, and what a place in the box means
// in the picture. Pure.

export const MAX_ZOOM = 6;
/** The host gives no picture narrower or wider than this (pixels). */
const NARROWEST = 320;
const WIDEST = 1920;
/** An enlarged picture is asked for in steps of so many pixels: each new width costs a whole picture. */
const WIDTH_STEP = 320;
/** The view follows the pointer when it comes this near to its edge, as a part of the box. */
const EDGE = 0.15;

/** @typedef {{x: number, y: number, width: number, height: number}} Rect in pixels of the page */

const limited = (value, low, high) => Math.min(high, Math.max(low, value));

/** A part of a picture in a box; lengths are in pixels of the page. */
export class Zoom {
  /** 1 shows the whole picture. */
  scale = 1;
  #box = { width: 1, height: 1 };
  #picture = { width: 1, height: 1 };
  /** The place of the picture in the middle of the box, as fractions of it. */
  #middle = { x: 0.5, y: 0.5 };

  /** @param {number} width @param {number} height */
  setBox(width, height) {
    this.#box = { width: Math.max(1, width), height: Math.max(1, height) };
    this.#settle();
  }

  /** The picture's shape; its size does not matter. @param {number} width @param {number} height */
  setPicture(width, height) {
    this.#picture = { width, height };
    this.#settle();
  }

  get zoomed() {
    return this.scale > 1.001;
  }

  /** The whole picture's rectangle, which is larger than the box when it is enlarged. @returns {Rect} */
  get rect() {
    const { width, height } = this.#size;
    return {
      x: this.#box.width / 2 - this.#middle.x * width,
      y: this.#box.height / 2 - this.#middle.y * height,
      width, height,
    };
  }

  /** A place in the box as fractions of the picture, limited to it, and whether it is on the picture. */
  fractionsAt(x, y) {
    const { rect } = this;
    const [across, down] = [(x - rect.x) / rect.width, (y - rect.y) / rect.height];
    const [limitedX, limitedY] = [limited(across, 0, 1), limited(down, 0, 1)];
    return { x: limitedX, y: limitedY, inside: across === limitedX && down === limitedY };
  }

  fit() {
    this.scale = 1;
    this.#settle();
  }

  /** Two fingers whose middle went by (dx, dy) to (x, y) and that came apart by `factor`. */
  change({ factor, dx, dy, x, y }) {
    const under = this.#fractions(x - dx, y - dy);
    this.scale = limited(this.scale * factor, 1, MAX_ZOOM);
    this.#put(under, x, y);
  }

  /** Moves the view so far that this place of the picture is in it; says whether it moved. */
  reveal(fractionX, fractionY) {
    if (!this.zoomed) return false;
    const { rect } = this;
    const { width, height } = this.#box;
    const before = { ...this.#middle };
    const [x, y] = [rect.x + fractionX * rect.width, rect.y + fractionY * rect.height];
    this.#put({ x: fractionX, y: fractionY }, limited(x, EDGE * width, (1 - EDGE) * width),
      limited(y, EDGE * height, (1 - EDGE) * height));
    return before.x !== this.#middle.x || before.y !== this.#middle.y;
  }

  /** The width (pixels) to ask the host for, with so many of them to one of the page. @param {number} density */
  wantedWidth(density) {
    const width = this.#size.width * density;
    const wanted = this.zoomed ? Math.ceil(width / WIDTH_STEP) * WIDTH_STEP : Math.round(width);
    return limited(wanted, NARROWEST, WIDEST);
  }

  get #size() {
    const { width, height } = this.#picture;
    const fitting = Math.min(this.#box.width / width, this.#box.height / height) * this.scale;
    return { width: width * fitting, height: height * fitting };
  }

  #fractions(x, y) {
    const { rect } = this;
    return { x: (x - rect.x) / rect.width, y: (y - rect.y) / rect.height };
  }

  /** Lays this place of the picture at a place of the box, as far as the picture reaches. */
  #put(fractions, x, y) {
    const { width, height } = this.#size;
    this.#middle = {
      x: fractions.x + (this.#box.width / 2 - x) / width,
      y: fractions.y + (this.#box.height / 2 - y) / height,
    };
    this.#settle();
  }

  // No empty space beside the picture where it is larger than the box.
  #settle() {
    const { width, height } = this.#size;
    const settle = (middle, size, box) => {
      const half = Math.min(0.5, box / size / 2);
      return limited(middle, half, 1 - half);
    };
    this.#middle = {
      x: settle(this.#middle.x, width, this.#box.width),
      y: settle(this.#middle.y, height, this.#box.height),
    };
  }
}
