import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { beforeEach, describe, test } from "node:test";
import { setTimeout as sleep } from "node:timers/promises";

import { Zoom } from "../../Console/screen/zoom.js";
import { countDrawings, eventually, go, pointerPlace, putPointer } from "./desktop.js";
import { browser, center, fingers, page, witness } from "./setup.js";
import { StandIn } from "./standin.js";

const SIZE = { width: 600, height: 300 };
const UNCHANGED = { unchanged: true };
let picture;
let replies;
let line;

test("the host's own screen is shown with its pointer, and again when it has changed", async () => {
  const isShown = (red, x, y) => page.waitForFunction(([red, x, y]) => {
    const canvas = document.querySelector("#stage canvas");
    if (canvas.hidden) return false;
    const [r, g, b] = canvas.getContext("2d")
      .getImageData(x * canvas.width, y * canvas.height, 1, 1).data;
    return red === (r > 180 && g < 70 && b < 70);
  }, [red, x, y]);
  await go(page, "screen");
  await isShown(false, 0.25, 0.5);
  const window = spawn("xterm", ["-geometry", "80x40+360+300", "-bg", "#dd2222", "-fg", "#dd2222"]);
  try {
    await isShown(true, 0.25, 0.5);
    await putPointer(600, 600);
    const { x, y, width, height } = await page.locator("#stage canvas").boundingBox();
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
  await countDrawings(page);
  line = await StandIn.of(page, {
    captureScreen: () => sleep(5, replies.length > 1 ? replies.shift() : replies[0]),
    ...answers,
  });
  await go(page, "screen");
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

  test("is asked for a few times at once and drawn only when it has changed", async () => {
    replies = [...Array(12).fill(picture), UNCHANGED];
    // Of two that are ready together only the later is drawn.
    await watch();
    await page.waitForFunction(() => window.drawn >= 6);
    const [first, ...later] = line.of("captureScreen");
    assert.ok(first.display);
    const maxWidth = Math.max(320, Math.round((await page.locator("#stage").boundingBox()).width));
    assert.deepEqual(first, { display: first.display, maxWidth, quality: 60, force: true });
    for (const wish of later) assert.deepEqual({ ...wish, force: true }, first);
    assert.ok(later.every(({ force }) => !force));

    await eventually("the screen stands still", () => replies.length === 1);
    await sleep(300);
    const before = await drawn();
    assert.ok(before <= 12, `${before} drawn`);
    await sleep(500);
    assert.equal(await drawn(), before);
    replies = [picture, UNCHANGED];
    await draws(before + 1);
    assert.ok(line.atOnce.captureScreen <= 3, `${line.atOnce.captureScreen} at once`);
  });

  test("is not asked for while nobody looks, and whole when somebody looks again", async () => {
    await watch();
    await draws(1);
    for (const [leave, comeBack] of [
      [() => go(page, "apps"), () => go(page, "screen")],
      [() => setHidden(true), () => setHidden(false)],
    ]) {
      await leave();
      await staysSilent();
      line.calls.length = 0;
      await comeBack();
      await eventually("a picture is asked for", () => asked() > 0);
      assert.equal(line.of("captureScreen")[0].force, true);
    }
    const { maxWidth } = line.of("captureScreen").at(-1);
    await page.setViewportSize({ width: 700, height: 844 });
    await page.check("[name=quality][value=sharp]");
    await eventually("a better picture is asked for",
      () => line.of("captureScreen").some((wish) => wish.quality === 85 && wish.force));
    await page.check("[name=quality][value=fast]");
    await eventually("fast means fewer pixels",
      () => line.of("captureScreen").some((wish) => wish.quality < 60 && wish.maxWidth < maxWidth + 100));
  });

  const stageBox = () => page.locator("#stage").boundingBox();
  const pointerAt = (x, y, within = 3) => eventually(`the pointer is at ${x}, ${y}`, async () => {
    const place = await pointerPlace();
    return Math.abs(place.x - x) <= within && Math.abs(place.y - y) <= within;
  });
  const seesAnew = async (...lines) => {
    await witness.sees(...lines);
    witness.lines.length = 0;
  };
  /** How the page lays a screen of 2400 by 1200 into its stage. */
  const laid = ({ width, height }) => {
    const zoom = new Zoom();
    zoom.setPicture(2400, 1200);
    zoom.setBox(width, height);
    return zoom;
  };

  test("takes taps, drags and scrolling at their places, and nothing beside it", async () => {
    await page.setViewportSize({ width: 740, height: 360 });
    await watch();
    await draws(1);
    const stage = await stageBox();
    const { rect } = laid(stage);
    assert.ok(rect.x > 5 || rect.y > 5, JSON.stringify(rect));
    const at = (x, y) => [stage.x + rect.x + x * rect.width, stage.y + rect.y + y * rect.height];

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

  test("is enlarged by two fingers, taken to the desktop's pixel, and shown whole again", async () => {
    await watch();
    await draws(1);
    const stage = await stageBox();
    const whole = laid(stage);
    const [x, y] = [stage.x + 0.7 * stage.width, stage.y + stage.height / 2];
    const zoomed = async () => (await page.locator("#stage canvas").boundingBox()).width / whole.rect.width;
    await fingers.put(1, x - 20, y);
    await fingers.put(2, x + 20, y);
    await fingers.spread([1, 2], 5, 40);
    await fingers.lift(1);
    await fingers.lift(2);
    assert.ok(await zoomed() > 3.9, `enlarged by ${await zoomed()}`);
    await eventually("a larger picture is asked for",
      () => line.of("captureScreen").at(-1).maxWidth >= 1280);

    const shown = await page.locator("#stage canvas").boundingBox();
    for (const [tapX, tapY] of [[x, y], [stage.x + 60, y + 31], [stage.x + stage.width - 40, y - 22]]) {
      await fingers.tap([tapX, tapY]);
      await pointerAt((2400 * (tapX - shown.x)) / shown.width, (1200 * (tapY - shown.y)) / shown.height, 1);
      await sleep(450);
    }
    witness.lines.length = 0;

    await fingers.put(1, x, y);
    await fingers.put(2, x + 30, y);
    await fingers.drag([1, 2], 80, 0);
    await fingers.lift(1);
    await fingers.lift(2);
    const panned = await page.locator("#stage canvas").boundingBox();
    assert.ok(panned.x - shown.x > 50, `panned by ${panned.x - shown.x}`);
    assert.deepEqual(witness.lines.filter((seen) => /press/.test(seen)), []);

    await page.setViewportSize({ width: 844, height: 390 });
    await eventually("the enlarged picture fills the turned page", async () => await zoomed() > 1.5);
    await page.setViewportSize({ width: 390, height: 844 });
    for (let tap = 0; tap < 2; tap++) await fingers.tap([x, y], [x + 40, y]);
    await eventually("all of it is shown", async () => Math.abs(await zoomed() - 1) < 0.01);
    assert.equal(witness.count("press 3 held 0x0"), 0);
  });

  test("is a trackpad when that is chosen, and the view goes with the pointer", async () => {
    await watch();
    await draws(1);
    await page.click("#screen-mode");
    const stage = await stageBox();
    const [x, y] = [stage.x + stage.width / 2, stage.y + stage.height / 2];
    await fingers.put(1, x - 40, y);
    await fingers.put(2, x + 40, y);
    await fingers.spread([1, 2], 3, 20);
    await fingers.lift(1);
    await fingers.lift(2);
    const before = await page.locator("#stage canvas").boundingBox();
    await putPointer(1700, 500);
    await fingers.put(1, x, y);
    await fingers.drag([1], 60, 0);
    await fingers.lift(1);
    await eventually("the pointer went on from where it was", async () => {
      const place = await pointerPlace();
      return place.x > 1740 && Math.abs(place.y - 500) <= 2;
    });
    await eventually("the view went with it",
      async () => (await page.locator("#stage canvas").boundingBox()).x < before.x - 40);
    await fingers.tap([x, y]);
    await seesAnew("press 1 held 0x0", "release 1 held 0x100");
  });

  test("stands alone in full screen until Back, with its tools behind a handle", async () => {
    await watch();
    await draws(1);
    await page.click("#full-screen");
    await eventually("the picture has the page", async () => (await stageBox()).height > 800);
    assert.equal(await page.isVisible(".screen-tools"), false);
    await page.click("#tools-handle");
    assert.ok(await page.isVisible("#full-screen"));
    await page.goBack();
    await page.waitForSelector("#places");
    assert.equal(await page.getAttribute("body", "data-place"), "screen");
    await page.goBack();
    await page.waitForSelector("#pad");
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

    await go(page, "media");
    await page.waitForSelector("#laser-on >> visible=true");
    await setHidden(true);
    await dots("showLaser", "hideLaser");
    await setHidden(false);
    await go(page, "screen");
    await page.click("#laser");
    await dots("showLaser", "hideLaser", "showLaser");
    await page.goto("about:blank");
    await dots("showLaser", "hideLaser", "showLaser", "hideLaser");
  });
});
