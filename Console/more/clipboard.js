// The computer's clipboard, read into a text box and written from it.

import { text } from "../text/text.js";
import { all, one } from "../ui/dom.js";

/**
 * Binds the panel's box and its two buttons.
 * @param {HTMLElement} panel
 * @param {import("../connection/connection.js").Connection} connection
 */
export function bindClipboard(panel, connection) {
  const box = one(panel, "textarea", HTMLTextAreaElement);
  const buttons = all(panel, ".actions button", HTMLButtonElement);
  const [read, write] = buttons;
  const outcome = one(panel, ".outcome");

  const say = (content, failed = false) => {
    outcome.textContent = content;
    outcome.classList.toggle("failed", failed);
  };

  const run = async (action) => {
    buttons.forEach((button) => { button.disabled = true; });
    say("");
    try {
      await action();
    } catch (error) {
      say(/** @type {Error} */ (error).message, true);
    }
    buttons.forEach((button) => { button.disabled = false; });
  };

  read.addEventListener("click", () => run(async () => {
    const content = await connection.call("getClipboard");
    box.value = content;
    say(text(content === "" ? "clipboardEmpty" : "clipboardWasRead"));
  }));
  write.addEventListener("click", () => run(async () => {
    const taken = await connection.call("setClipboard", { text: box.value });
    say(text(taken ? "clipboardWritten" : "clipboardNotTaken"), !taken);
  }));
}
