// What stands below the picture: quality, laser, windows, full screen.

const QUALITY = "tapdeck.quality";

/** The radio buttons `steps`; gives a function that tells the quality chosen. */
export function bindQuality(steps, changed) {
  const remembered = steps.find(({ value }) => value === sessionStorage.getItem(QUALITY));
  if (remembered) remembered.checked = true;
  for (const step of steps) {
    step.addEventListener("change", () => {
      sessionStorage.setItem(QUALITY, step.value);
      changed();
    });
  }
  return () => Number(steps.find(({ checked }) => checked).value);
}

export function bindLaser(button, laser, note) {
  button.addEventListener("click", () => note.attempt(() => laser.turn(!laser.on)));
  laser.addEventListener("change", () => button.setAttribute("aria-pressed", laser.on));
}

/** Brings the window in front to the display that `chosen` gives; one display needs no such thing. */
export function bindWindow(button, connection, displays, chosen, note) {
  let supported = false;
  const show = () => { button.hidden = !supported || displays.records.length < 2; };
  displays.addEventListener("change", show);
  connection.addEventListener("state", async () => {
    if (!connection.connected) return;
    supported = await connection.call("supportsWindowMove").catch(() => false) === true;
    show();
  });
  button.addEventListener("click", () => note.attempt(
    () => connection.call("moveWindowToDisplay", { display: chosen() }),
    "The window in front comes to this display."));
}

export function bindFullScreen(button, panel, note) {
  button.hidden = !document.fullscreenEnabled;
  button.addEventListener("click", () => note.attempt(() => document.fullscreenElement
    ? document.exitFullscreen() : panel.requestFullscreen()));
  document.addEventListener("fullscreenchange", () => {
    const full = document.fullscreenElement !== null;
    button.setAttribute("aria-pressed", full);
  });
}
