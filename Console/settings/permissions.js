// What the computer lets the host do, and asking for what is missing.

const CHECK_INTERVAL = 3000;

const KINDS = {
  control: {
    check: "isAccessibilityTrusted",
    request: "requestAccessibilityPermission",
    settings: "openAccessibilitySettings",
  },
  screen: {
    check: "screenPermissionGranted",
    request: "requestScreenPermission",
    settings: "openScreenRecordingSettings",
  },
};

/**
 * Checks the permissions when the page connects or comes into view, and goes on checking only
 * while one is missing and the page is looked at. Emits "change"; `granted` holds true, false or
 * null (not known) for "control" and "screen".
 */
export class Permissions extends EventTarget {
  granted = { control: null, screen: null };
  #connection;
  #checking = false;
  #timer = 0;

  constructor(connection) {
    super();
    this.#connection = connection;
    connection.addEventListener("state", () => this.check());
    document.addEventListener("visibilitychange", () => this.check());
  }

  async check() {
    clearTimeout(this.#timer);
    if (!this.#connection.connected) this.#take({ control: null, screen: null });
    if (!this.#connection.connected || document.hidden || this.#checking) return;
    this.#checking = true;
    const [control, screen] =
      await Promise.all([this.#ask(KINDS.control.check), this.#ask(KINDS.screen.check)]);
    this.#checking = false;
    this.#take({ control, screen });
    if (control === false || screen === false) {
      this.#timer = setTimeout(() => this.check(), CHECK_INTERVAL);
    }
  }

  async request(kind) {
    await this.#connection.call(KINDS[kind].request);
    await this.check();
  }

  openSettings(kind) {
    return this.#connection.call(KINDS[kind].settings);
  }

  async #ask(method) {
    try {
      return await this.#connection.call(method);
    } catch {
      return null;
    }
  }

  #take(granted) {
    if (granted.control === this.granted.control && granted.screen === this.granted.screen) return;
    this.granted = granted;
    this.dispatchEvent(new Event("change"));
  }
}

/** Binds one card of the panel: its pill, its two buttons and its line for what went wrong. */
export function bindPermissionCard(card, permissions) {
  const kind = card.dataset.permission;
  const pill = card.querySelector(".pill");
  const actions = card.querySelector(".actions");
  const outcome = card.querySelector(".outcome");
  const [request, settings] = actions.querySelectorAll("button");

  const show = () => {
    const granted = permissions.granted[kind];
    const [label, look] = granted === null ? ["Not known", ""]
      : granted ? ["Granted", "good"] : ["Missing", "bad"];
    pill.textContent = label;
    pill.className = `pill ${look}`;
    actions.hidden = granted !== false;
    if (granted) outcome.textContent = "";
  };
  const attempt = async (action, afterwards) => {
    outcome.textContent = "";
    try {
      await action();
      if (permissions.granted[kind] === false) outcome.textContent = afterwards;
    } catch (error) {
      outcome.textContent = error.message;
    }
  };

  request.addEventListener("click", () => attempt(() => permissions.request(kind),
    "Asked. Answer on the computer; this page notices by itself."));
  settings.addEventListener("click", () => attempt(() => permissions.openSettings(kind),
    "The settings open on the computer."));
  permissions.addEventListener("change", show);
  show();
}
