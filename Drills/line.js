// One WebSocket connection to the host, down to its frames (RFC 6455), so that it can be broken too.

import { randomBytes } from "node:crypto";
import { connect } from "node:net";

import { decodeMessage, decodeReply, encodeMessage, encodeMethodCall } from "../Console/connection/codec.js";

const CONTROL = "com.tapdeck/control";
const FINAL = 0x80, BINARY = 2, CLOSE = 8, PING = 9, PONG = 10;

/** A client's frame; `first` holds the final bit, the reserved bits and the opcode. */
export function frame(first, payload, isMasked = true) {
  const size = payload.length;
  const mask = isMasked ? 0x80 : 0;
  const head = size < 126 ? Buffer.from([first, mask | size])
    : size <= 0xffff ? Buffer.from([first, mask | 126, size >> 8, size & 0xff])
      : Buffer.from([first, mask | 127, 0, 0, 0, 0, ...[24, 16, 8, 0].map((bits) => (size >>> bits) & 0xff)]);
  // a mask of zeros leaves the payload as it is
  return Buffer.concat([head, Buffer.alloc(isMasked ? 4 : 0), payload]);
}

export class Line {
  /** Replies whose call is unknown or has been answered. */
  strangers = 0;
  /** The ids of the replies in the order in which they came. */
  answered = [];
  answersPings = true;
  /** {code, reason} when the host has said goodbye, null before or without. */
  farewell = null;
  #socket;
  #received = Buffer.alloc(0);
  #parts = [];
  #lastId = 0;
  #waiting = new Map();

  /** Opens one to the session's host; rejects with the HTTP status when the host refuses. */
  static async open(session) {
    const line = new Line();
    line.#socket = connect(session.port, "127.0.0.1");
    line.#socket.setNoDelay(true);
    line.#socket.on("error", () => {});
    line.closed = new Promise((resolve) => { line.#socket.once("close", resolve); });
    line.closed.then(() => line.#drop());
    line.#socket.write([`GET /engine?token=${session.token} HTTP/1.1`, `Host: 127.0.0.1:${session.port}`,
      "Connection: Upgrade", "Upgrade: websocket", "Sec-WebSocket-Version: 13",
      "Sec-WebSocket-Protocol: tapdeck.engine.v1", `Sec-WebSocket-Key: ${randomBytes(16).toString("base64")}`,
      "", ""].join("\r\n"));
    await line.#shakeHands();
    return line;
  }

  #shakeHands() {
    return new Promise((resolve, reject) => {
      const take = (data) => {
        this.#received = Buffer.concat([this.#received, data]);
        const end = this.#received.indexOf("\r\n\r\n");
        if (end < 0) return;
        this.#socket.off("data", take);
        const status = this.#received.subarray(9, 12).toString();
        if (status !== "101") return reject(new Error(`HTTP ${status}`));
        this.#received = this.#received.subarray(end + 4);
        this.#socket.on("data", (more) => this.#take(more));
        this.#take(Buffer.alloc(0));
        resolve();
      };
      this.#socket.on("data", take);
      this.closed.then(() => reject(new Error("closed")));
    });
  }

  /** The result of a method; rejects with a CallError or when the connection ends before. */
  call(method, args = null) {
    const id = ++this.#lastId;
    const payload = encodeMethodCall(method, args);
    return new Promise((resolve, reject) => {
      this.#waiting.set(id, { resolve, reject });
      this.send(encodeMessage([id, CONTROL, payload]));
    });
  }

  /** How many calls have no reply yet. */
  get open() { return this.#waiting.size; }
  get lastId() { return this.#lastId; }

  send(message) { this.write(frame(FINAL | BINARY, Buffer.from(message))); }
  write(bytes) { if (this.#socket.writable) this.#socket.write(bytes); }
  pause() { this.#socket.pause(); }
  /** Ends it as a phone's that is gone: with a reset, without a word. */
  vanish() { this.#socket.resetAndDestroy(); }

  #take(data) {
    this.#received = this.#received.length > 0 ? Buffer.concat([this.#received, data]) : data;
    while (this.#received.length >= 2) {
      const short = this.#received[1] & 0x7f;
      const start = short < 126 ? 2 : short === 126 ? 4 : 10;
      if (this.#received.length < start) return;
      const size = short < 126 ? short
        : short === 126 ? this.#received.readUInt16BE(2) : Number(this.#received.readBigUInt64BE(2));
      if (this.#received.length < start + size) return;
      const first = this.#received[0];
      const payload = this.#received.subarray(start, start + size);
      this.#received = this.#received.subarray(start + size);
      this.#heed(first, payload);
    }
  }

  #heed(first, payload) {
    const opcode = first & 0x0f;
    if (opcode === PING) {
      if (this.answersPings) this.write(frame(FINAL | PONG, payload));
    } else if (opcode === CLOSE) {
      this.farewell = payload.length >= 2
        ? { code: payload.readUInt16BE(0), reason: payload.subarray(2).toString() } : { code: 1005, reason: "" };
      this.write(frame(FINAL | CLOSE, payload));
      this.#socket.end();
    } else if (opcode < CLOSE) {
      this.#parts.push(payload);
      // a plain array of bytes: a Buffer's slices would share its memory
      if (first & FINAL) this.#settle(decodeMessage(new Uint8Array(Buffer.concat(this.#parts.splice(0)))));
    }
  }

  #settle([id, , payload]) {
    if (id === 0) return; // what the host sends unasked
    const call = this.#waiting.get(id);
    if (!call) {
      this.strangers++;
      return;
    }
    this.#waiting.delete(id);
    this.answered.push(id);
    try {
      call.resolve(decodeReply(payload));
    } catch (error) {
      call.reject(error);
    }
  }

  #drop() {
    for (const { reject } of this.#waiting.values()) reject(new Error("the connection ended"));
    this.#waiting.clear();
  }
}
