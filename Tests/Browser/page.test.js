import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { describe, test } from "node:test";

import { CONNECTED, eventually, go, LongLine, openPhone, PLACES } from "./desktop.js";
import { browser, host, page } from "./setup.js";

const axe = await readFile(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

/** What axe finds wrong with a page, as "rule: element". */
const violations = (checked) => checked.evaluate(async (source) => {
  if (!window.axe) new Function(source)();
  const { violations: found } = await window.axe.run(document, {
    runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"] });
  return found.flatMap(({ id, nodes }) => nodes.map(({ html, any }) => `${id}: ${html.slice(0, 120)} `
    + `${any[0]?.message.slice(0, 140)}`));
}, axe);

async function openWith(options, url = host.url) {
  const opened = await openPhone(browser, url, { bypassCSP: true, ...options });
  return { opened, close: () => opened.context().close() };
}

describe("accessibility", () => {
  for (const colorScheme of ["light", "dark"]) {
    test(`every place is without violations, ${colorScheme}`, async () => {
      const { opened, close } = await openWith({ colorScheme, reducedMotion: "reduce" });
      await opened.waitForSelector(CONNECTED);
      for (const size of ["100%", "200%"]) {
        await opened.addStyleTag({ content: `html { font-size: ${size} !important; }` });
        for (const place of PLACES) {
          await go(opened, place);
          if (place === "screen") await opened.waitForSelector("#stage canvas:not([hidden])");
          assert.deepEqual(await violations(opened), [], `${place} at ${size}`);
        }
        await go(opened, "touchpad");
        await opened.click("#panel-touchpad .open-typing");
        await opened.click("#bar-more");
        assert.deepEqual(await violations(opened), [], `the typing bar at ${size}`);
        await opened.click("#bar-close");
      }
      await opened.evaluate(() => {
        localStorage.removeItem("tapdeck.device");
        location.hash = "";
      });
      await opened.reload();
      await opened.waitForSelector("body[data-reason=no-token] #line-panel:not([hidden])");
      assert.deepEqual(await violations(opened), [], "refused");
      await close();
    });
  }

  test("the keyboard alone goes through a place and on to the next", async () => {
    await page.focus("#pad");
    const names = [];
    for (let press = 0; press < 6; press++) {
      await page.keyboard.press("Tab");
      names.push(await page.evaluate(() => document.activeElement.id || document.activeElement.dataset.button
        || document.activeElement.className));
    }
    assert.deepEqual(names.slice(0, 5), ["scroll-strip", "left", "middle", "right", "open-typing"]);
    await page.focus("#tab-more");
    await page.keyboard.press("Enter");
    await page.waitForSelector("#panel-more");
  });
});

describe("the frame", () => {
  test("five places, each wide enough for a thumb", async () => {
    const buttons = await page.locator("#places button").evaluateAll((all) => all.map((button) => ({
      width: button.getBoundingClientRect().width, size: parseFloat(getComputedStyle(button).fontSize),
      cut: [...button.querySelectorAll("span")].some((label) => label.scrollWidth > label.clientWidth + 1),
    })));
    assert.equal(buttons.length, 5);
    for (const { width, size, cut } of buttons) assert.ok(width >= 72 && size >= 12 && !cut, `${width}, ${size}`);
  });

  test("nothing lies under a notch, on its side or upright", async () => {
    const session = await page.context().newCDPSession(page);
    for (const [width, height, insets] of [
      [844, 390, { top: 0, left: 47, right: 59, bottom: 21 }], [390, 844, { top: 47, left: 0, right: 0, bottom: 34 }],
    ]) {
      await page.setViewportSize({ width, height });
      await session.send("Emulation.setSafeAreaInsetsOverride", { insets });
      for (const place of PLACES) {
        await go(page, place);
        const bad = await page.evaluate((area) => {
          const controls = document.querySelectorAll(
            "#places button, main > section:not([hidden]) :is(button, input, textarea, #pad, .screen-box)");
          return [...controls].filter((control) => control.checkVisibility()).flatMap((control) => {
            const scrolled = control.closest("#panel-settings, .app-list, #panel-displays, .screen-tools");
            const box = control.getBoundingClientRect();
            const inside = box.left >= area.left - 0.5 && box.right <= innerWidth - area.right + 0.5
              && (scrolled || (box.top >= area.top - 0.5 && box.bottom <= innerHeight - area.bottom + 0.5));
            const icon = control.querySelector(":scope > svg")?.getBoundingClientRect();
            const tiny = icon && icon.width < 16;
            return inside && !tiny ? [] : [`${control.id || control.className || control.outerHTML.slice(0, 60)}: `
              + `${[box.left, box.top, box.right, box.bottom].map(Math.round)}`];
          });
        }, insets);
        assert.deepEqual(bad, [], `${place} at ${width}×${height}`);
      }
    }
  });

  test("a first load is small, and the next one smaller", async () => {
    const { opened, close } = await openWith({}, "about:blank");
    const session = await opened.context().newCDPSession(opened);
    await session.send("Network.enable");
    // by the load that asked: an icon may come when the next one has begun
    let requests = new Map();
    let bytes = 0;
    session.on("Network.requestWillBeSent", ({ requestId, request }) => requests.set(requestId, request.url));
    session.on("Network.loadingFinished", ({ requestId, encodedDataLength }) => {
      if (requests.has(requestId)) bytes += encodedDataLength;
    });
    await opened.goto(host.url);
    await opened.waitForSelector(CONNECTED);
    assert.ok(requests.size <= 5 && bytes <= 60_000, `${[...requests.values()]}, ${bytes} bytes`);
    requests = new Map();
    bytes = 0;
    await opened.reload();
    await opened.waitForSelector(CONNECTED);
    assert.ok(bytes < 4000, `${bytes} bytes`);
    await close();
  });

  test("the page speaks German, shows its gestures once, and is where it was", async () => {
    const { opened, close } = await openWith({ locale: "de-AT" });
    await opened.waitForSelector(`${CONNECTED} #tab-media >> text=Medien`);
    const shown = () => opened.locator("#pad-help").evaluate((help) => getComputedStyle(help).opacity > 0);
    assert.ok(await shown());
    await opened.touchscreen.tap(150, 300);
    await go(opened, "displays");
    await opened.waitForSelector(".display[aria-label$='Den Zeiger hierher setzen']");
    await opened.reload();
    await opened.waitForSelector("#panel-displays >> text=Monitore");
    await go(opened, "touchpad");
    assert.equal(await shown(), false);
    await go(opened, "settings");
    await opened.selectOption("[data-setting=language]", "en");
    await opened.waitForSelector("#panel-settings >> text=Language");
    await close();
  });
});

test("a line that is dead is seen at the first gesture, and when nobody touches anything", async () => {
  const line = await LongLine.to(host.url, 10);
  try {
    const { opened, close } = await openWith({}, line.url);
    const lost = () => opened.waitForSelector("body:not([data-state=connected]) #line-panel:not([hidden])",
      { timeout: 9000 });
    await opened.waitForSelector(CONNECTED);
    line.dead = true;
    const start = performance.now();
    await opened.touchscreen.tap(150, 300);
    await lost();
    const took = performance.now() - start;
    assert.ok(took < 4500, `${took} ms`);
    assert.ok(await opened.evaluate(() => document.querySelector("main").inert));
    line.dead = false;
    await opened.waitForSelector(CONNECTED);
    line.dead = true;
    await lost();
    await close();
  } finally {
    line.close();
  }
});

test("the strip stands where it is wanted, and the choice lasts", async () => {
  await go(page, "settings");
  await page.check("[name=strip][value=left]", { force: true });
  await page.reload();
  await go(page, "touchpad");
  await eventually("the strip is on the left", async () => {
    const [pad, strip] = [await page.locator("#pad").boundingBox(), await page.locator("#scroll-strip").boundingBox()];
    return strip.x < pad.x + 10;
  });
});
