// Locking at once; sleeping, restarting, shutting down after a question.

import { text } from "../text/text.js";
import { all, one } from "../ui/dom.js";
import { Note } from "../ui/note.js";

/** @typedef {import("../text/text.js").TextKey} TextKey */
/** @typedef {{method: string, verb: TextKey, done: TextKey, ask?: TextKey, about?: TextKey}} Action */

/** @type {Record<string, Action>} */
const ACTIONS = {
  lock: { method: "lockScreen", verb: "lock", done: "lockDone" },
  sleep: { method: "sleepSystem", verb: "sleep", done: "sleepDone", ask: "sleepAsk", about: "sleepText" },
  restart: { method: "restartSystem", verb: "restart", done: "restartDone", ask: "restartAsk",
    about: "restartText" },
  shutdown: { method: "shutdownSystem", verb: "shutDown", done: "shutDownDone", ask: "shutDownAsk",
    about: "shutDownText" },
};

/**
 * Binds the buttons with an action's name in data-power, and the dialog that asks back; gives the dialog.
 * `changed` is called when it opens or closes.
 * @param {HTMLElement} panel
 * @param {import("../connection/connection.js").Connection} connection
 * @param {() => void} changed
 */
export function bindPower(panel, connection, changed) {
  const dialog = one(panel, "dialog", HTMLDialogElement);
  const note = new Note(one(panel, ".outcome"));
  const [cancel, confirm] = all(dialog, "button");
  /** @type {Action | null} */
  let chosen = null;

  const act = ({ method, done }) => note.attempt(() => connection.call(method), text(done));
  const ask = (action) => {
    chosen = action;
    one(dialog, "h2").textContent = text(action.ask);
    one(dialog, "p").textContent = text(action.about);
    confirm.textContent = text(action.verb);
    confirm.classList.toggle("danger", action.method !== "sleepSystem");
    dialog.showModal();
    cancel.focus();
    changed();
  };

  for (const button of all(panel, "[data-power]")) {
    const action = ACTIONS[button.dataset.power ?? ""];
    button.addEventListener("click", () => action.ask ? ask(action) : act(action));
  }
  cancel.addEventListener("click", () => dialog.close());
  confirm.addEventListener("click", () => {
    dialog.close();
    if (chosen) act(chosen);
  });
  dialog.addEventListener("close", changed);
  // A tap beside the dialog.
  dialog.addEventListener("click", ({ target }) => { if (target === dialog) dialog.close(); });
  // What was to be done may be long out of mind when the host is back.
  connection.addEventListener("state", () => { if (!connection.connected) dialog.close(); });
  return dialog;
}
