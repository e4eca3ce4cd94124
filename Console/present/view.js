// A talk: pages, laser, black screen, a clock.

import { clockText } from "../media/trackclock.js";
import { all, byId, one } from "../ui/dom.js";
import { Note } from "../ui/note.js";
import { pointerGain } from "../touch/recogniser.js";

/** @type {Record<string, string>} */
const KEYS = { next: "pagedown", previous: "pageup", start: "f5", black: "b" };
const VIBRATION = 25;

/**
 * @param {HTMLElement} panel
 * @param {{connection: import("../connection/connection.js").Connection,
 *   queue: import("../keyboard/typing.js").TypingQueue, laser: import("../screen/laser.js").Laser,
 *   pointer: import("../touch/pointer.js").RemotePointer,
 *   settings: import("../settings/settings.js").Settings}} parts
 */
export function bindPresent(panel, { connection, queue, laser, pointer, settings }) {
  const note = new Note(one(panel, ".outcome"));
  const vibrate = () => { if (settings.values.vibration) navigator.vibrate?.(VIBRATION); };

  for (const button of all(panel, "[data-present]")) {
    button.addEventListener("click", () => {
      vibrate();
      queue.press(KEYS[button.dataset.present ?? ""]);
    });
  }
  bindTimer(byId("present-timer"));

  // The dot stands for the pointer, whose arrow would cover it.
  const button = byId("present-laser");
  const last = { id: -1, x: 0, y: 0, time: 0 };
  const end = () => {
    if (last.id < 0) return;
    last.id = -1;
    button.classList.remove("pressed");
    laser.leave();
    connection.call("showCursor").catch(() => {});
  };
  button.addEventListener("pointerdown", (event) => {
    if (last.id >= 0 || event.button !== 0 || !connection.connected) return;
    button.setPointerCapture(event.pointerId);
    Object.assign(last, { id: event.pointerId, x: event.clientX, y: event.clientY, time: event.timeStamp });
    button.classList.add("pressed");
    vibrate();
    note.attempt(() => Promise.all([laser.turn(true), connection.call("hideCursor")]));
  });
  button.addEventListener("pointermove", (event) => {
    if (event.pointerId !== last.id) return;
    const [dx, dy] = [event.clientX - last.x, event.clientY - last.y];
    const gain = settings.values.speed
      * pointerGain(Math.hypot(dx, dy) / Math.max(1, event.timeStamp - last.time));
    pointer.move(dx * gain, dy * gain);
    Object.assign(last, { x: event.clientX, y: event.clientY, time: event.timeStamp });
  });
  for (const type of ["pointerup", "pointercancel", "lostpointercapture"]) button.addEventListener(type, end);
  button.addEventListener("contextmenu", (event) => event.preventDefault());
  // Who cannot hold switches it on and off.
  button.addEventListener("click", (event) => {
    if (/** @type {PointerEvent} */ (event).pointerType || event.detail > 0) return;
    note.attempt(() => laser.turn(!laser.on));
  });
  for (const source of [document, panel]) {
    source.addEventListener("visibilitychange", () => { if (panel.hidden || document.hidden) end(); });
  }
}

/** Starts at a tap, and stops and starts anew at the next ones. @param {HTMLElement} button */
function bindTimer(button) {
  const clock = one(button, ".clock");
  let since = 0;
  let timer = 0;
  const tick = () => {
    const passed = (performance.now() - since) / 1000;
    clock.textContent = clockText(passed);
    timer = setTimeout(tick, 1000 - (passed % 1) * 1000);
  };
  button.addEventListener("click", () => {
    const runs = timer !== 0;
    clearTimeout(timer);
    timer = 0;
    button.setAttribute("aria-pressed", String(!runs));
    if (runs) return;
    since = performance.now();
    tick();
  });
}
