// The touchpad: what is done on the pad moves the pointer from where it is.

import { Surface } from "./surface.js";

export class Touchpad extends Surface {
  /** @param {HTMLElement} pad @param {ConstructorParameters<typeof Surface>[1]} parts */
  constructor(pad, parts) {
    super(pad, parts, {});
  }
}
