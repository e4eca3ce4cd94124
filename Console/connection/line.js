// What is known of the line: whether the host still answers, and what it lets this page do.

/** Often enough that what changes at the computer is seen within five seconds. */
const CHECK_EVERY = 4000;
/** A host that says nothing for so long (ms) after a cheap question is gone. */
const LIMIT = 1500;

/**
 * Asks the host cheap questions: when the page comes back into view, when `check` is called, and every
 * few seconds while somebody looks. The questions are whether it may move the pointer and see the
 * screen. Emits "change"; `granted` holds true, false or null (not known) for "control" and "screen".
 */
export class Line extends EventTarget {
  granted = /** @type {{control: boolean | null, screen: boolean | null}} */ ({ control: null, screen: null });
  #connection;
  #checking = false;
  #timer = 0;

  /** @param {import("./connection.js").Connection} connection */
  constructor(connection) {
    super();
    this.#connection = connection;
    connection.addEventListener("state", () => this.check());
    document.addEventListener("visibilitychange", () => this.check());
  }

  async check() {
    if (!this.#connection.connected) this.#take({ control: null, screen: null });
    if (!this.#connection.connected || document.hidden || this.#checking) return;
    clearTimeout(this.#timer);
    this.#checking = true;
    const ask = (method) => this.#connection.call(method, null, { limit: LIMIT }).catch(() => null);
    const [control, screen] =
      await Promise.all([ask("isAccessibilityTrusted"), ask("screenPermissionGranted")]);
    this.#checking = false;
    this.#take({ control, screen });
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.check(), CHECK_EVERY);
  }

  /** Asks the person at the computer for a permission. @param {"control" | "screen"} kind */
  async request(kind) {
    await this.#connection.call(
      { control: "requestAccessibilityPermission", screen: "requestScreenPermission" }[kind]);
    await this.check();
  }

  /** Opens the computer's own settings for a permission. @param {"control" | "screen"} kind */
  openSettings(kind) {
    return this.#connection.call(
      { control: "openAccessibilitySettings", screen: "openScreenRecordingSettings" }[kind]);
  }

  #take(granted) {
    if (granted.control === this.granted.control && granted.screen === this.granted.screen) return;
    this.granted = granted;
    this.dispatchEvent(new Event("change"));
  }
}
