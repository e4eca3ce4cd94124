// The applications' icons, asked for only while somebody looks at them.

/** Asks for one icon at a time, so that a tap or a key never waits behind more than one of them. */
export class IconLoader {
  #connection;
  /** @type {Map<string, string>} */
  #known = new Map();
  /** @type {Map<string, (icon: string) => void>} */
  #wanted = new Map();
  #loading = false;

  /** @param {import("../connection/connection.js").Connection} connection */
  constructor(connection) {
    this.#connection = connection;
    connection.addEventListener("state", () => this.#load());
  }

  /** Gives `show` the application's icon as the base64 text of a PNG, "" when it has none. */
  want(bundleId, show) {
    const known = this.#known.get(bundleId);
    if (known !== undefined) {
      show(known);
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
    } catch {
      return this.#connection.connected ? "" : null;
    }
  }
}
