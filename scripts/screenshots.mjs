// Pictures of every place of the page in the four sizes, light and dark, for people to look at.
// usage: screenshots.mjs FOLDER (on a desktop of its own; ./tapdeck screenshots does all of it)

import { spawn } from "node:child_process";
import { mkdir, readFile } from "node:fs/promises";
import { join } from "node:path";
import { setTimeout as sleep } from "node:timers/promises";
import { fileURLToPath } from "node:url";

import { CONNECTED, eventually, Fingers, go, Host, launchBrowser, openPhone, PLACES }
  from "../Tests/Browser/desktop.js";
import { StandIn } from "../Tests/Browser/standin.js";

const SIZES = [[390, 844], [844, 390], [768, 1024], [1440, 900]];
const SONG = { title: "A song with a longer name", artist: "The band", album: "The album", duration: 215,
  position: 72, playing: true, canSeek: true, app: "VLC", trackId: "song" };

const folder = process.argv[2];
const only = process.argv[3];
const host = await Host.start();
const browser = await launchBrowser();
const shows = (file, ...options) => spawn("xterm", [...options, "-e", "sh", "-c",
  `fold -s -w 84 '${fileURLToPath(new URL(`../${file}`, import.meta.url))}' | head -44; sleep 900`],
  { stdio: "ignore" });
const windows = [
  shows("README.md", "-geometry", "86x46+40+40", "-bg", "#10151f", "-fg", "#d7e0f0"),
  shows("LICENSE", "-geometry", "86x30+640+420", "-bg", "#fbf7ee", "-fg", "#222"),
];

async function art() {
  const drawing = await browser.newPage({ viewport: { width: 300, height: 300 } });
  await drawing.setContent("<body style='margin:0;background:linear-gradient(135deg,#e8a33d,#b3355a 60%,#2b2f77)'>");
  const picture = (await drawing.screenshot({ type: "jpeg" })).toString("base64");
  await drawing.close();
  return picture;
}

/** A picture of the page as it is now. */
async function take(page, name) {
  await sleep(250);
  await page.screenshot({ path: join(folder, `${name}.png`) });
}

async function everyPlace(width, height, colorScheme, cover, language = "en-GB") {
  const page = await openPhone(browser, host.url, { viewport: { width, height }, colorScheme, locale: language });
  await StandIn.of(page, { supportsNowPlaying: () => true, getVolumeLevel: () => 40,
    getNowPlaying: ({ includeArt }) => includeArt ? { ...SONG, art: cover } : SONG });
  const suffix = `${width}x${height}-${colorScheme}${language.startsWith("de") ? "-de" : ""}`;
  for (const place of PLACES) {
    if (only && place !== only) continue;
    await go(page, place);
    // The gestures are shown on the touchpad's picture only.
    if (place === "screen") await page.evaluate(() => document.body.classList.add("help-seen"));
    if (place === "screen") await page.waitForSelector("#stage canvas:not([hidden])");
    if (place === "media") await page.waitForSelector(".cover img:not([hidden])");
    if (place === "apps") await page.waitForSelector(".app-group:not([hidden]) li");
    await take(page, `${place}-${suffix}`);
  }
  await page.context().close();
}

/** The picture of the screen enlarged, with the bar of keys. */
async function zoomed() {
  const page = await openPhone(browser, host.url, { deviceScaleFactor: 1.5 });
  await page.waitForSelector(CONNECTED);
  await go(page, "screen");
  await page.waitForSelector("#stage canvas:not([hidden])");
  const { x, y, width, height } = await page.locator("#stage").boundingBox();
  const fingers = await Fingers.on(page);
  const [left, middle] = [x + width * 0.3, y + height / 2 - 60];
  await fingers.put(1, left, middle);
  await fingers.put(2, left + 40, middle);
  await fingers.spread([1, 2], 2.4);
  await fingers.lift(1);
  await fingers.lift(2);
  await page.tap("#panel-screen .open-typing");
  await eventually("the enlarged picture is there", () =>
    page.evaluate(() => document.querySelector("#stage canvas").width > 900));
  await take(page, "screen-zoomed");
  await page.context().close();
}

/** Some of the places side by side, as the README shows them. */
async function sideBySide(names) {
  const pictures = await Promise.all(names.map((name) => readFile(join(folder, `${name}.png`), "base64")));
  const drawing = await browser.newPage({ viewport: { width: 1240, height: 660 }, deviceScaleFactor: 1 });
  await drawing.setContent(`<body style="margin:0;height:100vh;display:flex;align-items:center;
    justify-content:space-evenly;background:#cfd6e4">${pictures.map((picture) => `<img style="width:284px;
    border-radius:26px;box-shadow:0 0 0 6px #15181e" src="data:image/png;base64,${picture}">`).join("")}`);
  await take(drawing, "places");
  await drawing.close();
}

/** What lies over everything while there is no line. */
async function noLine() {
  const page = await openPhone(browser, host.url);
  await page.waitForSelector(CONNECTED);
  await host.stop();
  await page.waitForSelector("body[data-state=unreachable]");
  await take(page, "line-unreachable");
  await page.context().close();
}

await mkdir(folder, { recursive: true });
try {
  const cover = await art();
  await zoomed();
  for (const [width, height] of SIZES) {
    for (const scheme of ["light", "dark"]) await everyPlace(width, height, scheme, cover);
  }
  await everyPlace(390, 844, "light", cover, "de-DE");
  if (!only) {
    await sideBySide(["touchpad-390x844-light", "screen-390x844-light", "media-390x844-dark", "more-390x844-light"]);
  }
  await noLine();
} finally {
  for (const window of windows) window.kill();
  await browser.close();
}
