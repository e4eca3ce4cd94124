// The line to the host: opening it, keeping it open, calls and their replies.

import { text } from "../text/text.js";
import { CallError, decodeMessage, decodeMethodCall, decodeReply, encodeMessage, encodeMethodCall }
  from "./codec.js";

const PROTOCOL = "tapdeck.engine.v1";
const CONTROL_CHANNEL = "com.tapdeck/control";
const DEVICES_CHANNEL = "tapdeck.engine/devices";
const CALL_TIMEOUT = 10_000;
const OPEN_TIMEOUT = 5_000;
const ACCESS_TIMEOUT = 4_000;
const FIRST_DELAY = 250;
/** A host that starts again is found again at once; one that is gone for long is asked less often. */
const MAX_DELAY = 1_200;
const PATIENT_AFTER = 60_000;
const PATIENT_DELAY = 5_000;
/** The host ends a connection that sends more than this at once. */
const MAX_MESSAGE = 1024 * 1024;
/** What may keep the host busy longer than a line takes to be taken for dead. */
const SLOW = new Set(["typeText", "mediaPlayPause", "mediaNext", "mediaPrevious", "getRunningApps",
  "getAppIcon", "launchApp", "lockScreen", "sleepSystem", "restartSystem", "shutdownSystem", "setClipboard",
  "getClipboard", "getVolumeLevel", "moveWindowToDisplay", "requestScreenPermission",
  "requestAccessibilityPermission", "openScreenRecordingSettings", "openAccessibilitySettings"]);

/** After these nothing gets better by itself. @type {Set<Reason>} */
const FINAL = new Set(["wrong-token", "forgotten", "disconnected"]);

/** Why the host ended a line, by its close codes. @type {Record<number, Reason>} */
const ENDED = { 4001: "forgotten", 4002: "disconnected", 4003: "network-off" };

/**
 * @typedef {"connecting" | "connected" | "lost" | "unreachable" | "refused"} State "lost" was connected
 *   until now; "unreachable" is a host that does not answer, "refused" one that does not let this page in
 * @typedef {"" | "no-token" | "wrong-token" | "forgotten" | "slowed" | "full" | "disconnected"
 *   | "network-off"} Reason
 * @typedef {{resolve: (value: any) => void, reject: (error: Error) => void, timer: number, method: string}} Waiting
 */

/**
 * A connection that comes back by itself. Events: "state" when `state` or `reason` (why it is "refused")
 * has changed, "devices" when their number has, and "call" with the detail {channel, method, args} for
 * what the host sends unasked. Nothing is tried while the page is hidden.
 */
export class Connection extends EventTarget {
  state = /** @type {State} */ ("connecting");
  reason = /** @type {Reason} */ ("");
  /** How many devices are connected to the host, this one among them. */
  devices = 1;
  #identity;
  #socket = /** @type {WebSocket | null} */ (null);
  /** @type {Map<number, Waiting>} */
  #pending = new Map();
  #lastId = 0;
  #attempts = 0;
  #failingSince = 0;
  #heardAt = 0;
  #retry = 0;
  #stopped = true;
  /** Counts the attempts and their ends, so that what comes late is known. */
  #era = 0;

  /** @param {import("./identity.js").Identity} identity */
  constructor(identity) {
    super();
    this.#identity = identity;
    document.addEventListener("visibilitychange", () => this.#hurry());
    window.addEventListener("online", () => this.#hurry());
    this.addEventListener("call", (event) => {
      const { channel, method, args } = /** @type {CustomEvent} */ (event).detail;
      if (channel === DEVICES_CHANNEL && method === "countChanged") this.#count(args);
    });
  }

  get connected() {
    return this.state === "connected";
  }

  /** Connects anew, with whatever the page has to come with by now. */
  start() {
    this.#drop();
    this.#stopped = false;
    this.#attempts = 0;
    this.#failingSince = performance.now();
    if (this.state !== "connecting") this.#become("connecting");
    this.#open();
  }

  /** Ends the connection and does not come back until `start`. */
  stop() {
    this.#stopped = true;
    this.#drop();
  }

  /**
   * Calls a method of the host and gives its result. Rejects with a CallError: the host's own
   * error record, or one of the codes NOT_IMPLEMENTED, DISCONNECTED, TIMEOUT and TOO_LARGE. A host
   * that leaves a call unanswered for `limit` ms is taken for gone, and the connection is made anew.
   * @param {string} method
   * @param {unknown} [args]
   * @param {{channel?: string, limit?: number}} [how]
   * @returns {Promise<any>}
   */
  call(method, args = null, { channel = CONTROL_CHANNEL, limit = CALL_TIMEOUT } = {}) {
    const socket = this.#socket;
    if (!this.connected || !socket) return Promise.reject(disconnected());
    const id = (this.#lastId % 0x7fffffff) + 1;
    const message = encodeMessage([id, channel, encodeMethodCall(method, args)]);
    if (message.length > MAX_MESSAGE) {
      return Promise.reject(new CallError("TOO_LARGE", text("errorTooLarge")));
    }
    this.#lastId = id;
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => this.#overdue(id, limit, socket), limit);
      this.#pending.set(id, { resolve, reject, timer, method });
      socket.send(message);
    });
  }

  /** Listens for a call of this name that the host makes on the control channel. */
  onHostCall(method, listener) {
    this.addEventListener("call", (event) => {
      const { detail } = /** @type {CustomEvent} */ (event);
      if (detail.channel === CONTROL_CHANNEL && detail.method === method) listener(detail.args);
    });
  }

  // A host that is at work on something long, or whose answers are on their way, is not gone.
  #overdue(id, limit, socket) {
    const waiting = this.#pending.get(id);
    if (!waiting) return;
    const left = this.#heardAt + limit - performance.now();
    const slow = [...this.#pending.values()].some(({ method }) => SLOW.has(method));
    if (limit < CALL_TIMEOUT && (left > 0 || slow)) {
      waiting.timer = setTimeout(() => this.#overdue(id, limit, socket), Math.max(left, 200));
      return;
    }
    this.#pending.delete(id);
    waiting.reject(new CallError("TIMEOUT", text("errorTimeout")));
    if (socket === this.#socket) this.#ended("", true);
  }

  /** @param {State} state @param {Reason} [reason] */
  #become(state, reason = "") {
    if (this.state === state && this.reason === reason) return;
    this.state = state;
    this.reason = reason;
    this.dispatchEvent(new Event("state"));
  }

  async #open() {
    clearTimeout(this.#retry);
    const era = ++this.#era;
    const credential = await this.#chosen();
    if (era !== this.#era || this.#stopped) return;
    if (!credential) {
      this.#become("refused", "no-token");
      return;
    }
    const scheme = location.protocol === "https:" ? "wss:" : "ws:";
    const socket = new WebSocket(`${scheme}//${location.host}/engine?${query(credential)}`, PROTOCOL);
    this.#socket = socket;
    socket.binaryType = "arraybuffer";
    const patience = setTimeout(() => socket === this.#socket && this.#ended("", false), OPEN_TIMEOUT);
    socket.onopen = () => {
      clearTimeout(patience);
      this.#heardAt = performance.now();
      this.#attempts = 0;
      this.#become("connected");
      this.#introduce(credential);
    };
    socket.onmessage = ({ data }) => this.#receive(socket, data);
    socket.onclose = ({ code }) => {
      clearTimeout(patience);
      if (socket === this.#socket) this.#ended(ENDED[code] ?? "", this.connected, credential);
    };
  }

  // With both a token and a secret, the secret is looked at first: it may have been forgotten.
  async #chosen() {
    const [first, second] = this.#identity.credentials;
    if (!second) return first;
    const access = await askAccess(first);
    if (access === "forgotten") this.#identity.forget();
    return access === "granted" ? first : second;
  }

  // A guest becomes a device of the host's; older hosts know none.
  async #introduce({ kind }) {
    const ask = (method, args) => this.call(method, args, { channel: DEVICES_CHANNEL }).catch(() => null);
    if (kind === "token") {
      const made = await ask("pair", {});
      if (made?.secret) this.#identity.become(made.secret);
    } else {
      this.#identity.dropToken();
    }
    this.#count(await ask("watch", null));
  }

  #count(answer) {
    const count = answer?.count ?? 1;
    if (count === this.devices) return;
    this.devices = count;
    this.dispatchEvent(new Event("devices"));
  }

  // A socket whose far end has vanished can take minutes to close, so its end is not waited for.
  #drop() {
    clearTimeout(this.#retry);
    this.#era++;
    const socket = this.#socket;
    this.#socket = null;
    if (socket) {
      socket.onclose = socket.onopen = socket.onmessage = null;
      socket.close();
    }
    this.#dropPending();
  }

  /**
   * @param {Reason} reason why the host ended it, as far as it said so
   * @param {boolean} wasOpen
   * @param {import("./identity.js").Credential} [credential] with which it was refused
   */
  async #ended(reason, wasOpen, credential) {
    this.#drop();
    const era = this.#era;
    if (this.#stopped) return;
    if (wasOpen) {
      this.#failingSince = performance.now();
      this.#become(reason ? "refused" : "lost", reason);
    } else {
      const access = credential ? await askAccess(credential) : "";
      if (era !== this.#era) return;
      reason = access === "granted" ? "" : access;
      if (!access) this.#become("unreachable");
      else if (reason) this.#become("refused", reason);
    }
    if (reason === "forgotten") this.#identity.forget();
    if (reason === "forgotten" && this.#identity.token && !wasOpen) this.#open();
    else if (!FINAL.has(reason)) this.#scheduleRetry(reason !== "");
  }

  /** @param {boolean} slowly */
  #scheduleRetry(slowly) {
    const patient = slowly || performance.now() - this.#failingSince > PATIENT_AFTER;
    const delay = patient ? PATIENT_DELAY : Math.min(MAX_DELAY, FIRST_DELAY * 2 ** this.#attempts);
    this.#attempts = Math.min(this.#attempts + 1, 8);
    // Spread, so that several pages do not all knock at the same moment.
    this.#retry = setTimeout(() => {
      if (!document.hidden) this.#open();
    }, delay * (0.8 + 0.4 * Math.random()));
  }

  #hurry() {
    if (document.hidden || this.#stopped || this.#socket || this.state === "refused") return;
    this.#open();
  }

  #dropPending() {
    for (const { reject, timer } of this.#pending.values()) {
      clearTimeout(timer);
      reject(disconnected());
    }
    this.#pending.clear();
  }

  #receive(socket, data) {
    if (socket !== this.#socket) return;
    this.#heardAt = performance.now();
    try {
      const [id, channel, payload] = decodeMessage(new Uint8Array(data));
      if (id === 0) {
        const call = decodeMethodCall(payload);
        this.dispatchEvent(new CustomEvent("call", { detail: { channel, ...call } }));
      } else {
        this.#settle(id, payload);
      }
    } catch (error) {
      console.warn("A message from the host could not be read:", error);
    }
  }

  #settle(id, payload) {
    const waiting = this.#pending.get(id);
    if (!waiting) return;
    this.#pending.delete(id);
    clearTimeout(waiting.timer);
    try {
      waiting.resolve(decodeReply(payload));
    } catch (error) {
      waiting.reject(/** @type {Error} */ (error));
    }
  }
}

function disconnected() {
  return new CallError("DISCONNECTED", text("errorDisconnected"));
}

/** @param {import("./identity.js").Credential} credential */
const query = ({ kind, value }) => `${kind}=${encodeURIComponent(value)}`;

/**
 * A browser does not tell why an upgrade was refused; the host does when it is asked. "" when it does
 * not answer.
 * @param {import("./identity.js").Credential} credential
 * @returns {Promise<"granted" | Reason>}
 */
async function askAccess(credential) {
  try {
    const answer = await fetch(`/access?${query(credential)}`,
      { cache: "no-store", signal: AbortSignal.timeout(ACCESS_TIMEOUT) });
    const { access } = await answer.json().catch(() => ({ access: "wrong-token" }));
    return access;
  } catch {
    return "";
  }
}
