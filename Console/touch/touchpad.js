// The touchpad: what is done on the pad moves the pointer from where it is.

import { Surface } from "./surface.js";

export class Touchpad extends Surface {
  constructor(pad, pointer, momentum) {
    super(pad, pointer, momentum, {
      move: (dx, dy) => pointer.move(dx, dy),
      scroll: (x, y, time) => momentum.move(x, y, time),
      scrolled: (time) => momentum.release(time),
      hold: () => this.#hold(),
      letGo: () => pointer.release(this),
    });
  }

  #hold() {
    if (this.pointer.held !== null) return;
    this.pointer.press(this, "left");
    navigator.vibrate?.(25);
  }
}
