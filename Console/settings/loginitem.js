// Whether the host starts by itself when the user logs in.

const CHANNEL = "launch_at_startup";

/** Binds the panel's switch; it shows what the computer says, and nothing while that is not known. */
export function bindLoginItem(panel, connection) {
  const card = panel.querySelector("#login-item");
  const toggle = card.querySelector("[role=switch]");
  const outcome = card.querySelector(".outcome");
  let changing = false;

  const say = (text, failed = false) => {
    outcome.textContent = text;
    outcome.classList.toggle("failed", failed);
  };

  const read = async () => {
    const enabled = await connection.call("launchAtStartupIsEnabled", null, CHANNEL);
    toggle.setAttribute("aria-checked", enabled);
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
      say(error.message, true);
    }
  };

  const change = async (wanted) => {
    if (changing) return;
    changing = true;
    say("");
    try {
      await connection.call("launchAtStartupSetEnabled", { setEnabledValue: wanted }, CHANNEL);
      // The computer may have refused, and the call does not tell.
      const enabled = await read();
      if (wanted && !enabled) {
        say("It is still off: the computer wants this approved in its own settings first.", true);
      } else if (!wanted && enabled) {
        say("It is still on: the computer did not let go of it.", true);
      }
    } catch (error) {
      say(error.message, true);
    }
    changing = false;
  };

  toggle.addEventListener("click", () => change(toggle.getAttribute("aria-checked") !== "true"));
  for (const source of [document, panel]) source.addEventListener("visibilitychange", refresh);
  connection.addEventListener("state", refresh);
}
