// What the browser's Back closes, before it leaves the page.

/**
 * @typedef {object} Layer
 * @property {() => boolean} isOpen
 * @property {() => void} close
 */

/** The browser's history gets one entry for each open layer, and Back closes the uppermost of them. */
export class Back {
  #layers;
  #entries = 0;
  #ignored = 0;

  /** @param {Layer[]} layers the uppermost first */
  constructor(layers) {
    this.#layers = layers;
    window.addEventListener("popstate", () => this.#popped());
    for (const type of ["click", "keyup"]) window.addEventListener(type, () => this.update());
  }

  /** To be called when a layer was opened or closed. */
  update() {
    const open = this.#layers.filter((layer) => layer.isOpen()).length;
    // Browsers skip entries that no tap or key has led to.
    if (open > this.#entries && navigator.userActivation?.isActive === false) return;
    for (; this.#entries < open; this.#entries++) history.pushState({ tapdeck: true }, "");
    const surplus = this.#entries - open;
    if (surplus === 0) return;
    this.#entries = open;
    this.#ignored++;
    history.go(-surplus);
  }

  #popped() {
    if (this.#ignored > 0) {
      this.#ignored--;
      return;
    }
    this.#entries = Math.max(0, this.#entries - 1);
    this.#layers.find((layer) => layer.isOpen())?.close();
    this.update();
  }
}
