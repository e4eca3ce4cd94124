// Mouse buttons that stay pressed for as long as a finger, a mouse or a key is on them.

const HOLD_KEYS = new Set([" ", "Enter"]);

/**
 * Makes `element` (with the button's name in data-button) a mouse button of the computer.
 * @param {HTMLElement} element
 * @param {import("./pointer.js").RemotePointer} pointer
 */
export function bindMouseButton(element, pointer) {
  const button = element.dataset.button ?? "left";
  // A release that comes before the mouse has been looked at waits for the press.
  /** @type {Promise<unknown>} */
  let ready = Promise.resolve();

  const press = () => pointer.press(element, button);
  const release = () => ready.then(() => pointer.release(element));

  element.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    element.setPointerCapture(event.pointerId);
    if (event.pointerType !== "mouse") {
      press();
      return;
    }
    ready = pointer.isSelf(event).then((self) => { if (!self) press(); });
  });
  for (const type of ["pointerup", "pointercancel", "lostpointercapture", "blur"]) {
    element.addEventListener(type, release);
  }
  element.addEventListener("keydown", (event) => {
    if (!HOLD_KEYS.has(event.key)) return;
    event.preventDefault();
    if (!event.repeat) press();
  });
  element.addEventListener("keyup", (event) => {
    if (!HOLD_KEYS.has(event.key)) return;
    event.preventDefault();
    release();
  });
  // What a screen reader activates comes as a click that no pointer made.
  element.addEventListener("click", (event) => {
    if (/** @type {PointerEvent} */ (event).pointerType || event.detail > 0) return;
    press();
    release();
  });
  element.addEventListener("contextmenu", (event) => event.preventDefault());
  pointer.addEventListener("held", () => {
    element.classList.toggle("pressed", pointer.held === button);
  });
}
