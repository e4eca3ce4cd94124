// The computer's volume: its level, and the steps that change it.

import { Poller } from "../connection/polling.js";
import { number, text } from "../text/text.js";
import { all, one } from "../ui/dom.js";
import { repeats } from "../ui/repeat.js";

const LOOK_AGAIN = 6000;
const REPEAT_EVERY = 250;
/** How long (ms) a step may take to be heard of; the host's steps go on after they are answered. */
const STEP_TIME = 700;
const STEP_POLL = 60;
const STEP = 10;

const limited = (level) => Math.min(100, Math.max(0, level));
const later = (delay) => new Promise((resolve) => setTimeout(resolve, delay));

/**
 * Binds the row: buttons with the method's name in data-volume, and a slider.
 * @param {HTMLElement} row
 * @param {HTMLElement} panel
 * @param {import("../connection/connection.js").Connection} connection
 * @param {import("../ui/note.js").Note} note
 */
export function bindVolume(row, panel, connection, note) {
  const slider = one(row, "input", HTMLInputElement);
  const label = one(row, ".level");
  /** @type {number | null} */
  let level = null;
  /** @type {number | null} What a person wants it to be, until it is. */
  let wanted = null;
  let dragged = false;
  let stepping = false;

  const show = () => {
    const shown = wanted ?? level;
    slider.disabled = shown === null;
    if (shown !== null && !dragged) slider.value = String(shown);
    label.textContent = shown === null ? "" : number(shown / 100, { style: "percent" });
    slider.setAttribute("aria-valuetext", label.textContent);
    slider.style.setProperty("--played", String((shown ?? 0) / 100));
  };

  const read = async () => limited(Number(await connection.call("getVolumeLevel")));

  const poller = new Poller(panel, connection, async () => {
    try {
      if (!stepping) level = await read();
    } catch {
      level = null;
    }
    show();
    return LOOK_AGAIN;
  });

  // A step adds to what the computer reads at that time, so each waits for the one before.
  const step = async () => {
    if (stepping) return;
    stepping = true;
    try {
      while (wanted !== null && level !== null && Math.abs(wanted - level) >= STEP / 2) {
        const before = level;
        await connection.call(wanted > level ? "volumeUp" : "volumeDown");
        const end = performance.now() + STEP_TIME;
        do {
          await later(STEP_POLL);
          level = await read();
        } while (level === before && performance.now() < end);
        if (level === before) break;
      }
    } finally {
      stepping = false;
      wanted = null;
      show();
    }
  };
  const want = (value) => {
    if (level === null) return;
    wanted = limited(value);
    show();
    note.attempt(step);
  };

  for (const button of all(row, "[data-repeat]")) {
    const by = button.dataset.volume === "volumeUp" ? STEP : -STEP;
    repeats(button, () => want((wanted ?? level ?? 0) + by), { every: REPEAT_EVERY });
  }
  one(row, "[data-volume=volumeMute]").addEventListener("click", () => note.attempt(async () => {
    await connection.call("volumeMute");
    poller.hurry(STEP_TIME / 2);
  }));
  slider.addEventListener("input", () => {
    dragged = true;
    want(Number(slider.value));
  });
  for (const type of ["change", "pointercancel"]) slider.addEventListener(type, () => { dragged = false; });
  slider.setAttribute("aria-label", text("volume"));
  show();
}
