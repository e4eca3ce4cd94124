// What lies over everything while there is no line to the computer: why, and what helps.

import { tokenIn } from "../connection/identity.js";
import { text } from "../text/text.js";
import { all, byId, one } from "./dom.js";

/** A line that is back this soon (ms) was not worth a panel. */
const PATIENCE = 450;

/** @typedef {import("../text/text.js").TextKey} TextKey */

/** @type {Record<string, string>} */
const NAMES = { "no-token": "NoToken", "wrong-token": "WrongToken", "network-off": "NetworkOff" };
/** Where a new address helps. */
const PAIRING = new Set(["no-token", "wrong-token", "forgotten"]);
/** The page goes on by itself, but a person may be quicker. */
const RETRIES = new Set(["unreachable", "lost", "disconnected", "full", "network-off", "slowed"]);

const capital = (word) => word[0].toUpperCase() + word.slice(1);

/** @param {import("../connection/connection.js").Connection} connection */
export function bindLinePanel(connection) {
  const panel = byId("line-panel");
  const form = one(panel, "form", HTMLFormElement);
  const input = one(form, "input", HTMLInputElement);
  const retry = byId("line-retry");
  const status = byId("status-text");
  let timer = 0;
  /** @type {HTMLElement | null} */
  let focused = null;

  const covers = (on) => {
    for (const part of all(document, "main, #places, #typing-bar")) part.inert = on;
    if (on === !panel.hidden) return;
    if (on) focused = /** @type {HTMLElement | null} */ (document.activeElement);
    panel.hidden = !on;
    if (on) panel.focus();
    else focused?.focus({ preventScroll: true });
  };

  const show = () => {
    const { state, reason, connected, devices } = connection;
    document.body.dataset.state = state;
    document.body.dataset.reason = reason;
    status.textContent = connected && devices > 1 ? text("statusDevices", { count: devices })
      : text(/** @type {TextKey} */ (`status${capital(state)}`));
    clearTimeout(timer);
    if (connected) {
      covers(false);
      return;
    }
    for (const part of all(document, "main, #places, #typing-bar")) part.inert = true;
    const name = reason ? NAMES[reason] ?? capital(reason) : capital(state);
    byId("line-title").textContent = text(/** @type {TextKey} */ (`line${name}Title`));
    byId("line-text").textContent = text(/** @type {TextKey} */ (`line${name}Text`));
    form.hidden = !PAIRING.has(reason);
    retry.hidden = !RETRIES.has(reason || state);
    if (state === "refused" || state === "unreachable") covers(true);
    else timer = setTimeout(() => covers(true), PATIENCE);
  };

  form.addEventListener("submit", (event) => {
    event.preventDefault();
    const token = tokenIn(input.value);
    one(form, ".outcome").textContent = token ? "" : text("lineAddressBad");
    if (!token) return;
    input.value = "";
    if (location.hash.slice(1) === token) connection.start();
    else location.hash = token;
  });
  retry.addEventListener("click", () => connection.start());
  connection.addEventListener("state", show);
  connection.addEventListener("devices", show);
  show();
}
