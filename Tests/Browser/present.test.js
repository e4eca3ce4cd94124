import assert from "node:assert/strict";
import { test } from "node:test";

import { eventually, go } from "./desktop.js";
import { center, fingers, page, witness } from "./setup.js";
import { StandIn } from "./standin.js";

test("a talk is led by pages, and by a laser for as long as it is held", async () => {
  const nothing = () => null;
  const line = await StandIn.of(page, { keyPress: nothing, showLaser: nothing, hideLaser: nothing,
    hideCursor: nothing, showCursor: nothing });
  const did = async (...expected) => {
    const calls = () => line.calls.map(({ method, args }) => args?.key ?? method).sort();
    await eventually(() => `${expected}, not ${calls()}`, () => calls().join() === [...expected].sort().join());
    line.calls.length = 0;
  };
  await go(page, "present");
  for (const name of ["next", "previous", "start", "black"]) await page.tap(`[data-present=${name}]`);
  await did("pagedown", "pageup", "f5", "b");
  await page.tap("#present-timer");
  await page.waitForSelector("#present-timer >> text=0:01");

  await fingers.put(1, ...await center("#present-laser"));
  await did("showLaser", "hideCursor");
  await fingers.drag([1], 40, 30);
  await witness.sees("move held 0x0");
  await fingers.lift(1);
  await did("hideLaser", "showCursor");
  assert.equal(witness.count("press 1 held 0x0"), 0);

  await fingers.put(1, ...await center("#present-laser"));
  await did("showLaser", "hideCursor");
  await page.evaluate(() => {
    Object.defineProperty(document, "hidden", { value: true, configurable: true });
    document.dispatchEvent(new Event("visibilitychange"));
  });
  await did("hideLaser", "showCursor");
});
