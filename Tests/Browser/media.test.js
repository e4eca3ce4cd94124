import assert from "node:assert/strict";
import { test } from "node:test";
import { setTimeout as sleep } from "node:timers/promises";

import { clockText, goodFor, positionAt } from "../../Console/media/trackclock.js";
import { browser, page } from "./setup.js";
import { eventually, go } from "./desktop.js";
import { StandIn } from "./standin.js";

const SONG = { title: "Song", artist: "Band", album: "Album", duration: 215, position: 12.5,
  playing: true, canSeek: true, app: "Spotify", trackId: "song" };

let line;
let track;

async function listen(answers = {}) {
  line = await StandIn.of(page, {
    supportsNowPlaying: () => true, getNowPlaying: () => track, getVolumeLevel: () => 40, ...answers,
  });
  await go(page, "media");
}

const shows = (text) => page.waitForSelector(`.now-playing >> text=${text}`);
const asked = () => line.of("getNowPlaying").length;

test("the position goes on by itself, and what is told stays good for a while", () => {
  assert.equal(positionAt(SONG, 1000, 3500), 15);
  assert.equal(positionAt(SONG, 1000, 900_000), 215);
  assert.equal(positionAt({ ...SONG, playing: false }, 1000, 3500), 12.5);
  assert.equal(positionAt({ ...SONG, canSeek: false, duration: 0 }, 1000, 3500), 15);
  for (const [change, time] of [[{}, 2000], [{ playing: false }, 6000], [{ position: 214 }, 1400],
    [{ position: 215 }, 2000], [{ canSeek: false, duration: 0 }, 2000]]) {
    assert.equal(goodFor({ ...SONG, ...change }), time, JSON.stringify(change));
  }
  assert.equal(goodFor(null), 6000);
  assert.deepEqual([0, 9.9, 185, 3723].map(clockText), ["0:00", "0:09", "3:05", "1:02:03"]);
});

test("a cover is asked for once a track and never shown with another", async () => {
  const drawing = await browser.newPage({ viewport: { width: 20, height: 20 } });
  const covers = {};
  for (const name of ["song", "next", "third"]) {
    await drawing.setContent(`<body style="background: ${{ song: "red", next: "lime", third: "blue" }[name]}">`);
    covers[name] = (await drawing.screenshot({ type: "jpeg" })).toString("base64");
  }
  await drawing.close();
  const cover = () => page.evaluate(() => {
    const image = document.querySelector(".cover img");
    return image.hidden ? null : image.src.split(",")[1];
  });
  const showsCover = (name) => eventually(`the cover of ${name}`, async () => await cover() === covers[name]);
  const withCover = () => line.of("getNowPlaying").filter(({ includeArt }) => includeArt).length;
  let held = Promise.resolve();
  track = SONG;
  await listen({
    getNowPlaying: async ({ includeArt }) => {
      if (!includeArt) return track;
      await held;
      return { ...track, art: covers[track.trackId] };
    },
  });
  await showsCover("song");
  await eventually("the song is asked about again", () => asked() >= 4);

  let release;
  held = new Promise((resolve) => { release = resolve; });
  track = { ...SONG, title: "Next song", trackId: "next" };
  await shows("Next song");
  assert.equal(await cover(), null);
  track = { ...SONG, title: "Third song", trackId: "third" };
  release();
  await shows("Third song");
  await showsCover("third");
  track = null;
  await page.click("[data-media=mediaNext]");
  await shows("Nothing is playing");
  assert.equal(await cover(), null);
  assert.equal(withCover(), 2);
});

test("the position advances between two answers and can be moved only where that is possible", async () => {
  track = SONG;
  await listen({ mediaSeek: ({ position }) => { track = { ...track, position }; return null; } });
  await shows("0:14");
  await page.locator(".position input").fill("100");
  await eventually("the seek", () => line.of("mediaSeek").length === 1);
  assert.deepEqual(line.of("mediaSeek"), [{ position: 100 }]);
  await shows("1:41");

  track = { ...SONG, title: "Radio", trackId: "radio", duration: 0, canSeek: false };
  await shows("Radio");
  assert.equal(await page.isVisible(".position input"), false);
});

test("it is asked seldom while nothing plays, soon after a key, and not at all out of view", async () => {
  track = null;
  await listen({ mediaPlayPause: () => { track = SONG; return null; }, volumeUp: () => null });
  await shows("Nothing is playing");
  await sleep(2500);
  assert.equal(asked(), 1);
  await page.click("[data-media=mediaPlayPause]");
  await shows("Band");

  const readings = () => line.of("getVolumeLevel").length;
  await go(page, "apps");
  await sleep(200);
  const silent = asked() + readings();
  await sleep(2500);
  assert.equal(asked() + readings(), silent);
});

test("the volume goes to where the slider is put, a step after the other", async () => {
  let level = 40;
  const step = (by) => async () => {
    const before = level;
    // As the host does it: read, answer, and write later.
    sleep(80).then(() => { level = before + by; });
    return null;
  };
  track = null;
  await listen({ getVolumeLevel: () => level, volumeUp: step(10), volumeDown: step(-10) });
  await page.waitForSelector(".level >> text=40%");
  await page.locator(".volume input").fill("80");
  await page.waitForSelector(".level >> text=80%");
  await eventually("four steps", () => level === 80);
  await page.click("[data-volume=volumeDown]");
  await eventually("one step back", () => level === 70);
  assert.deepEqual([line.of("volumeUp").length, line.of("volumeDown").length], [4, 1]);
});

test("play and pause flip at once, and back when no player answers", async () => {
  track = SONG;
  await listen({ mediaPlayPause: () => null });
  await page.waitForSelector(".now-playing.playing");
  await page.click("[data-media=mediaPlayPause]");
  assert.equal(await page.locator(".now-playing.playing").count(), 0);
  await page.waitForSelector(".outcome >> text=No answer from the player");
  await page.waitForSelector(".now-playing.playing");
});

test("locking is done at once, and what ends anything only when it is confirmed", async () => {
  const methods = { sleep: "sleepSystem", restart: "restartSystem", shutdown: "shutdownSystem" };
  track = null;
  await listen(Object.fromEntries(["lockScreen", ...Object.values(methods)].map((method) => [method, () => null])));
  await go(page, "power");
  const done = () => line.calls.map(({ method }) => method)
    .filter((method) => /System|Screen$/.test(method) && method !== "captureScreen");
  await page.click("[data-power=lock]");
  await eventually("it is locked", () => done().join() === "lockScreen");
  for (const [name, method] of Object.entries(methods)) {
    const open = async () => {
      await page.click(`[data-power=${name}]`);
      await page.waitForSelector("#power-dialog[open]");
    };
    line.calls.length = 0;
    await open();
    await page.keyboard.press("Enter");
    await page.waitForSelector("#power-dialog", { state: "hidden" });
    await open();
    await page.goBack();
    await page.waitForSelector("#power-dialog", { state: "hidden" });
    assert.deepEqual(done(), []);
    await open();
    await page.click("#power-dialog .main");
    await eventually(`${method} is called`, () => done().length > 0);
    assert.deepEqual(done(), [method]);
  }
});
