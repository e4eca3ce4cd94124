// Buttons that go on doing what they do for as long as a finger is on them.

const REPEAT_AFTER = 420;

/**
 * Calls `act` when `button` is pressed, and again every `every` ms while it stays so and `ready` says so:
 * what the computer is not ready for is left out, since it must end with the finger.
 * @param {HTMLElement} button
 * @param {() => void} act
 * @param {{every: number, ready?: () => boolean}} how
 */
export function repeats(button, act, { every, ready = () => true }) {
  let timer = 0;
  const again = (delay) => {
    timer = setTimeout(() => {
      if (ready()) act();
      again(every);
    }, delay);
  };
  button.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    clearTimeout(timer);
    button.classList.add("pressed");
    act();
    again(REPEAT_AFTER);
  });
  for (const type of ["pointerup", "pointercancel", "pointerleave", "lostpointercapture"]) {
    button.addEventListener(type, () => {
      clearTimeout(timer);
      button.classList.remove("pressed");
    });
  }
  button.addEventListener("contextmenu", (event) => event.preventDefault());
  // A click that no pointer made is a screen reader's or a key's.
  button.addEventListener("click", (event) => {
    if (!(/** @type {PointerEvent} */ (event).pointerType) && event.detail === 0) act();
  });
}
