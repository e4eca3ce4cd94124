import assert from "node:assert/strict";
import { test } from "node:test";

import { tokenIn } from "../../Console/connection/identity.js";
import { Latest, Summed } from "../../Console/connection/pacers.js";
import { Pacing } from "../../Console/screen/pacing.js";
import { Zoom } from "../../Console/screen/zoom.js";

/** A line on which each call takes as long as it says; time goes on only by `pass`. */
class Clock {
  now = 0;
  #waiting = [];

  take(duration) {
    return new Promise((resolve) => { this.#waiting.push({ at: this.now + duration, resolve }); });
  }

  async pass(duration) {
    const end = this.now + duration;
    for (;;) {
      for (let turn = 0; turn < 8; turn++) await null;
      const next = this.#waiting.filter(({ at }) => at <= end).sort((a, b) => a.at - b.at)[0];
      if (!next) break;
      this.#waiting.splice(this.#waiting.indexOf(next), 1);
      this.now = next.at;
      next.resolve();
    }
    this.now = end;
  }
}

test("moves go out up to three at a time as their sum, and stop on a line that is stuck", async () => {
  for (const [roundTrip, least, most] of [[40, 50, 76], [100, 25, 31], [5000, 1, 3]]) {
    const clock = new Clock();
    const sent = [];
    const moves = new Summed((x, y) => [x, y], (x) => {
      sent.push(x);
      return clock.take(roundTrip);
    }, () => clock.now);
    for (let event = 0; event < 100; event++) {
      moves.add(1, 0);
      await clock.pass(10);
    }
    const { length } = sent;
    assert.ok(length >= least && length <= most, `${length} moves a second at ${roundTrip} ms`);
    await clock.pass(20_000);
    assert.equal(sent.reduce((sum, x) => sum + x, 0), 100);
  }
});

test("of places only the latest is sent", async () => {
  const clock = new Clock();
  const sent = [];
  const places = new Latest((place) => {
    sent.push(place);
    return clock.take(100);
  }, () => clock.now);
  for (let place = 1; place <= 9; place++) places.put(place);
  await clock.pass(400);
  assert.deepEqual(sent, [1, 2, 3, 9]);
});

/** How many pictures are asked for within a second, when each is answered after `roundTrip` ms. */
function asked(roundTrip, changes, pacing = new Pacing(), from = 0) {
  const open = [];
  let count = 0;
  for (let now = from; now < from + 1000; now++) {
    if (open[0] <= now) {
      open.shift();
      if (changes) pacing.changed(now);
      else pacing.unchanged(now);
    }
    if (pacing.nextAt(now) > now) continue;
    pacing.started(now);
    open.push(now + roundTrip);
    count++;
  }
  for (; open.length > 0; open.shift()) pacing.unchanged(from + 1000);
  return count;
}

test("what moves is asked for a few times at once, what stands still less and less", () => {
  assert.ok(asked(40, true) >= 28 && asked(100, true) >= 18, `${asked(40, true)}, ${asked(100, true)}`);
  for (const roundTrip of [5, 60]) {
    const pacing = new Pacing();
    const still = [0, 1, 2, 3, 4, 5].map((second) => asked(roundTrip, false, pacing, second * 1000));
    assert.ok(still[0] <= 16 && still[1] <= 11 && still[5] <= 3, `${still}`);
  }
  const pacing = new Pacing();
  asked(5, false, pacing);
  pacing.hurry(6000);
  assert.ok(pacing.nextAt(6000) === 6000);
});

test("an enlarged picture stays under the fingers and within its box", () => {
  const zoom = new Zoom();
  zoom.setPicture(2400, 1200);
  zoom.setBox(400, 300);
  assert.deepEqual(zoom.rect, { x: 0, y: 50, width: 400, height: 200 });
  assert.deepEqual(zoom.fractionsAt(100, 200), { x: 0.25, y: 0.75, inside: true });
  assert.equal(zoom.fractionsAt(100, 20).inside, false);
  assert.equal(zoom.wantedWidth(2), 800);

  const under = zoom.fractionsAt(120, 130);
  zoom.change({ factor: 4, dx: 0, dy: 0, x: 120, y: 130 });
  assert.equal(zoom.scale, 4);
  const after = zoom.fractionsAt(120, 130);
  assert.ok(Math.abs(after.x - under.x) < 1e-9 && Math.abs(after.y - under.y) < 1e-9);
  assert.equal(zoom.wantedWidth(1), 1600);
  assert.equal(zoom.wantedWidth(3), 1920);

  zoom.change({ factor: 1, dx: 5000, dy: 5000, x: 5000, y: 5000 });
  assert.ok(Math.abs(zoom.rect.x) < 1e-9 && Math.abs(zoom.rect.y) < 1e-9);
  assert.ok(zoom.reveal(1, 1));
  assert.ok(zoom.fractionsAt(400, 300).x > 0.99);
  assert.equal(zoom.reveal(1, 1), false);
  // Turned on its side, the same place stays in the middle.
  const middle = zoom.fractionsAt(200, 150);
  zoom.setBox(500, 260);
  assert.ok(Math.abs(zoom.fractionsAt(250, 130).x - middle.x) < 0.05);
  zoom.change({ factor: 9, dx: 0, dy: 0, x: 0, y: 0 });
  assert.equal(zoom.scale, 6);
  zoom.fit();
  assert.ok(!zoom.zoomed && zoom.rect.height === 250);
});

test("an address is taken as it is copied, or its end alone", () => {
  const token = "0123456789abcdef0123456789abcdef";
  for (const address of [token, `#${token}`, ` http://192.0.2.7:8420/#${token}\n`]) {
    assert.equal(tokenIn(address), token);
  }
  for (const address of ["", "http://192.0.2.7/", `${token}0`]) assert.equal(tokenIn(address), "");
});
