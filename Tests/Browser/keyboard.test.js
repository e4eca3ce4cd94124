import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";
import { setTimeout as sleep } from "node:timers/promises";

import { eventually, exec, go, launchBrowser, Line } from "./desktop.js";
import { center, fingers, page } from "./setup.js";

let line;
let field;

beforeEach(async () => {
  line = await Line.of(page, /^key|^typeText|^setClipboard/);
  await go(page, "keyboard");
  field = page.locator("#typing-text");
  await field.focus();
});

const insert = (text) => page.keyboard.insertText(text);
const paste = async (text) => {
  await page.context().grantPermissions(["clipboard-read", "clipboard-write"]);
  await page.evaluate((text) => navigator.clipboard.writeText(text), text);
  await page.keyboard.press("Control+V");
};
const sees = (text) => eventually(() => `"${text}" from ${line.calls}`, () => line.text === text);
/** Waits for exactly these calls, and forgets them. */
const sends = async (...calls) => {
  await eventually(() => `${calls} sent, not ${line.calls}`, () => line.calls.length >= calls.length);
  await sleep(60);
  assert.deepEqual(line.calls.splice(0), calls);
};

test("what is typed, composed, corrected and erased arrives once and in order", async () => {
  const input = await page.context().newCDPSession(page);
  await page.keyboard.type("Teh ");
  for (const text of ["n", "ni"]) {
    await input.send("Input.imeSetComposition", { text, selectionStart: 0, selectionEnd: 0 });
  }
  await sleep(100);
  await sees("Teh ");
  await insert("你");
  await sees("Teh 你");
  await field.evaluate((area) => area.setSelectionRange(2, 4));
  await insert("he");
  await sees("The 你");
  await field.evaluate((area) => area.setSelectionRange(9, 9));
  await insert("👨‍👩‍👧ß");
  await page.keyboard.press("Backspace");
  await page.keyboard.press("Backspace");
  await page.keyboard.type("\n");
  await page.keyboard.press("Backspace");
  await page.keyboard.type("y");
  await sees("The 你y");

  // A key takes along what is still being composed.
  await input.send("Input.imeSetComposition", { text: "ls", selectionStart: 2, selectionEnd: 2 });
  line.calls.length = 0;
  await page.click("#panel-keyboard [data-key=tab]");
  await sends("typeText ls", "keyPress tab");

  const userAgent = "Mozilla/5.0 (Linux; Android 14)";
  await input.send("Emulation.setUserAgentOverride", { userAgent, acceptLanguage: "de" });
  await input.send("Input.imeSetComposition", { text: "ls", selectionStart: 2, selectionEnd: 2 });
  await sends("typeText ls");
  await insert("la");
  await sends("keyPress backspace", "typeText a");
});

test("a long text goes in pieces, one at a time, and can be stopped", async () => {
  line.hold();
  await paste("é".repeat(99) + "🇩🇪".repeat(101));
  await page.click("#panel-keyboard [data-key=return]");
  await page.waitForSelector(".work >> visible=true");
  await sends(`typeText ${"é".repeat(50)}`);
  line.release();
  await sends(`typeText ${"é".repeat(49)}🇩🇪`, `typeText ${"🇩🇪".repeat(50)}`,
    `typeText ${"🇩🇪".repeat(50)}`, "keyPress return");
  await page.waitForSelector(".work", { state: "hidden" });

  line.hold();
  await paste("a".repeat(1000));
  await page.click(".work .stop");
  line.release();
  await sends(`typeText ${"a".repeat(50)}`);
  await page.keyboard.press("Backspace");
  await sends("keyPress backspace");

  line.hold();
  await paste("b".repeat(1000));
  await page.click(".paste-instead");
  line.release();
  await sends(`typeText ${"b".repeat(50)}`, `setClipboard ${"b".repeat(950)}`, "keyDown control", "keyPress v",
    "keyUp control");
});

test("a modifier is tapped for the next key, tapped twice to lock, and let go of at every end", async () => {
  const control = page.locator("#panel-keyboard [data-modifier=control]");
  const held = () => control.getAttribute("aria-pressed");
  await control.click();
  assert.equal(await held(), "true");
  await page.keyboard.type("wé");
  await sends("keyDown control", "keyPress w", "keyUp control", "typeText é");
  assert.equal(await held(), "false");

  await control.dblclick();
  await page.click("#panel-keyboard [data-shortcut=redo]");
  await page.keyboard.type("w");
  await go(page, "touchpad");
  await page.click("#held >> text=Ctrl");
  await sends("keyDown control", "keyDown shift", "keyPress z", "keyUp shift", "keyPress w", "keyUp control");
  await page.click("#panel-touchpad .open-typing");
  await page.click("#typing-bar [data-modifier=control]");
  await fingers.tap(await center("#pad"));
  await sends("keyDown control", "keyUp control");

  await page.click("#typing-bar [data-modifier=control]");
  await sends("keyDown control");
  await page.evaluate(() => window.dispatchEvent(new Event("blur")));
  await sends("keyUp control");
  await page.click("#typing-bar [data-modifier=control]");
  await sends("keyDown control");
  await line.cut();
  await eventually("the line's end lets go", async () => await held() === "false");
});

test("shortcuts reach a browser under layouts that lack their keys", async () => {
  const shown = await launchBrowser(true);
  try {
    const target = await shown.newPage();
    await target.evaluate(() => {
      window.heard = [];
      addEventListener("keydown", (event) => {
        event.preventDefault();
        const { key, keyCode, ctrlKey } = event;
        if (key !== "Control") window.heard.push(`${key} ${keyCode} ${ctrlKey}`);
      });
    });
    await target.bringToFront();
    const control = page.locator("#panel-keyboard [data-modifier=control]");
    // a Hebrew keyboard has the brackets the other way round
    const brackets = { ru: 219, gr: 219, il: 221, fr: 219, de: 219, cz: 219 };
    for (const [layout, bracket] of Object.entries(brackets)) {
      await exec("setxkbmap", ["-layout", layout]);
      await control.dblclick();
      await page.keyboard.type("a1=[");
      await control.click();
      await eventually(layout, () => target.evaluate(() => window.heard.length === 4));
      assert.deepEqual(await target.evaluate(() => window.heard.splice(0)),
        ["a 65 true", "1 49 true", "= 187 true", `[ ${bracket} true`], layout);
    }
  } finally {
    await exec("setxkbmap", ["-layout", "us"]);
    await shown.close();
  }
});

test("the typing bar types on the touchpad, and Back closes it", async () => {
  await go(page, "touchpad");
  await page.click("#panel-touchpad .open-typing");
  await page.keyboard.type("hi");
  await page.click("#typing-bar [data-key=left]");
  await page.click("#bar-more");
  await page.click("#typing-bar [data-key=f5]");
  await sends("typeText h", "typeText i", "keyPress left", "keyPress f5");
  assert.ok(await field.evaluate((area) => area === document.activeElement));
  await page.goBack();
  await page.waitForSelector("#typing-bar", { state: "hidden" });
  assert.equal(await page.getAttribute("body", "data-place"), "touchpad");
});

test("a key repeats for as long as a finger is on it", async () => {
  await fingers.put(1, ...await center("#panel-keyboard [data-key=up]"));
  await eventually("the key repeats", () => line.calls.length > 4);
  await fingers.lift(1);
  await sleep(100);
  const { length } = line.calls;
  await sleep(200);
  assert.equal(line.calls.length, length);
  assert.ok(await field.evaluate((area) => area === document.activeElement));
});

test("a desktop's keys go to the computer, and those of the browser when asked to", async () => {
  await page.keyboard.press("ArrowLeft");
  await page.keyboard.press("Shift+End");
  await sends("keyPress left", "keyDown shift", "keyPress end", "keyUp shift");
  await page.keyboard.press("Tab");
  const capture = page.locator(".capture");
  await capture.evaluate((button) => button.click());
  await page.keyboard.press("Tab");
  await page.keyboard.press("Control+a");
  await page.keyboard.press("F5");
  await page.keyboard.press("Control+Alt");
  await page.keyboard.press("Tab");
  await sends("keyPress tab", "keyDown control", "keyPress a", "keyUp control", "keyPress f5");
  assert.equal(await capture.getAttribute("aria-checked"), "false");
});
