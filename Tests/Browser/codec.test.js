import assert from "node:assert/strict";
import { test } from "node:test";

import { decodeMessage, decodeMethodCall, decodeReply, encodeMessage, encodeMethodCall }
  from "../../Console/connection/codec.js";

const bytes = (hex) => Uint8Array.from(Buffer.from(hex.replaceAll(" ", ""), "hex"));

function roundTrip(value, hex) {
  assert.deepEqual(encodeMessage(value), bytes(hex));
  assert.deepEqual(decodeMessage(bytes(hex)), value);
}

test("values have their exact bytes in both directions", () => {
  roundTrip(null, "00");
  roundTrip(-2, "03 fe ff ff ff");
  roundTrip(2 ** 31, "06 00 00 00 00 00 00 00 00 00 00 00 00 00 e0 41");
  roundTrip(-0.0, "06 00 00 00 00 00 00 00 00 00 00 00 00 00 00 80");
  roundTrip(2n ** 62n, "04 00 00 00 00 00 00 00 40");
  roundTrip(-(2n ** 64n), "05 12 2d 31 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30");
  roundTrip("é😀", "07 06 c3 a9 f0 9f 98 80");
  roundTrip(BigInt64Array.of(1n), "0a 01 00 00 00 00 00 00 01 00 00 00 00 00 00 00");
  roundTrip(Float64Array.of(1), "0b 01 00 00 00 00 00 00 00 00 00 00 00 00 f0 3f");
  roundTrip(Float32Array.of(1), "0e 01 00 00 00 00 80 3f");
  roundTrip([false, 0.5], "0c 02 02 06 00 00 00 00 00 00 00 00 00 00 e0 3f");
  roundTrip({ a: [] }, "0d 01 07 01 61 0c 00");
  roundTrip(new Map([[1, "x"]]), "0d 01 03 01 00 00 00 07 01 78");
  assert.equal(decodeMessage(bytes("04 ff ff ff ff ff ff ff ff")), -1);
});

test("sizes change their form at 254 and 65536", () => {
  for (const [size, head] of [[253, "fd"], [254, "fe fe 00"], [65535, "fe ff ff"],
    [65536, "ff 00 00 01 00"]]) {
    const message = encodeMessage("x".repeat(size));
    const start = bytes(`07 ${head}`);
    assert.deepEqual(message.slice(0, start.length), start);
    assert.equal(message.length, start.length + size);
    assert.equal(decodeMessage(message).length, size);
  }
});

test("numbers in a payload are aligned to the payload, wherever it lies", () => {
  const call = encodeMethodCall("m", { dx: 0.5 });
  assert.deepEqual(call, bytes("07 01 6d 0d 01 07 02 64 78 06 00 00 00 00 00 00"
    + "00 00 00 00 00 00 e0 3f"));
  for (const channel of ["c", "ch", "cha"]) {
    const [, , payload] = decodeMessage(encodeMessage([7, channel, call]));
    assert.deepEqual(decodeMethodCall(payload), { method: "m", args: { dx: 0.5 } });
  }
});

test("replies are results, errors or not implemented", () => {
  assert.equal(decodeReply(bytes("00 01")), true);
  assert.throws(() => decodeReply(bytes("01 07 01 43 00 00")), { code: "C", message: "C" });
  assert.throws(() => decodeReply(null), { code: "NOT_IMPLEMENTED" });
});

test("damaged messages are refused", () => {
  const nested = (depth) => `${"0c 01 ".repeat(depth)}00`;
  assert.doesNotThrow(() => decodeMessage(bytes(nested(64))));
  for (const damaged of ["", "03 00 00", "07 05 61", "07 01 ff", "0f", "00 00", "0c ff ff ff ff ff",
    "0b ff ff ff ff ff 00 00", nested(65)]) {
    assert.throws(() => decodeMessage(bytes(damaged)), undefined, damaged);
  }
});
