// The laser dot, which never outlives the page that switched it on.

/** Emits "change" whenever `on` changes. It goes off when the page is left or hidden. */
export class Laser extends EventTarget {
  on = false;
  #connection;

  /** @param {import("../connection/connection.js").Connection} connection */
  constructor(connection) {
    super();
    this.#connection = connection;
    // The host takes away the dot of a connection that ended.
    connection.addEventListener("state", () => { if (!connection.connected) this.#become(false); });
    document.addEventListener("visibilitychange", () => { if (document.hidden) this.leave(); });
  }

  /** Switches the dot on or off; rejects when the host does not do it. @param {boolean} on */
  async turn(on) {
    if (on === this.on) return;
    this.#become(on);
    try {
      await this.#connection.call(on ? "showLaser" : "hideLaser");
    } catch (error) {
      this.#become(false);
      throw error;
    }
  }

  leave() {
    this.turn(false).catch(() => {});
  }

  /** @param {boolean} on */
  #become(on) {
    if (on === this.on) return;
    this.on = on;
    this.dispatchEvent(new Event("change"));
  }
}
