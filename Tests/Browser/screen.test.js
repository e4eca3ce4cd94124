import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { beforeEach, describe, test } from "node:test";
import { setTimeout as sleep } from "node:timers/promises";

import { fit, fractionsAt, pictureWidth } from "../../Console/screen/letterbox.js";
import { Pacing } from "../../Console/screen/pacing.js";
import { eventually, pointerPlace, putPointer } from "./desktop.js";
import { browser, center, fingers, page, witness } from "./setup.js";
import { StandIn } from "./standin.js";

const SIZE = { width: 600, height: 300 };
const UNCHANGED = { unchanged: true };
let picture;
let replies;
let line;

test("a picture keeps its shape in any box, and places in it are found again", () => {
  assert.deepEqual(fit(200, 100, 400, 300), { x: 0, y: 50, width: 400, height: 200 });
  assert.deepEqual(fit(100, 200, 400, 300), { x: 125, y: 0, width: 150, height: 300 });
  const rect = fit(200, 100, 400, 300);
  assert.deepEqual(fractionsAt(rect, 100, 200), { x: 0.25, y: 0.75, inside: true });
  assert.deepEqual(fractionsAt(rect, 401, 49), { x: 1, y: 0, inside: false });
  for (const [width, ratio, wanted] of [[390, 3, 1170], [100, 1, 320], [1200, 2, 1920]]) {
    assert.equal(pictureWidth({ width }, ratio), wanted);
  }
});

test("a screen that stands still is asked for less and less, down to ten times a second", () => {
  const pacing = new Pacing();
  const delays = Array.from({ length: 8 }, () => pacing.unchanged(false));
  assert.deepEqual(delays, [...delays].sort((a, b) => a - b));
  assert.ok(delays[0] < 34 && delays[7] === 100, delays.join());
  assert.ok(pacing.unchanged(true) < 50);
  assert.equal(pacing.changed(), 0);
  assert.ok(pacing.unchanged(false) < 34);
});

test("the host's own screen is shown with its pointer, and again when it has changed", async () => {
  const isShown = (red, x, y) => page.waitForFunction(([red, x, y]) => {
    const canvas = document.querySelector("#stage canvas");
    if (canvas.hidden) return false;
    const [r, g, b] = canvas.getContext("2d")
      .getImageData(x * canvas.width, y * canvas.height, 1, 1).data;
    return red === (r > 180 && g < 70 && b < 70);
  }, [red, x, y]);
  await page.click("#tab-screen");
  await isShown(false, 0.25, 0.5);
  const window = spawn("xterm", ["-geometry", "80x40+360+300", "-bg", "#dd2222", "-fg", "#dd2222"]);
  try {
    await isShown(true, 0.25, 0.5);
    await putPointer(600, 600);
    const { x, y, width, height } = await page.locator("#stage").boundingBox();
    await eventually("the pointer is drawn where it is", async () => {
      const cursor = await page.locator(".remote-cursor").boundingBox();
      return cursor && Math.abs(cursor.x - x - width / 4) < 3 && Math.abs(cursor.y - y - height / 2) < 3;
    });
  } finally {
    window.kill();
  }
  await isShown(false, 0.25, 0.5);
});

/** Shows the screen as `replies` has it, one after the other and the last of them again and again. */
async function watch(answers = {}) {
  await page.addInitScript(() => {
    window.drawn = 0;
    const { drawImage } = CanvasRenderingContext2D.prototype;
    CanvasRenderingContext2D.prototype.drawImage = function draw(...args) {
      window.drawn++;
      return drawImage.apply(this, args);
    };
  });
  line = await StandIn.of(page, {
    captureScreen: () => sleep(5, replies.length > 1 ? replies.shift() : replies[0]),
    resetScreenCapture: () => null,
    ...answers,
  });
  await page.click("#tab-screen");
}

const drawn = () => page.evaluate(() => window.drawn);
const draws = (count) => page.waitForFunction((count) => window.drawn === count, count);
const asked = () => line.of("captureScreen").length;
const setHidden = (hidden) => page.evaluate((hidden) => {
  Object.defineProperty(document, "hidden", { value: hidden, configurable: true });
  document.dispatchEvent(new Event("visibilitychange"));
}, hidden);
const staysSilent = async () => {
  await sleep(150);
  const before = asked();
  await sleep(500);
  assert.equal(asked(), before);
};

describe("the picture", () => {
  beforeEach(async () => {
    const drawing = await browser.newPage({ viewport: SIZE });
    await drawing.setContent("<body style='background: #c33'>");
    const jpeg = new Uint8Array(await drawing.screenshot({ type: "jpeg" }));
    await drawing.close();
    picture = { jpeg, w: SIZE.width, h: SIZE.height };
    replies = [picture, UNCHANGED];
  });

  test("is asked for one at a time and drawn only when it has changed", async () => {
    replies = [...Array(12).fill(picture), UNCHANGED];
    await watch();
    await draws(12);
    const { display, ...wish } = line.of("captureScreen").at(-1);
    assert.ok(display);
    const { width } = await page.locator("#stage").boundingBox();
    assert.deepEqual(wish, { maxWidth: Math.max(320, Math.round(width)), quality: 60 });

    await sleep(300);
    assert.equal(await drawn(), 12);
    replies = [picture, picture, UNCHANGED];
    await draws(14);
    assert.equal(line.atOnce.captureScreen, 1);
    assert.equal(line.of("resetScreenCapture").length, 1);
  });

  test("is not asked for while nobody looks, and whole when somebody looks again", async () => {
    await watch();
    await draws(1);
    for (const [leave, comeBack] of [
      [() => page.click("#tab-apps"), () => page.click("#tab-screen")],
      [() => setHidden(true), () => setHidden(false)],
    ]) {
      await leave();
      await staysSilent();
      line.calls.length = 0;
      await comeBack();
      await eventually("a picture is asked for", () => asked() > 0);
      assert.equal(line.calls[0].method, "resetScreenCapture");
    }
    await page.check("[name=quality][value='85']");
    await eventually("a better picture is asked for",
      () => line.of("captureScreen").some(({ quality }) => quality === 85));
  });

  test("takes taps, drags and scrolling at their places, and nothing beside it", async () => {
    await page.setViewportSize({ width: 740, height: 360 });
    await watch();
    await draws(1);
    const stage = await page.locator("#stage").boundingBox();
    const rect = fit(SIZE.width, SIZE.height, stage.width, stage.height);
    assert.ok(rect.x > 5 || rect.y > 5, JSON.stringify(rect));
    const at = (x, y) => [stage.x + rect.x + x * rect.width, stage.y + rect.y + y * rect.height];
    const pointerAt = (x, y) => eventually(`the pointer is at ${x}, ${y}`, async () => {
      const place = await pointerPlace();
      return Math.abs(place.x - x) <= 3 && Math.abs(place.y - y) <= 3;
    });
    const seesAnew = async (...lines) => {
      await witness.sees(...lines);
      witness.lines.length = 0;
    };

    await fingers.tap([stage.x + stage.width / 2, stage.y + Math.max(2, rect.y / 2)]);
    await fingers.tap(at(0.75, 0.5));
    await pointerAt(1800, 600);
    await seesAnew("press 1 held 0x0", "release 1 held 0x100");

    await fingers.put(1, ...at(0.6, 0.5));
    await fingers.drag([1], 0.1 * rect.width, 0.1 * rect.height);
    await fingers.lift(1);
    await pointerAt(1680, 720);
    await seesAnew("press 1 held 0x0", "move held 0x100", "release 1 held 0x100");

    await fingers.put(1, ...at(0.8, 0.3));
    await seesAnew("press 3 held 0x0", "release 3 held 0x400");
    await fingers.lift(1);
    await pointerAt(1920, 360);
    await fingers.tap(at(0.7, 0.7), at(0.75, 0.7));
    await pointerAt(1680, 840);
    await seesAnew("press 3 held 0x0", "release 3 held 0x400");

    await fingers.put(1, ...at(0.65, 0.4));
    await fingers.put(2, ...at(0.7, 0.4));
    await fingers.drag([1, 2], 0, 60);
    await pointerAt(1560, 480);
    await fingers.lift(1);
    await fingers.lift(2);
    await seesAnew("press 4 held 0x0");
    assert.equal(witness.count("press 1 held 0x0"), 0);
  });

  test("gives way to the reason why there is none", async () => {
    let granted = false;
    replies = [{ error: "capture_failed" }];
    await watch({
      screenPermissionGranted: () => granted,
      requestScreenPermission: () => { granted = true; return true; },
    });
    await page.waitForSelector(".screen-notice >> text=does not allow");
    assert.equal(asked(), 0);
    await page.click(".screen-notice >> text=Ask for it");
    await page.waitForSelector(".screen-notice >> text=could not take a picture");
    replies = [picture, UNCHANGED];
    await page.waitForSelector(".screen-notice", { state: "hidden" });
    await draws(1);
  });

  test("the laser only points, and goes out with the page", async () => {
    await watch({ showLaser: () => null, hideLaser: () => null });
    await draws(1);
    const dots = async (...expected) => {
      const seen = () => line.calls.map(({ method }) => method).filter((name) => /Laser/.test(name));
      await eventually(() => `${expected}, not ${seen()}`, () => seen().join() === expected.join());
    };
    await page.click("#laser");
    await dots("showLaser");
    const [x, y] = await center("#stage");
    await fingers.put(1, x + 40, y);
    await fingers.drag([1], 40, 0);
    await fingers.lift(1);
    await witness.sees("move held 0x0");
    assert.equal(witness.count("press 1 held 0x0"), 0);

    await setHidden(true);
    await dots("showLaser", "hideLaser");
    await setHidden(false);
    await dots("showLaser", "hideLaser", "showLaser");
    await page.goto("about:blank");
    await dots("showLaser", "hideLaser", "showLaser", "hideLaser");
  });
});
