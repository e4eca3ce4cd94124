// Locking, sleeping, restarting, shutting down: asked back before it is done.

const ACTIONS = {
  lock: {
    method: "lockScreen", verb: "Lock", title: "Lock the computer?",
    text: "Its password is needed to go on there.", done: "The computer locks its screen.",
  },
  sleep: {
    method: "sleepSystem", verb: "Sleep", title: "Put the computer to sleep?",
    text: "This page cannot reach it until somebody wakes it up.", done: "The computer goes to sleep.",
  },
  restart: {
    method: "restartSystem", verb: "Restart", title: "Restart the computer?",
    text: "What is not saved there may be lost. This page comes back when the host runs again.",
    done: "The computer restarts.",
  },
  shutdown: {
    method: "shutdownSystem", verb: "Shut down", title: "Shut down the computer?",
    text: "What is not saved there may be lost. Somebody has to switch it on again.",
    done: "The computer shuts down.",
  },
};

/** Binds the buttons with an action's name in data-power, and the dialog that asks back. */
export function bindPower(buttons, dialog, connection, note) {
  const [title, text] = [dialog.querySelector("h2"), dialog.querySelector("p")];
  const [cancel, confirm] = dialog.querySelectorAll("button");
  let chosen = null;

  const ask = (action) => {
    chosen = action;
    title.textContent = action.title;
    text.textContent = action.text;
    confirm.textContent = action.verb;
    dialog.showModal();
    cancel.focus();
  };

  for (const button of buttons) {
    button.addEventListener("click", () => ask(ACTIONS[button.dataset.power]));
  }
  cancel.addEventListener("click", () => dialog.close());
  confirm.addEventListener("click", () => {
    const { method, done } = chosen;
    dialog.close();
    note.attempt(() => connection.call(method), done);
  });
  // A tap beside the dialog.
  dialog.addEventListener("click", ({ target }) => { if (target === dialog) dialog.close(); });
  // What was to be done may be long out of mind when the host is back.
  connection.addEventListener("state", () => { if (!connection.connected) dialog.close(); });
}
