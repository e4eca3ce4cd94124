// The computer's applications: what there is, and starting one.

const collator = new Intl.Collator(undefined, { numeric: true });

/** As many as stand in two rows of a phone. */
const MAX_RECENT = 8;

const folded = (/** @type {string} */ text) => text.normalize("NFKD").replace(/\p{M}/gu, "").toUpperCase();

/**
 * Whether each word of `search` is in `name`, whatever the case and the accents; pure.
 * @param {string} name
 * @param {string} search
 */
export function matches(name, search) {
  const text = folded(name);
  return folded(search).split(/\s+/).every((word) => text.includes(word));
}

/**
 * @typedef {{bundleId: string, name: string, isRunning: boolean}} AppRecord as the host describes one
 * @typedef {{pinned: AppRecord[], running: AppRecord[], recent: AppRecord[], all: AppRecord[]}} Groups
 */

/**
 * The applications in groups, each sorted as a person sorts but the recent ones, which are the last first.
 * An application that is pinned or running stands there and not among the recent ones; all are in "all"; pure.
 * @param {AppRecord[]} records
 * @param {{pinned: readonly string[], recent: readonly string[]}} chosen by their identifiers
 * @returns {Groups}
 */
export function grouped(records, { pinned, recent }) {
  const sorted = [...records].sort((a, b) => collator.compare(a.name, b.name));
  const isPinned = ({ bundleId }) => pinned.includes(bundleId);
  const running = sorted.filter((record) => record.isRunning && !isPinned(record));
  const found = recent.map((id) => sorted.find(({ bundleId }) => bundleId === id));
  return {
    pinned: sorted.filter(isPinned),
    running,
    recent: /** @type {AppRecord[]} */ (found.filter((record) =>
      record && !isPinned(record) && !record.isRunning)).slice(0, MAX_RECENT),
    all: sorted,
  };
}

/** The list of recent ones after this one was started. @param {readonly string[]} recent @param {string} bundleId */
export const withRecent = (recent, bundleId) =>
  [bundleId, ...recent.filter((id) => id !== bundleId)].slice(0, 2 * MAX_RECENT);

/**
 * The host's catalogue as it was when `refresh` was called last. Emits "change"; `records` is null
 * until the host has answered, `failure` says why it has not, or is "".
 */
export class AppList extends EventTarget {
  records = /** @type {AppRecord[] | null} */ (null);
  failure = "";
  #connection;
  #refreshing = /** @type {Promise<void> | null} */ (null);

  /** @param {import("../connection/connection.js").Connection} connection */
  constructor(connection) {
    super();
    this.#connection = connection;
  }

  refresh() {
    this.#refreshing ??= this.#read().finally(() => { this.#refreshing = null; });
    return this.#refreshing;
  }

  /** @param {string} bundleId */
  isRunning(bundleId) {
    return this.records?.some((record) => record.bundleId === bundleId && record.isRunning) === true;
  }

  /** @param {string} bundleId */
  launch(bundleId) {
    return this.#connection.call("launchApp", { bundleId });
  }

  async #read() {
    try {
      this.records = await this.#connection.call("getRunningApps") ?? [];
      this.failure = "";
    } catch (error) {
      this.failure = /** @type {Error} */ (error).message;
    }
    this.dispatchEvent(new Event("change"));
  }
}
