// The laser dot, which never outlives the page that switched it on.

/** Emits "change" whenever `on` (what the user wants) changes. While the page is hidden, it is off. */
export class Laser extends EventTarget {
  on = false;
  #connection;
  #shown = false;
  #away = false;

  constructor(connection) {
    super();
    this.#connection = connection;
    connection.addEventListener("state", () => this.#lineChanged());
    document.addEventListener("visibilitychange", () => this.leave(document.hidden));
    window.addEventListener("pageshow", () => this.leave(document.hidden));
  }

  /** Switches the dot on or off; rejects when the host does not do it. */
  async turn(on) {
    this.#want(on);
    try {
      await this.#apply();
    } catch (error) {
      if (this.#connection.connected) this.#want(this.#shown = false);
      throw error;
    }
  }

  /** Takes the dot away for as long as the page is. */
  leave(away = true) {
    this.#away = away;
    this.#apply().catch(() => {});
  }

  #want(on) {
    if (on === this.on) return;
    this.on = on;
    this.dispatchEvent(new Event("change"));
  }

  async #apply() {
    const shown = this.on && !this.#away;
    if (shown === this.#shown || !this.#connection.connected) return;
    this.#shown = shown;
    await this.#connection.call(shown ? "showLaser" : "hideLaser");
  }

  // It may be another host than before; one that shows the dot already keeps it as it is.
  #lineChanged() {
    if (this.#connection.connected && this.on) this.#shown = false;
    this.#apply().catch(() => {});
  }
}
