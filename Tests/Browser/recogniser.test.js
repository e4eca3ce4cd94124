import assert from "node:assert/strict";
import { test } from "node:test";

import { pointerGain, Recogniser, USUAL } from "../../Console/touch/recogniser.js";

/**
 * Plays touches, one a line of "time id x y" (with a width where it matters) and "time id up", and
 * gives what came of them: words for taps and presses, and how far the pointer went in all.
 */
function play(touches, options = {}) {
  const did = [];
  const moved = { x: 0, y: 0 };
  const scrolled = { x: 0, y: 0 };
  const add = (sum, dx, dy) => { sum.x += dx; sum.y += dy; };
  const recogniser = new Recogniser({
    move: (dx, dy) => add(moved, dx, dy),
    scroll: (dx, dy) => add(scrolled, dx, dy),
    scrolled: () => did.push("scrolled"),
    tap: (button) => did.push(button),
    press: () => did.push("press"),
    release: () => did.push("release"),
    hold: () => did.push("hold"),
    ...options.actions?.(did),
  }, { ...USUAL, ...options });
  const down = new Set();
  for (const line of touches.trim().split("\n")) {
    const [time, id, x, y, size] = line.trim().split(/ +/).map((part) => part === "up" ? part : Number(part));
    while (recogniser.due < time) recogniser.tick(recogniser.due);
    if (x === "up") recogniser.up(id, time);
    else if (down.has(id)) recogniser.move({ id, x, y, time });
    else recogniser.down({ id, x, y, time, size });
    if (x === "up") down.delete(id);
    else down.add(id);
  }
  while (recogniser.due < Infinity) recogniser.tick(recogniser.due);
  assert.equal(recogniser.phase, "idle");
  return { did: did.join(" "), moved, scrolled };
}

/** A finger on its way from x to `to` at 60 touches a second, as phones report them. */
function stroke(from, time, to, duration, id = 1, y = 200) {
  const steps = Math.max(1, Math.round(duration / 16.7));
  const lines = [`${time} ${id} ${from} ${y}`];
  for (let step = 1; step <= steps; step++) {
    lines.push(`${time + (duration * step) / steps} ${id} ${from + ((to - from) * step) / steps} ${y}`);
  }
  return [...lines, `${time + duration} ${id} up`].join("\n");
}
/** Touches of several fingers in the order of their times. */
const together = (...strokes) => strokes.flatMap((lines) => lines.trim().split("\n"))
  .sort((a, b) => parseFloat(a) - parseFloat(b)).join("\n");

const TAP = "0 1 100 200\n30 1 101.5 201\n60 1 103 202\n80 1 up";

test("slow aiming only moves, and nothing of the way is lost", () => {
  for (const [way, duration] of [[12, 639], [5, 349], [3.5, 2000], [40, 1500]]) {
    const { did, moved } = play(stroke(100, 0, 100 + way, duration));
    assert.equal(did, way === 3.5 ? "hold release" : "", `${way} pixels in ${duration} ms`);
    if (way !== 3.5) assert.ok(moved.x >= way * 0.49 && moved.x < way, `${way} pixels moved ${moved.x}`);
  }
  assert.ok(pointerGain(0.03) < 0.6 && pointerGain(0.28) === 1 && pointerGain(2) > 3);
  const fast = play(stroke(100, 0, 300, 120));
  assert.ok(fast.did === "" && fast.moved.x > 400);
  assert.equal(play(stroke(100, 0, 300, 120), { speed: 2 }).moved.x, 2 * fast.moved.x);
});

test("a tap is decided when the finger goes up, and takes its way back", () => {
  const { did, moved } = play(TAP);
  assert.equal(did, "press release");
  assert.ok(Math.hypot(moved.x, moved.y) < 1e-9);
  assert.equal(play(stroke(100, 0, 108, 240)).did, "press release");
  assert.equal(play(stroke(100, 0, 111, 150)).did, "");
  assert.equal(play(stroke(100, 0, 104, 260)).did, "");
  // There and back again is no tap either.
  assert.equal(play("0 1 100 200\n50 1 112 200\n100 1 100 200\n120 1 up").did, "");
});

test("a tap goes on as a double tap or a drag when the finger is back at once", () => {
  const then = (touches) => play(`${TAP}\n${touches}`);
  assert.equal(then("180 1 104 204\n230 1 up").did, "press release press release");
  const drag = then(stroke(104, 180, 224, 300));
  assert.equal(drag.did, "press release");
  assert.ok(drag.moved.x > 100);
  // Later, or elsewhere, it is a finger like any other.
  assert.equal(then(stroke(104, 300, 224, 300)).did, "press release");
  assert.equal(then("180 1 180 204\n220 1 up").did, "press release press release");
  const order = [];
  play(`${TAP}\n${stroke(104, 180, 224, 300)}`, { actions: () => ({
    press: () => order.push("press"), release: () => order.push("release"), move: () => order.push("move"),
  }) });
  assert.equal(order.at(-1), "release");
});

test("a finger that rests holds, and drags from there", () => {
  const { did, moved } = play(`0 1 100 200\n200 1 102 201\n${stroke(102, 600, 202, 200).replace(/^.*\n/, "")}`);
  assert.equal(did, "hold release");
  assert.ok(moved.x > 90);
  assert.equal(play("0 1 100 200\n900 1 up", { holds: false }).did, "");
});

test("two fingers scroll, or tap the right button; three tap the middle one", () => {
  const both = together(stroke(100, 0, 160, 200, 1), stroke(180, 8, 240, 200, 2));
  const scroll = play(both);
  assert.equal(scroll.did, "scrolled");
  assert.ok(scroll.scrolled.x > 45 && scroll.scrolled.x < 61 && scroll.scrolled.y === 0);
  assert.ok(Math.abs(scroll.moved.x) < 1e-9, "the first finger's start is taken back");
  const tap = "0 1 100 200\n20 1 103 201\n40 2 180 200\n120 1 up\n140 2 up";
  assert.equal(play(tap).did, "right");
  assert.equal(play(tap.replace("120 1 up", "50 3 240 200\n120 1 up\n130 3 up")).did, "center");
  assert.equal(play("0 1 100 200\n40 2 180 200\n500 1 up\n520 2 up").did, "");
});

test("the ball of the thumb is no finger", () => {
  const palm = "0 9 300 700 90\n10 9 304 702\n900 9 up";
  assert.deepEqual(play(together(palm, stroke(100, 50, 130, 600))), play(stroke(100, 50, 130, 600)));
  assert.equal(play(palm).did, "");
});

test("on a picture fingers mean places, and two of them pinch, pan and fit", () => {
  const changes = [];
  const picture = (pair) => ({ places: true, tapDrags: false, pair, actions: (did) => ({
    transform: (change) => changes.push(change), fit: () => did.push("fit"),
  }) });
  assert.equal(play(stroke(100, 0, 106, 200), picture("pinch")).did, "left");
  assert.equal(play(stroke(100, 0, 150, 200), picture("pinch")).moved.x, 50);

  const apart = together(stroke(180, 0, 120, 200, 1), stroke(220, 0, 280, 200, 2));
  assert.equal(play(apart, picture("pinch")).did, "");
  const factor = changes.splice(0).reduce((product, change) => product * change.factor, 1);
  assert.ok(factor > 3.8 && factor <= 4, `${factor}`);
  const along = together(stroke(100, 0, 160, 200, 1), stroke(180, 0, 240, 200, 2));
  assert.equal(play(along, picture("pinch")).did, "scrolled");
  play(along, picture("pan"));
  const panned = changes.splice(0).reduce((sum, change) => sum + change.dx, 0);
  assert.ok(panned > 50 && panned <= 60, `${panned}`);

  const tap = (time) => `${time} 1 100 200\n${time + 10} 2 180 200\n${time + 80} 1 up\n${time + 90} 2 up`;
  assert.equal(play(tap(0), picture("pinch")).did, "right");
  assert.equal(play(`${tap(0)}\n${tap(200)}`, picture("pinch")).did, "fit");
});
