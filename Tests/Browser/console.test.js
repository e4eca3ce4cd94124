import assert from "node:assert/strict";
import { mkdir, rm, writeFile } from "node:fs/promises";
import { dirname, join } from "node:path";
import { describe, test } from "node:test";
import { setTimeout as sleep } from "node:timers/promises";

import { allow, CONNECTED, copyOnComputer, eventually, exec, go, launchBrowser, pasteOnComputer,
  pointerPlace, putPointer, useMouseAt } from "./desktop.js";
import { center, fingers, host, pad, page, witness } from "./setup.js";

const HOLD = 700;

const pointerSettled = async () => {
  let last = await pointerPlace();
  return eventually("the pointer rests", async () => {
    const before = last;
    await sleep(150);
    last = await pointerPlace();
    return last.x === before.x && last.y === before.y && last;
  });
};

describe("touchpad", () => {
  test("a finger moves the pointer its own way and at least as far", async () => {
    await fingers.put(1, ...pad);
    await fingers.drag([1], 120, 60);
    await fingers.lift(1);
    const { x, y } = await pointerSettled();
    assert.ok(x - 1700 > 80 && x - 1700 < 480, `moved ${x - 1700} to the right`);
    assert.ok(Math.abs(x - 1700 - 2 * (y - 500)) <= 4, `moved (${x - 1700}, ${y - 500})`);
    assert.equal(witness.count("press 1 held 0x0"), 0);
  });

  test("a mouse moves, clicks and scrolls as well", async () => {
    await page.mouse.move(...pad);
    await page.mouse.down();
    await page.mouse.move(pad[0] - 80, pad[1], { steps: 8 });
    await page.mouse.up();
    assert.ok((await pointerSettled()).x < 1640);
    await page.mouse.click(...pad, { button: "right" });
    await witness.sees("press 3 held 0x0", "release 3 held 0x400");
    await page.mouse.wheel(0, 240);
    await witness.sees("press 5 held 0x0");
  });

  test("on the computer's own screen the mouse does not chase itself", async () => {
    const shown = await launchBrowser(true);
    try {
      const context = await shown.newContext({ viewport: null });
      const local = await context.newPage();
      await local.goto(host.url);
      await local.waitForSelector(CONNECTED);
      const [x, y] = await local.evaluate(() => {
        const box = document.querySelector("#pad").getBoundingClientRect();
        return [screenX + (outerWidth - innerWidth) / 2 + box.x + box.width / 2,
          screenY + outerHeight - innerHeight + box.y + box.height / 2].map(Math.round);
      });
      await local.bringToFront();
      await useMouseAt(x, y);
      await local.waitForSelector(".pad-note:not(:empty)");
      assert.deepEqual(await pointerSettled(), { x: x + 20, y });
    } finally {
      await shown.close();
    }
  });

  test("every double click is one to a browser on the computer", async () => {
    // This window manager looks at every click first and loses some that come in quick succession.
    const settings = join(process.env.XDG_CONFIG_HOME, "openbox");
    await mkdir(settings, { recursive: true });
    await writeFile(join(settings, "rc.xml"),
      '<openbox_config xmlns="http://openbox.org/3.4/rc"><mouse/></openbox_config>');
    await exec("openbox", ["--reconfigure"]);
    const shown = await launchBrowser(true);
    try {
      const target = await (await shown.newContext({ viewport: null })).newPage();
      await target.setContent(`<script>
        let clicks = 0, doubleClicks = 0;
        onclick = () => { clicks++; };
        ondblclick = () => { doubleClicks++; };
      </script>`);
      await target.bringToFront();
      const [x, y] = await target.evaluate(() =>
        [screenX + outerWidth / 2, screenY + outerHeight / 2].map(Math.round));
      const call = join(dirname(process.env.TAPDECK_HOST), "tapdeck-call");
      for (let count = 1; count <= 40; count++) {
        // elsewhere, lest it counts on from the last one
        await putPointer(x + 60 * (count % 2), y);
        await exec(call, ["doubleClick"]);
        await eventually("two clicks", () => target.evaluate(`clicks === ${2 * count}`));
      }
      assert.equal(await target.evaluate("doubleClicks"), 40);
    } finally {
      await shown.close();
      await rm(settings, { recursive: true });
      await exec("openbox", ["--reconfigure"]);
    }
  });

  test("taps click, with two fingers on the right button", async () => {
    await fingers.tap(pad);
    await witness.sees("press 1 held 0x0", "release 1 held 0x100");
    await fingers.tap(pad, [pad[0] + 60, pad[1]]);
    await witness.sees("press 3 held 0x0", "release 3 held 0x400");
    assert.equal(witness.count("press 1 held 0x0"), 1);
  });

  test("what a gesture holds is let go of when it is cancelled or the page closes", async () => {
    await fingers.put(1, ...pad);
    await witness.sees("press 1 held 0x0");
    await fingers.cancel();
    await witness.sees("release 1 held 0x100");

    await fingers.put(1, ...pad);
    await witness.sees("release 1 held 0x100", "press 1 held 0x0");
    await page.close();
    await witness.sees("release 1 held 0x100", "press 1 held 0x0", "release 1 held 0x100");
  });

  test("a button stays pressed under one finger while another drags", async () => {
    await fingers.put(1, ...await center("[data-button=left]"));
    await witness.sees("press 1 held 0x0");
    await fingers.put(2, ...pad);
    await fingers.drag([2], 50, 0);
    await sleep(HOLD);
    await fingers.lift(2);
    await fingers.lift(1);
    await witness.sees("press 1 held 0x0", "move held 0x100", "release 1 held 0x100");
    assert.equal(witness.count("press 1 held 0x0"), 1);

  });
});

describe("scrolling", () => {
  const fling = async (...ids) => {
    await fingers.drag(ids, 0, 200, 8);
    for (const id of ids) await fingers.lift(id);
  };
  const pulls = () => witness.count("press 4 held 0x0");

  test("runs out after a throw, until a touch stops it", async () => {
    await fingers.put(1, pad[0], pad[1] - 100);
    await fingers.put(2, pad[0] + 60, pad[1] - 100);
    await fling(1, 2);
    const thrown = pulls();
    await sleep(120);
    await fingers.tap(pad);
    const stopped = pulls();
    assert.ok(stopped > thrown, `${thrown} steps when it was thrown, ${stopped} when it was stopped`);
    await sleep(300);
    assert.ok(pulls() - stopped <= 1, `${pulls() - stopped} steps after it was stopped`);
    assert.equal(witness.count("press 1 held 0x0"), 0);

  });

  test("takes one finger at the pad's edge", async () => {
    await fingers.put(1, ...await center("#scroll-strip"));
    await fling(1);
    await witness.sees("press 4 held 0x0");
    assert.ok((await pointerPlace()).x === 1700);
  });
});

describe("sections", () => {
  test("displays are redrawn at a change and take the pointer", async () => {
    await go(page, "displays");
    await page.waitForFunction(() => document.querySelectorAll(".display").length === 1);
    await exec("xrandr", ["--setmonitor", "narrow", "600/150x1200/300+0+0", "screen"]);
    try {
      await exec("xrandr", ["--setmonitor", "broad", "1800/450x1200/300+600+0", "none"]);
      await page.waitForFunction(() => document.querySelectorAll(".display").length === 2);
      const [x, y] = await center(".display[aria-label^=broad] rect");
      await page.touchscreen.tap(x, y);
      await eventually("the pointer is in the middle of the broad display", async () => {
        const place = await pointerPlace();
        return Math.abs(place.x - 1500) < 12 && Math.abs(place.y - 600) < 12;
      });
      await page.waitForSelector(".cursor[visibility=visible]");
    } finally {
      await exec("xrandr", ["--delmonitor", "narrow"]);
      await exec("xrandr", ["--delmonitor", "broad"]);
    }
    await page.waitForFunction(() => document.querySelectorAll(".display").length === 1);
  });

  test("the clipboard goes both ways", async () => {
    await go(page, "clipboard");
    await copyOnComputer("ä → 😀\nsecond line");
    await page.click("text=Read clipboard");
    await page.waitForFunction((text) => document.querySelector("#clipboard-text").value === text,
      "ä → 😀\nsecond line");

    await page.fill("#clipboard-text", "back again: ß");
    await page.click("text=Write clipboard");
    await eventually("the text is on the computer's clipboard",
      async () => await pasteOnComputer() === "back again: ß");

    await page.fill("#clipboard-text", "x".repeat(1100 * 1024));
    await page.click("text=Write clipboard");
    await page.waitForSelector("#panel-clipboard .outcome.failed >> text=more than the computer takes");
    assert.ok(await page.isVisible(CONNECTED));
  });

  test("a permission that is taken back is noticed on every place, and gone when it is granted", async () => {
    await go(page, "media");
    await page.waitForTimeout(1000);
    await allow(false, true);
    try {
      await page.waitForSelector("#permission-banner >> visible=true", { timeout: 6000 });
      await page.click("#permission-banner button");
      const pill = (kind) => page.locator(`[data-permission=${kind}] .pill`).textContent();
      assert.deepEqual([await pill("control"), await pill("screen")], ["Missing", "Granted"]);
    } finally {
      await allow(true, true);
    }
    await page.waitForSelector("#permission-banner", { state: "hidden" });
  });
});

test("the page says what is wrong with its address, and takes another", async () => {
  const token = new URL(host.url).hash.slice(1);
  const showsReason = (reason) =>
    page.waitForSelector(`body[data-reason=${reason}] #line-panel:not([hidden])`);
  const start = async (hash) => {
    await page.evaluate(() => localStorage.removeItem("tapdeck.device"));
    await page.goto("about:blank");
    await page.goto(new URL(`/#${hash}`, host.url).href);
  };
  await start("0123456789abcdef0123456789abcdef");
  await showsReason("wrong-token");
  assert.ok(await page.evaluate(() => document.querySelector("main").inert));
  await page.fill("#line-address", "http://192.0.2.7/");
  await page.click("#line-panel [type=submit]");
  await page.waitForSelector("#line-panel .outcome:not(:empty)");
  await start("");
  await showsReason("no-token");
  await page.fill("#line-address", `http://192.0.2.7:1/#${token}`);
  await page.click("#line-panel [type=submit]");
  await page.waitForSelector(CONNECTED);
});
