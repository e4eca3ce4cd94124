// The standard message and method codec: the bytes that travel between this page and the host.

import { text } from "../text/text.js";

const NULL = 0, TRUE = 1, FALSE = 2, INT32 = 3, INT64 = 4, LARGE_INT = 5, FLOAT64 = 6, STRING = 7;
const BYTES = 8, INT32_LIST = 9, INT64_LIST = 10, FLOAT64_LIST = 11, LIST = 12, MAP = 13;
const FLOAT32_LIST = 14;
const DEPTH_LIMIT = 64;

const TYPED_LISTS = [
  { tag: BYTES, type: Uint8Array },
  { tag: INT32_LIST, type: Int32Array },
  { tag: INT64_LIST, type: BigInt64Array },
  { tag: FLOAT32_LIST, type: Float32Array },
  { tag: FLOAT64_LIST, type: Float64Array },
];

/** An error record that the host answered with, or the reason why there was no answer. */
export class CallError extends Error {
  constructor(code, message, details = null) {
    super(message ?? code);
    this.name = "CallError";
    this.code = code;
    this.details = details;
  }
}

class Writer {
  #bytes = new Uint8Array(64);
  #length = 0;

  /** Makes room for `count` bytes and gives the offset at which they start. */
  #grow(count) {
    const start = this.#length;
    this.#length += count;
    if (this.#length > this.#bytes.length) {
      const larger = new Uint8Array(Math.max(this.#length, 2 * this.#bytes.length));
      larger.set(this.#bytes);
      this.#bytes = larger;
    }
    return start;
  }

  #view(count) {
    const start = this.#grow(count);
    return new DataView(this.#bytes.buffer, start, count);
  }

  #align(size) {
    this.#grow((size - (this.#length % size)) % size);
  }

  #byte(value) {
    this.#view(1).setUint8(0, value);
  }

  #raw(bytes) {
    const start = this.#grow(bytes.length);
    this.#bytes.set(bytes, start);
  }

  #size(value) {
    if (value < 254) {
      this.#byte(value);
    } else if (value <= 0xffff) {
      this.#byte(254);
      this.#view(2).setUint16(0, value, true);
    } else {
      this.#byte(255);
      this.#view(4).setUint32(0, value, true);
    }
  }

  #number(value) {
    if (Number.isInteger(value) && (value | 0) === value && !Object.is(value, -0)) {
      this.#byte(INT32);
      this.#view(4).setInt32(0, value, true);
    } else {
      this.#byte(FLOAT64);
      this.#align(8);
      this.#view(8).setFloat64(0, value, true);
    }
  }

  #bigInt(value) {
    if (BigInt.asIntN(64, value) === value) {
      this.#byte(INT64);
      this.#view(8).setBigInt64(0, value, true);
    } else {
      const digits = new TextEncoder().encode(value.toString(16));
      this.#byte(LARGE_INT);
      this.#size(digits.length);
      this.#raw(digits);
    }
  }

  #string(value) {
    const text = new TextEncoder().encode(value);
    this.#byte(STRING);
    this.#size(text.length);
    this.#raw(text);
  }

  #typedList(tag, list) {
    this.#byte(tag);
    this.#size(list.length);
    this.#align(list.BYTES_PER_ELEMENT);
    this.#raw(new Uint8Array(list.buffer, list.byteOffset, list.byteLength));
  }

  #entries(entries) {
    this.#byte(MAP);
    this.#size(entries.length);
    for (const [key, value] of entries) {
      this.write(key);
      this.write(value);
    }
  }

  write(value) {
    if (value === null || value === undefined) return this.#byte(NULL);
    if (typeof value === "boolean") return this.#byte(value ? TRUE : FALSE);
    if (typeof value === "number") return this.#number(value);
    if (typeof value === "bigint") return this.#bigInt(value);
    if (typeof value === "string") return this.#string(value);
    if (Array.isArray(value)) {
      this.#byte(LIST);
      this.#size(value.length);
      for (const element of value) this.write(element);
      return;
    }
    if (value instanceof Map) return this.#entries([...value]);
    const typed = TYPED_LISTS.find(({ type }) => value instanceof type);
    if (typed) return this.#typedList(typed.tag, value);
    if (typeof value === "object") return this.#entries(Object.entries(value));
    throw new TypeError(`The codec has no form for a ${typeof value}`);
  }

  finish() {
    return this.#bytes.slice(0, this.#length);
  }
}

// Reading past the end throws a RangeError from DataView, so a message that is cut short never
// yields a value.
class Reader {
  #bytes;
  #view;
  #offset = 0;

  constructor(bytes) {
    this.#bytes = bytes;
    this.#view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  }

  #advance(count) {
    const start = this.#offset;
    if (count > this.#bytes.length - start) throw new RangeError("The message is cut short");
    this.#offset += count;
    return start;
  }

  #align(size) {
    this.#advance((size - (this.#offset % size)) % size);
  }

  #size() {
    const first = this.#view.getUint8(this.#advance(1));
    if (first < 254) return first;
    if (first === 254) return this.#view.getUint16(this.#advance(2), true);
    return this.#view.getUint32(this.#advance(4), true);
  }

  #text() {
    const size = this.#size();
    const start = this.#advance(size);
    const decoder = new TextDecoder("utf-8", { fatal: true, ignoreBOM: true });
    return decoder.decode(this.#bytes.subarray(start, start + size));
  }

  #int64() {
    const value = this.#view.getBigInt64(this.#advance(8), true);
    const number = Number(value);
    return Number.isSafeInteger(number) ? number : value;
  }

  #largeInt() {
    const digits = this.#text();
    return digits.startsWith("-") ? -BigInt(`0x${digits.slice(1)}`) : BigInt(`0x${digits}`);
  }

  #typedList(type) {
    const length = this.#size();
    this.#align(type.BYTES_PER_ELEMENT);
    const start = this.#advance(length * type.BYTES_PER_ELEMENT);
    // A copy, since a typed array cannot begin at any offset of a buffer.
    return new type(this.#bytes.slice(start, this.#offset).buffer);
  }

  #map(depth) {
    /** @type {[any, any][]} */
    const entries = [];
    for (let left = this.#size(); left > 0; left--) {
      entries.push([this.read(depth), this.read(depth)]);
    }
    const named = entries.every(([key]) => typeof key === "string");
    return named ? Object.fromEntries(entries) : new Map(entries);
  }

  /** Maps whose keys are all strings come back as plain objects, any other as a Map. */
  read(depth = 0) {
    if (depth > DEPTH_LIMIT) throw new RangeError("The message nests too deeply");
    const tag = this.#view.getUint8(this.#advance(1));
    switch (tag) {
      case NULL: return null;
      case TRUE: return true;
      case FALSE: return false;
      case INT32: return this.#view.getInt32(this.#advance(4), true);
      case INT64: return this.#int64();
      case LARGE_INT: return this.#largeInt();
      case FLOAT64:
        this.#align(8);
        return this.#view.getFloat64(this.#advance(8), true);
      case STRING: return this.#text();
      case MAP: return this.#map(depth + 1);
      case LIST: {
        const list = [];
        for (let left = this.#size(); left > 0; left--) list.push(this.read(depth + 1));
        return list;
      }
    }
    const typed = TYPED_LISTS.find((entry) => entry.tag === tag);
    if (!typed) throw new RangeError(`The message names an unknown type ${tag}`);
    return this.#typedList(typed.type);
  }

  byte() {
    return this.#view.getUint8(this.#advance(1));
  }

  finish(value) {
    if (this.#offset !== this.#bytes.length) throw new RangeError("The message goes on too long");
    return value;
  }
}

function encodeAll(...values) {
  const writer = new Writer();
  for (const value of values) writer.write(value);
  return writer.finish();
}

/**
 * The message of one value. Numbers that are 32-bit integers go as such, other numbers as 64-bit
 * floats, BigInt as a 64-bit integer.
 */
export function encodeMessage(value) {
  return encodeAll(value);
}

/** The value of a message; throws when the message is damaged. */
export function decodeMessage(bytes) {
  const reader = new Reader(bytes);
  return reader.finish(reader.read());
}

export function encodeMethodCall(method, args) {
  return encodeAll(method, args);
}

export function decodeMethodCall(bytes) {
  const reader = new Reader(bytes);
  const call = { method: reader.read(), args: reader.read() };
  return reader.finish(call);
}

/** The result in a reply; throws a CallError for an error record and for "not implemented". */
export function decodeReply(payload) {
  if (payload === null) throw new CallError("NOT_IMPLEMENTED", text("errorNotOffered"));
  const reader = new Reader(payload);
  const outcome = reader.byte();
  if (outcome === 0) return reader.finish(reader.read());
  if (outcome !== 1) throw new RangeError(`The reply has an unknown form ${outcome}`);
  const error = new CallError(reader.read(), reader.read(), reader.read());
  throw reader.finish(error);
}
