import assert from "node:assert/strict";
import { readFile, rm, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { afterEach, test } from "node:test";
import { fileURLToPath } from "node:url";

import { Applications, eventually, exec, go, Line } from "./desktop.js";
import { center, fingers, page } from "./setup.js";

const applications = new Applications();

const closeProbe = () => exec("xdotool", ["search", "--class", "ZebraProbe", "windowkill"]);

afterEach(async () => {
  await closeProbe().catch(() => {});
  await applications.removeAll();
});

const namesIn = (group) => page.locator(`[data-group=${group}] li >> visible=true`).evaluateAll((tiles) =>
  tiles.map((tile) => tile.querySelector(".app-name").textContent));
const lists = async (group, ...names) => {
  let shown;
  await eventually(() => `${names} listed as ${group}, not ${shown}`, async () => {
    shown = await namesIn(group);
    return shown.join() === names.join();
  });
};
const inGroup = (group, name) => eventually(`${name} is ${group}`,
  async () => (await namesIn(group)).includes(name));

test("applications are found by name, and stand where they run, were started or are pinned", async () => {
  await applications.add("pear", "pear Probe", "true");
  await applications.add("eclair", "Éclair Probe", "true");
  await applications.add("zebra", "Zebra Probe", "xterm -class ZebraProbe",
    "StartupWMClass=ZebraProbe");
  await go(page, "apps");
  await page.fill("#app-search", "probe");
  await lists("all", "Éclair Probe", "pear Probe", "Zebra Probe");
  await page.fill("#app-search", " pro ECLÄIR");
  await lists("all", "Éclair Probe");
  await page.fill("#app-search", "");

  await page.tap("[data-group=all] >> text=Zebra Probe");
  await page.waitForSelector("#panel-apps .outcome >> text=Starting Zebra Probe");
  await inGroup("running", "Zebra Probe");
  await closeProbe();
  await eventually("what ended was started last", async () => {
    await go(page, "touchpad");
    await go(page, "apps");
    return (await namesIn("recent")).includes("Zebra Probe");
  });

  await fingers.put(1, ...await center("[data-group=all] >> text=pear Probe"));
  await lists("pinned", "pear Probe");
  await fingers.lift(1);
  await page.reload();
  await lists("pinned", "pear Probe");
  assert.deepEqual(await namesIn("recent"), ["Zebra Probe"]);
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
  await go(page, "apps");
  await eventually("an icon is asked for", () => line.calls.length > 0);
  await go(page, "settings");
  await page.waitForSelector("#login-item [role=switch]:enabled");
  assert.equal(line.calls.length, 1);
  line.release();

  await go(page, "apps");
  const waiting = page.locator(".app-icon:not(.loaded, .drawn)");
  const inView = () => waiting.evaluateAll((icons) => icons.filter((icon) => {
    const { top, height } = icon.getBoundingClientRect();
    return height > 0 && top < innerHeight;
  }).length);
  await eventually("what is in view has its icon", async () => await inView() === 0);
  assert.ok(line.calls.length > 12 && line.calls.length < COUNT / 2, `${line.calls.length} icons`);

  await page.evaluate(() => { document.querySelector(".app-list").scrollTop = 1e6; });
  await eventually("the last icon is asked for", () => line.calls.includes(last));
  await page.evaluate(() => { document.querySelector(".app-list").scrollTop = 0; });
  const image = page.locator(`[data-group=all] [data-app='filler${COUNT}.desktop'] img`);
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
  await go(page, "settings");
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
    await page.waitForSelector("#login-item .outcome.failed >> text=still off");
    await shows(false);
  } finally {
    await rm(folder, { recursive: true, force: true });
  }
});
