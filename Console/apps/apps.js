// The computer's applications: what there is, and starting one.

const collator = new Intl.Collator(undefined, { numeric: true });

const folded = (text) => text.normalize("NFKD").replace(/\p{M}/gu, "").toUpperCase();

/** Whether each word of `search` is in `name`, whatever the case and the accents; pure. */
export function matches(name, search) {
  const text = folded(name);
  return folded(search).split(/\s+/).every((word) => text.includes(word));
}

/** The running applications first, then by name as a person sorts; pure. */
export function inOrder(records) {
  return [...records].sort((a, b) =>
    b.isRunning - a.isRunning || collator.compare(a.name, b.name));
}

/**
 * The host's catalogue as it was when `refresh` was called last. Emits "change"; `records` is null
 * until the host has answered, `failure` says why it has not, or is "".
 */
export class AppList extends EventTarget {
  records = null;
  failure = "";
  #connection;
  #refreshing = null;

  constructor(connection) {
    super();
    this.#connection = connection;
  }

  refresh() {
    this.#refreshing ??= this.#read().finally(() => { this.#refreshing = null; });
    return this.#refreshing;
  }

  isRunning(bundleId) {
    return this.records?.some((record) => record.bundleId === bundleId && record.isRunning) === true;
  }

  launch(bundleId) {
    return this.#connection.call("launchApp", { bundleId });
  }

  async #read() {
    try {
      this.records = inOrder(await this.#connection.call("getRunningApps") ?? []);
      this.failure = "";
    } catch (error) {
      this.failure = error.message;
    }
    this.dispatchEvent(new Event("change"));
  }
}
