// The desktop that a test runs on: the host, the browser, the X server's own tools.

import assert from "node:assert/strict";
import { execFile, spawn } from "node:child_process";
import { mkdir, readFile, rm, writeFile } from "node:fs/promises";
import { connect, createServer } from "node:net";
import { dirname, join } from "node:path";
import { createInterface } from "node:readline";
import { setTimeout as sleep } from "node:timers/promises";
import { promisify } from "node:util";

import { chromium } from "playwright-core";

import { decodeMessage, decodeMethodCall, encodeMessage } from "../../Console/connection/codec.js";

export const CONNECTED = "body[data-state=connected]";
const MAIN_PLACES = ["touchpad", "screen", "media", "apps", "more"];
export const PLACES = [...MAIN_PLACES, "keyboard", "displays", "clipboard", "present", "power", "settings"];

const PATIENCE = 20_000;
const graphemes = new Intl.Segmenter();

export const exec = promisify(execFile);

/** Waits until `condition` gives something true, and gives that; fails with `what` otherwise. */
export async function eventually(what, condition) {
  const end = Date.now() + PATIENCE;
  while (Date.now() < end) {
    const outcome = await condition();
    if (outcome) return outcome;
    await sleep(30);
  }
  assert.fail(`Waited in vain: ${what instanceof Function ? what() : what}`);
}

export class Host {
  #process;

  /** Starts the host; `url` is the page's address with the token. */
  static async start(port = 0) {
    const host = new Host();
    const options = { stdio: ["ignore", "pipe", "inherit"] };
    host.#process = spawn(process.env.TAPDECK_HOST, ["--port", String(port)], options);
    for await (const line of createInterface({ input: host.#process.stdout })) {
      const file = /address is in (.*)/.exec(line)?.[1];
      if (!file) continue;
      host.url = JSON.parse(await readFile(file, "utf8")).url;
      break;
    }
    assert.ok(host.url, "the host says where the page's address is");
    host.#process.stdout.resume();
    return host;
  }

  async stop() {
    const { exitCode, signalCode } = this.#process;
    if (exitCode === null && signalCode === null) {
      const ended = new Promise((resolve) => { this.#process.once("exit", resolve); });
      this.#process.kill("SIGTERM");
      await ended;
    }
    assert.equal(this.#process.signalCode ?? this.#process.exitCode, 0, "how the host ended");
  }
}

/** Starts Chromium; with `shown` it has windows on the desktop, which a real mouse can reach. */
export function launchBrowser(shown = false) {
  return chromium.launch({
    executablePath: process.env.CHROMIUM,
    headless: !shown,
    args: [...(shown ? [] : ["--headless"]), "--no-sandbox", "--disable-gpu", "--disable-quic",
      "--no-first-run", "--disable-background-networking", "--disable-component-update",
      "--disable-sync"],
  });
}

/** Goes to a place of the page by what leads there. */
export async function go(page, place) {
  if (!MAIN_PLACES.includes(place)) await page.click("#tab-more");
  await page.click(`#tab-${place}`);
  await page.waitForSelector(`#panel-${place}`);
}

/** Counts in the page's `window.drawn` what it draws on its canvases, from the next load on. */
export function countDrawings(page) {
  return page.addInitScript(() => {
    window.drawn = 0;
    const { drawImage } = CanvasRenderingContext2D.prototype;
    CanvasRenderingContext2D.prototype.drawImage = function draw(...args) {
      window.drawn++;
      return drawImage.apply(this, args);
    };
  });
}

/** A phone's page at this address; what goes wrong in its scripts lands in `page.problems`. */
export async function openPhone(browser, url, options = {}) {
  const context = await browser.newContext({
    viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true, locale: "en-GB", ...options,
  });
  const page = await context.newPage();
  page.setDefaultTimeout(PATIENCE);
  page.problems = [];
  page.on("pageerror", (error) => page.problems.push(String(error)));
  page.on("console", (message) => {
    if (/Content Security Policy/.test(message.text())) page.problems.push(message.text());
  });
  await page.goto(url);
  return page;
}

/** The line between a page and the host: notes the calls in question, and can hold them up. */
export class Line {
  /** Such as "typeText Hello" and "keyPress return". */
  calls = [];
  #held = null;
  #sockets = [];

  /** Taps the line of a page for the calls in question; the page is loaded anew. */
  static async of(page, noted) {
    const line = new this();
    line.noted = noted;
    await page.routeWebSocket(/engine/, (socket) => {
      const host = socket.connectToServer();
      line.#sockets.push(socket);
      socket.onMessage((message) => {
        const [id, channel, payload] = decodeMessage(new Uint8Array(message));
        const answer = (reply) => socket.send(Buffer.from(encodeMessage([id, channel, reply])));
        line.pass(decodeMethodCall(payload), () => host.send(message), answer);
      });
    });
    await page.reload();
    await page.waitForSelector(CONNECTED);
    return line;
  }

  hold() {
    this.#held ??= [];
  }

  /** Lets what was held up go on. */
  release() {
    const held = this.#held;
    this.#held = null;
    for (const pass of held) pass();
  }

  cut() {
    return this.#sockets.pop().close();
  }

  /** What an application makes of the calls so far. */
  get text() {
    return this.calls.reduce((text, call) => {
      if (call === "keyPress backspace") return Array.from(graphemes.segment(text),
        ({ segment }) => segment).slice(0, -1).join("");
      return text + (call === "keyPress return" ? "\n" : /^typeText (.*)/s.exec(call)?.[1] ?? "");
    }, "");
  }

  pass({ method, args }, send) {
    if (!this.noted.test(method)) return send();
    this.calls.push(`${method} ${args.key ?? args.text ?? args.bundleId}`);
    return this.#held ? this.#held.push(send) : send();
  }
}

/**
 * A line to the host that is as long as one wants: what goes over it arrives `delay` ms later, and while
 * it is `dead` nothing does, though nobody is told.
 */
export class LongLine {
  dead = false;
  #server;
  #sockets = new Set();

  static async to(url, delay) {
    const line = new LongLine();
    const { hostname, port } = new URL(url);
    line.#server = createServer((near) => {
      const far = connect(Number(port), hostname);
      // Browsers name the line's end where they mean the host's; both names are equally long.
      const rename = (data) => Buffer.from(
        data.toString("latin1").replaceAll(`:${line.#server.address().port}`, `:${port}`), "latin1");
      line.#pass(near, far, delay, (data) => data.subarray(0, 4).toString() === "GET " ? rename(data) : data);
      line.#pass(far, near, delay, (data) => data);
    });
    do {
      await new Promise((resolve) => { line.#server.listen(0, hostname, resolve); });
    } while (String(line.#server.address().port).length !== port.length);
    line.url = url.replace(`:${port}`, `:${line.#server.address().port}`);
    return line;
  }

  close() {
    for (const socket of this.#sockets) socket.destroy();
    this.#server.close();
  }

  #pass(from, to, delay, change) {
    this.#sockets.add(from);
    from.setNoDelay(true);
    from.on("data", (data) => setTimeout(() => {
      if (!this.dead && to.writable) to.write(change(data));
    }, delay));
    from.on("close", () => setTimeout(() => to.destroy(), delay));
    from.on("error", () => {});
  }
}

/** Fingers on the page, each with a number of its own; all of them stay down until lifted. */
export class Fingers {
  #session;
  #down = new Map();

  static async on(page) {
    const fingers = new Fingers();
    fingers.#session = await page.context().newCDPSession(page);
    return fingers;
  }

  async put(id, x, y) {
    this.#down.set(id, { id, x, y });
    await this.#dispatch("touchStart");
  }

  /** Moves the fingers `ids` together by (dx, dy) in small steps. */
  async drag(ids, dx, dy, steps = 12) {
    for (let step = 0; step < steps; step++) {
      for (const id of ids) {
        const finger = this.#down.get(id);
        finger.x += dx / steps;
        finger.y += dy / steps;
      }
      await this.#dispatch("touchMove");
    }
  }

  /** Moves two fingers apart by this factor, about the middle between them. */
  async spread(ids, factor, steps = 12) {
    const [a, b] = ids.map((id) => this.#down.get(id));
    const middle = { x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 };
    const from = [a, b].map(({ x, y }) => ({ x: x - middle.x, y: y - middle.y }));
    for (let step = 1; step <= steps; step++) {
      const by = 1 + ((factor - 1) * step) / steps;
      [a, b].forEach((finger, at) => {
        finger.x = middle.x + from[at].x * by;
        finger.y = middle.y + from[at].y * by;
      });
      await this.#dispatch("touchMove");
    }
  }

  async lift(id) {
    this.#down.delete(id);
    await this.#dispatch("touchEnd");
  }

  /** A tap as quick as a person's, however slowly this machine sends it. */
  async tap(...places) {
    const start = Date.now() / 1000;
    for (const [index, [x, y]] of places.entries()) {
      this.#down.set(index, { id: index, x, y });
      await this.#dispatch("touchStart", start + 0.01 * index);
    }
    for (const index of places.keys()) {
      this.#down.delete(index);
      await this.#dispatch("touchEnd", start + 0.08 + 0.01 * index);
    }
  }

  async cancel() {
    this.#down.clear();
    await this.#dispatch("touchCancel");
  }

  #dispatch(type, timestamp = undefined) {
    return this.#session.send("Input.dispatchTouchEvent",
      { type, touchPoints: [...this.#down.values()], timestamp });
  }
}

/** An X client's window that notes what the pointer does in it, such as "press 1 held 0x0". */
export class Witness {
  #process;
  #kind = "";
  lines = [];

  static async open(x, y, width, height) {
    const witness = new Witness();
    witness.#process = spawn("stdbuf", ["-oL", "xev", "-name", "witness",
      "-geometry", `${width}x${height}+${x}+${y}`], { stdio: ["ignore", "pipe", "inherit"] });
    createInterface({ input: witness.#process.stdout }).on("line", (line) => witness.#read(line));
    await eventually("the witness is shown", async () => {
      const { stdout } = await exec("xwininfo", ["-name", "witness"]).catch(() => ({ stdout: "" }));
      return stdout.includes("IsViewable");
    });
    return witness;
  }

  /** Waits until all of these lines have come, in this order, with others between them or not. */
  async sees(...expected) {
    await eventually(() => `${expected.join(", ")} in: ${this.lines.join(", ")}`, () => {
      let next = 0;
      for (const line of this.lines) if (line === expected[next]) next++;
      return next === expected.length;
    });
  }

  count(line) {
    return this.lines.filter((seen) => seen === line).length;
  }

  close() {
    this.#process.kill();
  }

  #read(line) {
    this.#kind = /^(ButtonPress|ButtonRelease|MotionNotify) event/.exec(line)?.[1]
      ?? (line.trim() ? this.#kind : "");
    const detail = /state (0x[0-9a-f]+)(?:, button (\d+))?/.exec(line);
    if (!detail || !this.#kind) return;
    const verb = { ButtonPress: "press", ButtonRelease: "release", MotionNotify: "move" }[this.#kind];
    this.lines.push([verb, detail[2], "held", detail[1]].filter(Boolean).join(" "));
    this.#kind = "";
  }
}

/** Applications of the user's, by the names of their desktop files; each starts a command. */
export class Applications {
  #folder = join(process.env.XDG_DATA_HOME, "applications");

  async add(id, name, command, more = "") {
    await mkdir(this.#folder, { recursive: true });
    await writeFile(join(this.#folder, `${id}.desktop`),
      `[Desktop Entry]\nType=Application\nName=${name}\nExec=${command}\n${more}\n`);
  }

  removeAll() {
    return rm(this.#folder, { recursive: true, force: true });
  }
}

export async function pointerPlace() {
  const { stdout } = await exec("xdotool", ["getmouselocation"]);
  const [, x, y] = /x:(-?\d+) y:(-?\d+)/.exec(stdout);
  return { x: Number(x), y: Number(y) };
}

export function putPointer(x, y) {
  return exec("xdotool", ["mousemove", String(x), String(y)]);
}

/** Presses, drags and releases with the computer's own mouse, then clicks and turns the wheel. */
export function useMouseAt(x, y) {
  return exec("xdotool", ["mousemove", x, y, "sleep", 0.3, "mousedown", 1, "sleep", 0.1,
    "mousemove", x + 20, y, "sleep", 0.1, "mouseup", 1, "sleep", 0.1, "click", 1, "click", 5]
    .map(String));
}

/** Decides as the person at the computer would, in the host's settings. */
export async function allow(control, screenCapture) {
  const file = join(process.env.XDG_CONFIG_HOME, "tapdeck", "permissions.ini");
  await mkdir(dirname(file), { recursive: true });
  await writeFile(file, `[Permissions]\ncontrol=${control}\nscreenCapture=${screenCapture}\n`);
}

/** The computer forgets every device that was paired with it, as a person there could make it do. */
export function forgetDevices() {
  return rm(join(process.env.XDG_DATA_HOME, "tapdeck", "devices.ini"), { force: true });
}

/** Fills the X selection CLIPBOARD from a process of its own. */
export async function copyOnComputer(text) {
  const owner = spawn("xclip", ["-selection", "clipboard"], { stdio: ["pipe", "ignore", "ignore"] });
  owner.stdin.end(text);
  await new Promise((resolve) => { owner.once("exit", resolve); });
}

export async function pasteOnComputer() {
  const { stdout } = await exec("xclip", ["-selection", "clipboard", "-o"]).catch(() => ({}));
  return stdout;
}
