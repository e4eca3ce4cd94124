// The computer's volume: its level, and the keys that change it.

import { Poller } from "../connection/polling.js";

const LOOK_AGAIN = 6000;
/** The host's commands go on for a moment (ms) after they are answered. */
const AFTER_COMMAND = 350;
const STEPS = { volumeUp: 10, volumeDown: -10 };

const limited = (level) => Math.min(100, Math.max(0, level));

/** Binds the card: buttons with the method's name in data-volume, a bar and its number. */
export function bindVolume(card, panel, connection, note) {
  const bar = card.querySelector("progress");
  const number = card.querySelector(".level");
  let level = null;
  let commands = 0;

  const show = (value) => {
    level = value;
    if (level === null) bar.removeAttribute("value");
    else bar.value = level;
    number.textContent = level === null ? "" : `${level} %`;
  };

  const poller = new Poller(panel, connection, async () => {
    const before = commands;
    try {
      const value = limited(Number(await connection.call("getVolumeLevel")));
      if (before === commands) show(value);
    } catch {
      show(null);
    }
    return LOOK_AGAIN;
  });

  const change = async (method) => {
    commands++;
    // Each step is shown at once: fingers are faster than the computer.
    if (level !== null && STEPS[method]) show(limited(level + STEPS[method]));
    try {
      await connection.call(method);
    } finally {
      commands++;
      poller.hurry(AFTER_COMMAND);
    }
  };

  for (const button of card.querySelectorAll("button")) {
    button.addEventListener("click", () => note.attempt(() => change(button.dataset.volume)));
  }
}
