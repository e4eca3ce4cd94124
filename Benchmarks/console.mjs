// What the page does over a line that is far away: moves and pictures a second, and how soon it is there.
// usage: console.mjs (on a desktop of its own; ./tapdeck bench console does all of it)

import { spawn } from "node:child_process";
import { appendFileSync } from "node:fs";
import { setTimeout as sleep } from "node:timers/promises";

import { decodeMessage, decodeMethodCall } from "../Console/connection/codec.js";
import {
  CONNECTED, countDrawings, Fingers, go, Host, launchBrowser, LongLine, openPhone,
} from "../Tests/Browser/desktop.js";

const SECONDS = 5;

const host = await Host.start();
const browser = await launchBrowser();
// A terminal in which lines run by, a hundred a second.
const moving = spawn("xterm", ["-geometry", "150x50+100+60", "-e", "sh", "-c",
  "i=0; while :; do i=$((i+1)); echo \"$i $i $i $i $i $i $i $i\"; sleep 0.01; done"], { stdio: "ignore" });

/** Prints a figure beside its bound, and adds it to the table of all benchmarks where one is made. */
function show(what, value, unit, isBelow, bound) {
  const isMet = isBelow ? value <= bound : value >= bound;
  const limit = `${isBelow ? "≤" : "≥"} ${bound}`;
  console.log(`${what.padEnd(40)} ${value.toFixed(1).padStart(8)} ${unit} (${limit}: ${isMet ? "met" : "MISSED"})`);
  const file = process.env.TAPDECK_BENCH_TABLE;
  if (!file) return;
  const cells = [`page: ${what}`, `${value.toFixed(1)} ${unit}`, "–", "–", limit + (isMet ? "" : ": MISSED")];
  appendFileSync(file, `| ${cells.join(" | ")} |\n`);
}

async function openOver(roundTrip) {
  const line = await LongLine.to(host.url, roundTrip / 2);
  const page = await openPhone(browser, line.url);
  const calls = {};
  page.on("websocket", (socket) => socket.on("framesent", ({ payload }) => {
    const { method } = decodeMethodCall(decodeMessage(new Uint8Array(payload))[2]);
    calls[method] = (calls[method] ?? 0) + 1;
  }));
  await countDrawings(page);
  await page.reload();
  await page.waitForSelector(CONNECTED);
  return { line, page, calls };
}

async function moves(roundTrip) {
  const { line, page, calls } = await openOver(roundTrip);
  await go(page, "touchpad");
  const { x, y, width, height } = await page.locator("#pad").boundingBox();
  const fingers = await Fingers.on(page);
  await fingers.put(1, x + width / 2, y + height / 2);
  const start = performance.now();
  calls.moveMouse = 0;
  for (let step = 0; performance.now() - start < SECONDS * 1000; step++) {
    await fingers.drag([1], step % 40 < 20 ? 4 : -4, 0, 1);
  }
  const rate = calls.moveMouse / ((performance.now() - start) / 1000);
  await page.context().close();
  line.close();
  return rate;
}

async function pictures(roundTrip, quality) {
  const { line, page } = await openOver(roundTrip);
  await go(page, "screen");
  await page.check(`[name=quality][value=${quality}]`, { force: true });
  await page.waitForFunction(() => window.drawn > 10);
  const before = await page.evaluate(() => window.drawn);
  await sleep(SECONDS * 1000);
  const rate = (await page.evaluate(() => window.drawn) - before) / SECONDS;
  await page.context().close();
  line.close();
  return rate;
}

/** The first load on a phone: 1.5 Mbit/s, 120 ms there and back, a processor four times as slow. */
async function firstLoad() {
  const page = await openPhone(browser, "about:blank");
  const session = await page.context().newCDPSession(page);
  await session.send("Network.enable");
  await session.send("Network.emulateNetworkConditions",
    { offline: false, latency: 120, downloadThroughput: 187_500, uploadThroughput: 93_750 });
  await session.send("Emulation.setCPUThrottlingRate", { rate: 4 });
  let bytes = 0;
  let requests = 0;
  session.on("Network.loadingFinished", ({ encodedDataLength }) => { bytes += encodedDataLength; });
  session.on("Network.requestWillBeSent", () => { requests++; });
  const start = performance.now();
  await page.goto(host.url);
  await page.waitForSelector(CONNECTED);
  const connected = (performance.now() - start) / 1000;
  const paint = await page.evaluate(() =>
    performance.getEntriesByName("first-contentful-paint")[0]?.startTime ?? NaN);
  await sleep(1500);
  await page.context().close();
  return { bytes, requests, connected, paint: paint / 1000 };
}

try {
  for (const [roundTrip, leastMoves, leastPictures] of [[40, 50, 28], [100, 25, 18]]) {
    const far = `${roundTrip} ms there and back`;
    show(`moves, ${far}`, await moves(roundTrip), "a second", false, leastMoves);
    for (const quality of ["balanced", "fast"]) {
      show(`pictures, ${quality}, ${far}`, await pictures(roundTrip, quality), "a second", false, leastPictures);
    }
  }
  const { bytes, requests, connected, paint } = await firstLoad();
  console.log("first load at 1.5 Mbit/s, 120 ms, a processor four times as slow:");
  show("first load", bytes / 1000, "kB", true, 60);
  show("first load", requests, "requests", true, 5);
  show("first paint", paint, "s", true, 1.5);
  show("connected", connected, "s", true, 2);
} finally {
  moving.kill();
  await browser.close();
  await host.stop();
}
