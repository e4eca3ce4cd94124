// Eight phones in busy use: what is lost, doubled or out of order, how long a movement takes, and what
// becomes of the host's memory.
// usage: load.js [--seconds N]

import { performance } from "node:perf_hooks";
import { parseArgs } from "node:util";

import { exec, Host, percentile, sleep, Table, within, Witness } from "./desktop.js";
import { Line } from "./line.js";

const LINES = 8;
const CALLS_A_SECOND = 120;
const PATIENCE = 60_000;
/** Pages, caches and the allocator's arenas settle. */
const WARM_UP = 5;

const { values } = parseArgs({ options: { seconds: { type: "string", default: "60" } } });
const seconds = Number(values.seconds);
if (!(seconds >= 1)) throw new RangeError("--seconds takes a number from 1 up");

/**
 * The calls that a line makes in turn; its two letters are nobody else's.
 * "keyPress" is not among them: it takes 10 ms of the host's.
 */
function mix(number) {
  const [one, other] = "abcdefghijklmnop".slice(2 * number);
  const there = ["moveMouse", { dx: 5, dy: 0 }], back = ["moveMouse", { dx: -5, dy: 0 }];
  return [there, back, ["keyDown", { key: one }], there,
    ["keyUp", { key: one }], back, ["scroll", { direction: 1, amount: 40 }],
    there, ["screenCursor"], back, ["keyDown", { key: other }], ["getDisplays"], ["keyUp", { key: other }],
    ["captureScreen", { maxWidth: 640 }], ["scroll", { direction: -1, amount: 40 }]];
}

/** Calls at the pace of a hand that does not wait for answers. */
async function use(line, calls, times, lasts) {
  const replies = [];
  const start = performance.now();
  for (let made = 0; made < lasts * CALLS_A_SECOND; made++) {
    const early = start + 1000 * made / CALLS_A_SECOND - performance.now();
    if (early > 1) await sleep(early);
    const [method, args] = calls[made % calls.length];
    const sent = performance.now();
    const reply = line.call(method, args);
    replies.push(reply.then(() => { if (method === "moveMouse") times.push(performance.now() - sent); }));
  }
  return Promise.allSettled(replies);
}

const pointer = async () => (await exec("xdotool", ["getmouselocation"])).stdout.split(" ").slice(0, 2).join(" ");
const letters = (witness) => witness.keys.filter(({ isDown }) => isDown).map(({ keysym }) => keysym);

const host = await Host.start();
const witness = await Witness.open();
const table = new Table(`${LINES} connections, each ${CALLS_A_SECOND} calls a second for ${seconds} s`);
const lines = await Promise.all(Array.from({ length: LINES }, () => Line.open(host.session)));
await exec("xdotool", ["mousemove", "1200", "600"]);
await Promise.all(lines.map((line, i) => use(line, mix(i), [], WARM_UP)));
const before = { pointer: await pointer(), memory: await host.memory() };
await within(PATIENCE, () => letters(witness).length === LINES * WARM_UP * CALLS_A_SECOND * 2 / mix(0).length);
const typedBefore = letters(witness).length;

const times = [];
const started = performance.now();
const memory = [];
const watch = setInterval(async () => { memory.push(await host.memory()); }, 1000);
// whole rounds of the mix, so that every movement is taken back
const lasts = Math.ceil(seconds * CALLS_A_SECOND / mix(0).length) * mix(0).length / CALLS_A_SECOND;
const work = Promise.all(lines.map((line, i) => use(line, mix(i), times, lasts)));
const outcomes = await Promise.race([work, sleep((lasts * 1000) + PATIENCE, [], { ref: false })]);
clearInterval(watch);
const took = (performance.now() - started) / 1000;

const calls = lines.length * lasts * CALLS_A_SECOND;
const answered = outcomes.flat().filter(({ status }) => status === "fulfilled").length;
const failed = outcomes.flat().find(({ status }) => status === "rejected")?.reason;
const unanswered = lines.reduce((sum, line) => sum + line.open, 0);
table.row(`${calls} calls in ${took.toFixed(1)} s (${(calls / took).toFixed(0)} a second)`,
  `${answered} answered, ${unanswered} without an answer${failed ? `, the first failure: ${failed}` : ""}`,
  "all answered", answered === calls);

const strangers = lines.reduce((sum, line) => sum + line.strangers, 0);
const unordered = lines.reduce((sum, { answered: ids }) =>
  sum + ids.filter((id, i) => i > 0 && id < ids[i - 1]).length, 0);
table.row("replies of each connection", `${strangers} doubled, ${unordered} out of order`, "none",
  strangers === 0 && unordered === 0);

const expected = typedBefore + calls * 2 / mix(0).length;
await within(PATIENCE, () => letters(witness).length >= expected);
const typed = letters(witness);
const wrong = lines.reduce((sum, _, i) => {
  const [one, other] = "abcdefghijklmnop".slice(2 * i);
  const own = typed.filter((letter) => letter === one || letter === other);
  return sum + own.filter((letter, place) => letter !== (place % 2 === 0 ? one : other)).length;
}, 0);
table.row("key presses that a window heard", `${typed.length} of ${expected}, ${wrong} out of order, ` +
  `${witness.pressed.length} still down`, "all, in order, none down",
typed.length === expected && wrong === 0 && witness.pressed.length === 0);

const place = await pointer();
table.row("movements that cancel out", `pointer at ${place}, before ${before.pointer}`, "the same place",
  place === before.pointer);

const [median, late] = [percentile(times, 0.5), percentile(times, 0.99)];
console.log(`        ${times.length} "moveMouse" ` +
  `| p50 ${median.toFixed(1)} ms, p99 ${late.toFixed(1)} ms | no bound here`);

const after = await host.memory();
table.row("resident memory", `${before.memory.toFixed(1)} MiB before, ` +
  `${Math.max(...memory, after).toFixed(1)} at most, ` +
  `${after.toFixed(1)} after`, "grows by less than 4 MiB", after - before.memory < 4);

const { status, milliseconds } = await host.stop();
table.row("SIGTERM", `ended with ${status} after ${milliseconds.toFixed(0)} ms`, "0, within 1000 ms",
  status === 0 && milliseconds < 1000);
witness.close();
table.end();
process.exit();
