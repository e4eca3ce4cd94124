// The line to the host: opening it, keeping it open, calls and their replies.

import { CallError, decodeMessage, decodeMethodCall, decodeReply, encodeMessage, encodeMethodCall }
  from "./codec.js";

const PROTOCOL = "tapdeck.engine.v1";
const CONTROL_CHANNEL = "com.tapdeck/control";
const CALL_TIMEOUT = 10_000;
const OPEN_TIMEOUT = 8_000;
const FIRST_DELAY = 400;
const LONGEST_DELAY = 10_000;
const STEADY_AFTER = 3_000;
// The host ends a connection that sends more than this at once.
const MESSAGE_LIMIT = 1024 * 1024;

/**
 * A connection that comes back by itself. Its `state` is one of "no-token", "connecting",
 * "connected", "unreachable" (nobody answers) and "refused" (the host answers, but does not take
 * this page in). Events: "state", and "call" with the detail {channel, method, args} for what the
 * host sends unasked. Nothing is tried while the page is hidden.
 */
export class Connection extends EventTarget {
  state = "connecting";
  #token;
  #socket = null;
  #pending = new Map();
  #lastId = 0;
  #failures = 0;
  #retry = 0;
  #stopped = true;

  constructor(token) {
    super();
    this.#token = token;
    document.addEventListener("visibilitychange", () => this.#hurry());
    window.addEventListener("online", () => this.#hurry());
  }

  get connected() {
    return this.state === "connected";
  }

  start() {
    this.#stopped = false;
    if (this.#token) this.#open();
    else this.#become("no-token");
  }

  /** Ends the connection and does not come back until `start`. */
  stop() {
    this.#stopped = true;
    clearTimeout(this.#retry);
    this.#socket?.close();
  }

  setToken(token) {
    this.stop();
    this.#token = token;
    this.#failures = 0;
    this.#socket = null;
    this.#dropPending();
    this.#become("connecting");
    this.start();
  }

  /**
   * Calls a method of the host and gives its result. Rejects with a CallError: the host's own
   * error record, or one of the codes NOT_IMPLEMENTED, DISCONNECTED, TIMEOUT and TOO_LARGE. A host
   * that leaves a call unanswered is taken for gone, and the connection is made anew.
   */
  call(method, args = null, channel = CONTROL_CHANNEL) {
    if (!this.connected) return Promise.reject(disconnected());
    const id = (this.#lastId % 0x7fffffff) + 1;
    const message = encodeMessage([id, channel, encodeMethodCall(method, args)]);
    if (message.length > MESSAGE_LIMIT) {
      return Promise.reject(new CallError("TOO_LARGE", "This is more than the host takes at once."));
    }
    this.#lastId = id;
    return new Promise((resolve, reject) => {
      const socket = this.#socket;
      const timer = setTimeout(() => {
        this.#pending.delete(id);
        reject(new CallError("TIMEOUT", "The host did not answer."));
        this.#abandon(socket);
      }, CALL_TIMEOUT);
      this.#pending.set(id, { resolve, reject, timer });
      socket.send(message);
    });
  }

  /** Listens for a call of this name that the host makes on the control channel. */
  onHostCall(method, listener) {
    this.addEventListener("call", ({ detail }) => {
      if (detail.channel === CONTROL_CHANNEL && detail.method === method) listener(detail.args);
    });
  }

  #become(state) {
    if (this.state === state) return;
    this.state = state;
    this.dispatchEvent(new Event("state"));
  }

  #open() {
    clearTimeout(this.#retry);
    const scheme = location.protocol === "https:" ? "wss:" : "ws:";
    const query = `token=${encodeURIComponent(this.#token)}`;
    const socket = new WebSocket(`${scheme}//${location.host}/engine?${query}`, PROTOCOL);
    this.#socket = socket;
    socket.binaryType = "arraybuffer";
    const patience = setTimeout(() => this.#abandon(socket), OPEN_TIMEOUT);
    let openedAt = 0;
    socket.onopen = () => {
      clearTimeout(patience);
      openedAt = performance.now();
      this.#become("connected");
    };
    socket.onmessage = ({ data }) => this.#receive(socket, data);
    socket.onclose = () => {
      clearTimeout(patience);
      if (socket !== this.#socket) return;
      if (openedAt && performance.now() - openedAt > STEADY_AFTER) this.#failures = 0;
      this.#ended(openedAt > 0);
    };
  }

  // A socket whose far end has vanished can take minutes to close, so its end is not waited for.
  #abandon(socket) {
    if (socket !== this.#socket) return;
    socket.onclose = null;
    socket.close();
    this.#ended(this.connected);
  }

  async #ended(wasOpen) {
    this.#socket = null;
    this.#dropPending();
    if (this.#stopped) return;
    if (wasOpen) {
      this.#become("connecting");
    } else {
      const answered = await hostAnswers();
      if (this.#socket || this.#stopped) return;
      this.#become(answered ? "refused" : "unreachable");
    }
    this.#scheduleRetry();
  }

  #scheduleRetry() {
    const delay = Math.min(LONGEST_DELAY, FIRST_DELAY * 2 ** this.#failures);
    this.#failures = Math.min(this.#failures + 1, 8);
    // Spread, so that several pages do not all knock at the same moment.
    this.#retry = setTimeout(() => {
      if (!document.hidden) this.#open();
    }, delay * (0.8 + 0.4 * Math.random()));
  }

  #hurry() {
    if (document.hidden || this.#stopped || this.#socket || !this.#token) return;
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
      waiting.reject(error);
    }
  }
}

function disconnected() {
  return new CallError("DISCONNECTED", "Not connected to the host.");
}

// A browser does not tell a refused upgrade from a host that is gone; the page itself does.
async function hostAnswers() {
  try {
    const answer = await fetch("/", { cache: "no-store", signal: AbortSignal.timeout(4000) });
    return answer.ok;
  } catch {
    return false;
  }
}
