// The applications' icons, asked for only while somebody looks at them.

/** Asks for one icon at a time, so that a tap or a key never waits behind more than one of them. */
export class IconLoader {
  #connection;
  #known = new Map();
  #wanted = new Map();
  #loading = false;

  constructor(connection) {
    this.#connection = connection;
    connection.addEventListener("state", () => this.#load());
  }

  /** Gives `show` the application's icon as the base64 text of a PNG, "" when it has none. */
  want(bundleId, show) {
    if (this.#known.has(bundleId)) {
      show(this.#known.get(bundleId));
    } else {
      this.#wanted.set(bundleId, show);
      this.#load();
    }
  }

  /** The application is out of view again; an icon that was not asked for yet is left out. */
  leave(bundleId) {
    this.#wanted.delete(bundleId);
  }

  async #load() {
    if (this.#loading) return;
    this.#loading = true;
    while (this.#connection.connected && this.#wanted.size > 0) {
      const [[bundleId, show]] = this.#wanted;
      const icon = await this.#ask(bundleId);
      if (icon === null) continue;
      this.#wanted.delete(bundleId);
      this.#known.set(bundleId, icon);
      show(icon);
    }
    this.#loading = false;
  }

  /** Null when the line broke, and the icon is still to be asked for. */
  async #ask(bundleId) {
    try {
      return await this.#connection.call("getAppIcon", { bundleId }) ?? "";
    } catch (error) {
      return this.#connection.connected ? "" : null;
    }
  }
}
