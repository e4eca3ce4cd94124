// The computer's clipboard, read into a text box and written from it.

/** Binds the panel's box and its two buttons. */
export function bindClipboard(panel, connection) {
  const box = panel.querySelector("textarea");
  const buttons = [...panel.querySelectorAll("button")];
  const [read, write] = buttons;
  const outcome = panel.querySelector(".outcome");

  const say = (text, failed = false) => {
    outcome.textContent = text;
    outcome.classList.toggle("failed", failed);
  };

  const run = async (action) => {
    buttons.forEach((button) => { button.disabled = true; });
    say("");
    try {
      await action();
    } catch (error) {
      say(error.message, true);
    }
    buttons.forEach((button) => { button.disabled = false; });
  };

  read.addEventListener("click", () => run(async () => {
    const text = await connection.call("getClipboard");
    box.value = text;
    say(text === "" ? "The computer’s clipboard holds no text." : "Read from the computer.");
  }));
  write.addEventListener("click", () => run(async () => {
    const taken = await connection.call("setClipboard", { text: box.value });
    if (taken) say("Written to the computer’s clipboard.");
    else say("The computer did not take the text.", true);
  }));
}
