import assert from "node:assert/strict";
import { readFile, rm, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { afterEach, test } from "node:test";
import { fileURLToPath } from "node:url";

import { Applications, eventually, exec, Line } from "./desktop.js";
import { page } from "./setup.js";

const applications = new Applications();

const closeProbe = () => exec("xdotool", ["search", "--class", "ZebraProbe", "windowkill"]);

afterEach(async () => {
  await closeProbe().catch(() => {});
  await applications.removeAll();
});

const shownNames = () => page.locator(".app-grid li >> visible=true").evaluateAll((tiles) =>
  tiles.map((tile) => tile.querySelector(".app-name").textContent));
const lists = async (...names) => {
  let shown;
  await eventually(() => `${names} listed, not ${shown}`, async () => {
    shown = await shownNames();
    return shown.join() === names.join();
  });
};

test("applications stand in order, are found by name, and come first while they run", async () => {
  await applications.add("pear", "pear Probe", "true");
  await applications.add("eclair", "Éclair Probe", "true");
  await applications.add("zebra", "Zebra Probe", "xterm -class ZebraProbe",
    "StartupWMClass=ZebraProbe");
  await page.click("#tab-apps");
  await page.fill("#app-search", "probe");
  await lists("Éclair Probe", "pear Probe", "Zebra Probe");
  await page.fill("#app-search", " pro ECLÄIR");
  await lists("Éclair Probe");
  await page.fill("#app-search", "probe");

  await page.tap("text=Zebra Probe");
  await page.waitForSelector("#panel-apps .outcome >> text=Starting Zebra Probe");
  await lists("Zebra Probe", "Éclair Probe", "pear Probe");

  await closeProbe();
  await eventually("the list of a panel that is shown again is new", async () => {
    await page.click("#tab-touchpad");
    await page.click("#tab-apps");
    return await page.locator(".running >> text=Zebra Probe").count() === 0;
  });
});

test("icons are asked for one at a time, once, and when they are looked at", async () => {
  const COUNT = 120;
  const icon = `Icon=${fileURLToPath(new URL("../../Console/icon.svg", import.meta.url))}`;
  const last = `getAppIcon filler${COUNT}.desktop`;
  for (let at = 1; at <= COUNT; at++) {
    await applications.add(`filler${at}`, `Zzz ${at}`, "true", icon);
  }
  const line = await Line.of(page, /^getAppIcon/);
  line.hold();
  await page.click("#tab-apps");
  await eventually("an icon is asked for", () => line.calls.length > 0);
  await page.click("#tab-settings");
  await page.waitForSelector("#login-item [role=switch]:enabled");
  assert.equal(line.calls.length, 1);
  line.release();

  await page.click("#tab-apps");
  const waiting = page.locator(".app-icon:not(.loaded, .drawn)");
  const inView = () => waiting.evaluateAll((icons) => icons.filter((icon) => {
    const { top, height } = icon.getBoundingClientRect();
    return height > 0 && top < innerHeight;
  }).length);
  await eventually("what is in view has its icon", async () => await inView() === 0);
  assert.ok(line.calls.length > 12 && line.calls.length < COUNT / 2, `${line.calls.length} icons`);

  await page.evaluate(() => { document.querySelector("#panel-apps").scrollTop = 1e6; });
  await eventually("the last icon is asked for", () => line.calls.includes(last));
  await page.evaluate(() => { document.querySelector("#panel-apps").scrollTop = 0; });
  const image = page.locator(`[data-app='filler${COUNT}.desktop'] img`);
  await page.fill("#app-search", `zzz ${COUNT}`);
  await eventually("the icon is shown", () => image.evaluate((drawn) => drawn.naturalWidth === 64));

  assert.equal(new Set(line.calls).size, line.calls.length);
});

test("the host starts at login when it is told to, and the switch shows what is true", async () => {
  const folder = join(process.env.XDG_CONFIG_HOME, "autostart");
  const content = () => readFile(join(folder, "tapdeck.desktop"), "utf8").catch(() => "");
  const toggle = page.locator("#login-item [role=switch]");
  const shows = (on) =>
    page.waitForSelector(`#login-item [role=switch][aria-checked=${on}]:enabled`);
  await page.click("#tab-settings");
  await shows(false);
  try {
    await toggle.tap();
    await shows(true);
    assert.ok((await content()).includes(process.env.TAPDECK_HOST));

    await toggle.tap();
    await shows(false);
    assert.equal(await content(), "");

    // A file in the folder's place: the entry cannot be written.
    await rm(folder, { recursive: true });
    await writeFile(folder, "");
    await toggle.tap();
    await page.waitForSelector("#login-item .outcome.failed >> text=approved");
    await shows(false);
  } finally {
    await rm(folder, { recursive: true, force: true });
  }
});
