// Whether the host starts by itself when the user logs in.

import { text } from "../text/text.js";
import { one } from "../ui/dom.js";

const CHANNEL = "launch_at_startup";

/**
 * Binds the panel's switch; it shows what the computer says, and nothing while that is not known.
 * @param {HTMLElement} panel
 * @param {import("../connection/connection.js").Connection} connection
 */
export function bindLoginItem(panel, connection) {
  const card = one(panel, "#login-item");
  const toggle = one(card, "[role=switch]", HTMLButtonElement);
  const outcome = one(card, ".outcome");
  let changing = false;

  const say = (content, failed = false) => {
    outcome.textContent = content;
    outcome.classList.toggle("failed", failed);
  };

  const read = async () => {
    const enabled = await connection.call("launchAtStartupIsEnabled", null, { channel: CHANNEL });
    toggle.setAttribute("aria-checked", String(enabled));
    return enabled;
  };

  const refresh = async () => {
    if (!connection.connected) toggle.disabled = true;
    if (changing || !connection.connected || panel.hidden || document.hidden) return;
    say("");
    try {
      await read();
      toggle.disabled = false;
    } catch (error) {
      toggle.disabled = true;
      say(/** @type {Error} */ (error).message, true);
    }
  };

  const change = async (wanted) => {
    if (changing) return;
    changing = true;
    say("");
    try {
      await connection.call("launchAtStartupSetEnabled", { setEnabledValue: wanted }, { channel: CHANNEL });
      // The computer may have refused, and the call does not tell.
      const enabled = await read();
      if (wanted && !enabled) {
        say(text("loginStillOff"), true);
      } else if (!wanted && enabled) {
        say(text("loginStillOn"), true);
      }
    } catch (error) {
      say(/** @type {Error} */ (error).message, true);
    }
    changing = false;
  };

  toggle.addEventListener("click", () => change(toggle.getAttribute("aria-checked") !== "true"));
  for (const source of [document, panel]) source.addEventListener("visibilitychange", refresh);
  connection.addEventListener("state", refresh);
}
