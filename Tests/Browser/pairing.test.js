import assert from "node:assert/strict";
import { test } from "node:test";

import { CONNECTED, forgetDevices, openPhone } from "./desktop.js";
import { browser, host, page, replaceHost } from "./setup.js";

const showsReason = (reason) => page.waitForSelector(`body[data-reason=${reason}] #line-panel:not([hidden])`);
const secret = () => page.evaluate(() => localStorage.getItem("tapdeck.device"));

test("a page pairs once and is back by itself after a restart, until it is forgotten", async () => {
  await page.waitForFunction(() => localStorage.getItem("tapdeck.device") && location.hash === "");
  const paired = await secret();
  const { hash } = new URL(host.url);
  await replaceHost(() => page.waitForSelector("body[data-state=unreachable] #line-panel:not([hidden])"));
  assert.notEqual(new URL(host.url).hash, hash);
  const start = performance.now();
  await page.waitForSelector(CONNECTED);
  assert.ok(performance.now() - start < 2000, `${performance.now() - start} ms`);
  await page.reload();
  await page.waitForSelector(CONNECTED);
  assert.equal(await secret(), paired);

  await replaceHost(forgetDevices);
  await showsReason("forgotten");
  assert.equal(await secret(), null);
  await page.fill("#line-address", host.url);
  await page.press("#line-address", "Enter");
  await page.waitForSelector(CONNECTED);
  await page.waitForFunction(() => localStorage.getItem("tapdeck.device") && location.hash === "");

  // A secret that is no longer known does not stand in the way of a new token.
  await forgetDevices();
  await page.goto("about:blank");
  await page.goto(host.url);
  await page.waitForSelector(CONNECTED);
});

test("the header counts the devices", async () => {
  const other = await openPhone(browser, host.url);
  await page.waitForSelector(".status >> text=2 devices");
  await other.waitForSelector(".status >> text=2 devices");
  await other.context().close();
  await page.waitForSelector(".status >> text=Connected");
});

test("who is disconnected at the computer stays away until asked back", async () => {
  const sockets = [];
  await page.routeWebSocket(/engine/, (socket) => {
    socket.connectToServer();
    sockets.push(socket);
  });
  await page.reload();
  await page.waitForSelector(CONNECTED);
  await sockets[0].close({ code: 4002 });
  await showsReason("disconnected");
  await page.waitForTimeout(3000);
  assert.equal(sockets.length, 1);
  await page.click("#line-retry");
  await page.waitForSelector(CONNECTED);
  await sockets[1].close({ code: 4003 });
  await showsReason("network-off");
  await page.waitForSelector(CONNECTED);
});
