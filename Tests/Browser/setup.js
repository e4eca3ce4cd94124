// What the tests of the page share: a host, a browser, a window that sees the mouse, and for each
// test a phone's page of its own.

import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach } from "node:test";

import { CONNECTED, Fingers, forgetDevices, Host, launchBrowser, openPhone, putPointer, Witness }
  from "./desktop.js";

export let host;
export let browser;
export let witness;
export let page;
export let fingers;
/** The middle of the touchpad. */
export let pad;

before(async () => {
  await forgetDevices();
  host = await Host.start();
  browser = await launchBrowser();
  witness = await Witness.open(1200, 100, 1000, 900);
});

after(async () => {
  witness?.close();
  await browser?.close();
  await host?.stop();
});

beforeEach(async () => {
  page = await openPhone(browser, host.url);
  await page.waitForSelector(CONNECTED);
  fingers = await Fingers.on(page);
  pad = (await center("#pad")).map(Math.round);
  await putPointer(1700, 500);
  witness.lines.length = 0;
});

afterEach(async () => {
  assert.deepEqual(page.problems, []);
  await page.context().close();
});

export async function center(selector) {
  const box = await page.locator(selector).boundingBox();
  return [box.x + box.width / 2, box.y + box.height / 2];
}

/** Ends the host, does `meanwhile`, and starts another one at the same port. */
export async function replaceHost(meanwhile) {
  const { port } = new URL(host.url);
  await host.stop();
  await meanwhile();
  host = await Host.start(port);
}
