// The host under a drill, what it uses of the computer, and a window that sees what it does.

import { execFile, spawn } from "node:child_process";
import { once } from "node:events";
import { readdir, readFile } from "node:fs/promises";
import { loadavg } from "node:os";
import { performance } from "node:perf_hooks";
import { setTimeout as sleep } from "node:timers/promises";
import { promisify } from "node:util";

export { sleep };
export const exec = promisify(execFile);

/** Waits until `condition` gives something true and gives that; the last outcome when it does not in time. */
export async function within(milliseconds, condition) {
  const end = performance.now() + milliseconds;
  for (;;) {
    const outcome = await condition();
    if (outcome || performance.now() > end) return outcome;
    await sleep(20);
  }
}

/** How many milliseconds `work` takes. */
export async function timed(work) {
  const start = performance.now();
  await work();
  return performance.now() - start;
}

export function percentile(samples, share) {
  const sorted = [...samples].sort((a, b) => a - b);
  return sorted[Math.min(sorted.length - 1, Math.floor(share * sorted.length))];
}

export class Host {
  output = "";
  errors = "";

  /** Starts one; `session` says where it is. `wrapper` is a command that is to start it. */
  static async start(wrapper = [], env = process.env) {
    const host = new Host();
    const [command, ...args] = [...wrapper, process.env.TAPDECK_HOST, "--port", "0"];
    host.process = spawn(command, args, { stdio: ["ignore", "pipe", "pipe"], env });
    host.process.stderr.on("data", (data) => { host.errors += data; });
    host.process.stdout.on("data", (data) => { host.output += data; });
    host.ended = once(host.process, "exit").then(([status, signal]) => signal ?? status);
    const startOf = () => /address is in (.*)\n/.exec(host.output)?.[1];
    await within(60_000, () => startOf() || host.process.exitCode !== null);
    if (!startOf()) throw new Error(`The host did not start: ${host.errors}`);
    // it may see other file systems than this process
    host.session = JSON.parse(await readFile(host.path(startOf()), "utf8"));
    return host;
  }

  /** The host's file of that path. */
  path(file) { return `/proc/${this.pid}/root${file}`; }

  get pid() { return this.process.pid; }

  /** Asks it to end: its exit status or the signal that ended it, and after how many milliseconds. */
  async stop() {
    let status;
    const milliseconds = await timed(async () => {
      this.process.kill("SIGTERM");
      status = await this.ended;
    });
    return { status, milliseconds };
  }

  /** Resident memory in MiB; "VmHWM" is the peak of it. */
  async memory(field = "VmRSS") {
    const status = await readFile(`/proc/${this.pid}/status`, "utf8");
    return Number(new RegExp(`${field}:\\s*(\\d+)`).exec(status)[1]) / 1024;
  }

  async descriptors() {
    return (await readdir(`/proc/${this.pid}/fd`)).length;
  }
}

/** A window over the whole screen that has the focus and hears the keys. */
export class Witness {
  #text = "";

  static async open() {
    const witness = new Witness();
    witness.process = spawn("stdbuf",
      ["-oL", "xev", "-geometry", "2300x1100+10+10", "-event", "keyboard", "-event", "focus"],
      { stdio: ["ignore", "pipe", "ignore"] });
    witness.process.stdout.on("data", (data) => { witness.#text += data; });
    if (!await within(60_000, () => /FocusIn/.test(witness.#text))) throw new Error("no window gets the focus");
    return witness;
  }

  /** Every press and release so far, as {isDown, keycode, keysym}. */
  get keys() {
    const events = this.#text.matchAll(/^Key(Press|Release) event.*\n.*\n.*keycode (\d+) \(keysym \w+, (\w+)\)/gm);
    return [...events].map(([, kind, keycode, keysym]) => ({ isDown: kind === "Press", keycode, keysym }));
  }

  /** The keycodes that are down. */
  get pressed() {
    const down = new Set();
    for (const { isDown, keycode } of this.keys) down[isDown ? "add" : "delete"](keycode);
    return [...down];
  }

  close() { this.process.kill(); }
}

/** Prints the rows of a drill and counts what failed. */
export class Table {
  #failed = 0;

  constructor(title) {
    console.log(`${title}; load average ${loadavg().map((each) => each.toFixed(1)).join(" ")}`);
  }

  /** What was done, what was seen, what it must be, and whether it is so. */
  row(done, seen, bound, isFine) {
    if (!isFine) this.#failed++;
    console.log(`${isFine ? "ok    " : "FAILED"}  ${done} | ${seen} | ${bound}`);
  }

  /** Runs one row's work, which gives [seen, bound, isFine]; an exception fails the row. */
  async check(done, work) {
    try {
      this.row(done, ...await work());
    } catch (error) {
      this.row(done, error.message, "", false);
    }
  }

  end() {
    console.log(`load average ${loadavg().map((each) => each.toFixed(1)).join(" ")}; ${this.#failed} failed`);
    process.exitCode = this.#failed > 0 ? 1 : 0;
  }
}
