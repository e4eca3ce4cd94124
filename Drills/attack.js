// What anybody who reaches the port, or a phone that is broken, could do to the host: a line for each
// attempt, and whether the others are served as before.

import { spawn } from "node:child_process";
import { connect } from "node:net";
import { appendFile, mkdir, writeFile } from "node:fs/promises";

import { encodeMessage, encodeMethodCall } from "../Console/connection/codec.js";
import { exec, Host, percentile, sleep, Table, timed, within, Witness } from "./desktop.js";
import { frame, Line } from "./line.js";

const PATIENCE = 30_000;
const MIB = 1 << 20;

/** Every method but those that end the session, and those that open a window of the system's. */
const METHODS = [["getRunningApps"], ["getAppIcon", { bundleId: "none" }], ["launchApp"],
  ["moveMouse", { dx: 1, dy: 0 }], ["getDisplays"], ["supportsWindowMove"], ["moveMouseAbs", { x: 0.5, y: 0.5 }],
  ["moveWindowToDisplay"], ["screenCaptureSupported"], ["screenPermissionGranted"], ["captureScreen"],
  ["resetScreenCapture"], ["screenCursor"], ["hideCursor"], ["showCursor"], ["isAccessibilityTrusted"],
  ["debugWarp"], ["click", { button: "left" }], ["doubleClick"], ["mouseDown"], ["mouseUp"],
  ["scroll", { direction: 1, amount: 40 }], ["scrollHorizontal", { direction: 1, amount: 40 }],
  ["keyPress", { key: "a" }], ["keyDown", { key: "shift" }], ["keyUp", { key: "shift" }],
  ["typeText", { text: "é" }], ["showLaser"], ["hideLaser"], ["getVolumeLevel"], ["supportsNowPlaying"],
  ["getNowPlaying"], ["mediaSeek", { position: 1 }], ["mediaPlayPause"], ["mediaNext"], ["mediaPrevious"],
  ["volumeUp"], ["volumeDown"], ["volumeMute"], ["setClipboard", { text: "text" }], ["getClipboard"]];

const ms = (milliseconds) => `${milliseconds.toFixed(0)} ms`;
const table = new Table("attacks over loopback");

/** The answer to a request: all of it, and its status. */
function ask(session, path, headers = [`Host: 127.0.0.1:${session.port}`], method = "GET") {
  return new Promise((resolve) => {
    let text = "";
    const socket = connect(session.port, "127.0.0.1");
    const finish = () => { socket.destroy(); resolve({ text, status: Number(text.slice(9, 12)) }); };
    socket.setTimeout(PATIENCE, finish);
    socket.on("data", (data) => { text += data; });
    socket.on("error", finish);
    socket.on("close", finish);
    socket.write([`${method} ${path} HTTP/1.1`, ...headers, "", ""].join("\r\n"));
  });
}

/** A connection, as soon as the host has noticed which others are gone. */
async function openLine({ session }) {
  let line;
  await within(PATIENCE, async () => {
    line = await Line.open(session).catch((error) => error);
    return line instanceof Line;
  });
  if (line instanceof Error) throw line;
  return line;
}

/** Those methods that are not answered; an error of the method's own is an answer. */
async function unansweredMethods(line) {
  const missing = [];
  for (const [method, args] of METHODS) {
    const answer = line.call(method, args).catch((error) => error.code);
    const outcome = await Promise.race([answer, sleep(PATIENCE, "late", { ref: false })]);
    const isMissing = outcome === undefined || outcome === "late" || outcome === "NOT_IMPLEMENTED" ||
      (method === "getVolumeLevel" && !Number.isInteger(outcome));
    if (isMissing) missing.push(method);
  }
  return missing;
}

async function flood(host) {
  const before = await host.descriptors();
  const memory = await host.memory();
  const halfOpen = [];
  await table.check("2,000 anonymous requests", async () => {
    let served = 0;
    await Promise.all(Array.from({ length: 20 }, async () => {
      for (let i = 0; i < 100; i++) if ((await ask(host.session, "/")).status === 200) served++;
    }));
    await within(PATIENCE, async () => await host.descriptors() <= before + 8);
    const after = await host.descriptors();
    const more = await host.memory() - memory;
    return [`${served} served, ${before} descriptors before, ${after} after, ${more.toFixed(1)} MiB more`,
      "all, at most 8 more, at most 8 MiB", served === 2000 && after <= before + 8 && more <= 8];
  });
  await table.check("then 1,000 half-open connections", async () => {
    for (let i = 0; i < 1000; i++) {
      const socket = connect(host.session.port, "127.0.0.1");
      socket.on("error", () => {});
      halfOpen.push(socket);
    }
    let line;
    const took = await timed(async () => { line = await openLine(host); });
    const during = await host.descriptors();
    const missing = await unansweredMethods(line);
    line.vanish();
    return [`a phone in after ${ms(took)}, ${METHODS.length - missing.length} of ${METHODS.length} methods ` +
      `answered ${missing}, ${during} descriptors`, "in within 15 s, all answered, below 256 descriptors",
    took < 15_000 && missing.length === 0 && during < 256];
  });
  await table.check("and 15 s later", async () => {
    await within(15_000, async () => await host.descriptors() <= before + 8);
    const left = await host.descriptors();
    for (const socket of halfOpen) socket.destroy();
    return [`${left} descriptors, ${before} before`, "at most 8 more", left <= before + 8];
  });
}

async function starve() {
  const host = await Host.start();
  const witness = await Witness.open();
  let goesOn = true;
  const open = () => openLine(host);
  const busy = await Promise.all(Array.from({ length: 7 }, open));
  const line = await open();
  for (const each of busy) {
    const again = () => { if (goesOn) each.call("doubleClick").then(again, () => {}); };
    for (let i = 0; i < 16; i++) again();
  }
  const memory = await host.memory();
  await table.check('"moveMouse" beside seven phones that do "doubleClick" without pause', async () => {
    const times = [];
    for (let i = 0; i < 300; i++) {
      times.push(await timed(() => line.call("moveMouse", { dx: i % 2 ? 1 : -1, dy: 0 })));
      await sleep(10);
    }
    const late = percentile(times, 0.99);
    const others = busy.reduce((sum, each) => sum + each.answered.length, 0);
    return [`p50 ${percentile(times, 0.5).toFixed(1)} ms, p99 ${late.toFixed(1)} ms ` +
      `(${others} double clicks meanwhile)`,
      "p99 under 50 ms", late < 50 && others > 0];
  });
  await table.check("keys beside them", async () => {
    const times = [];
    for (let i = 1; i <= 20; i++) {
      await line.call("keyPress", { key: "a" });
      times.push(await timed(() => within(1000, () => witness.keys.length >= 2 * i)));
    }
    const late = Math.max(...times);
    const more = await host.memory() - memory;
    return [`typed after ${ms(late)} at most, ${more.toFixed(0)} MiB more`, "500 ms, 8 MiB", late < 500 && more <= 8];
  });
  await table.check("SIGTERM beside them", async () => ended(await host.stop()));
  goesOn = false;
  witness.close();
}

const ended = ({ status, milliseconds }) =>
  [`ended with ${status} after ${ms(milliseconds)}`, "0, within 1000 ms", status === 0 && milliseconds < 1000];

async function keymap() {
  return (await exec("xkbcomp", ["-w0", "-xkb", process.env.DISPLAY, "-"])).stdout;
}

async function endInText() {
  const before = await keymap();
  const host = await Host.start();
  const witness = await Witness.open();
  const line = await openLine(host);
  await table.check("SIGTERM in the middle of 6,000 characters", async () => {
    line.call("typeText", { text: "aé漢字Ж ".repeat(1000) }).catch(() => {});
    await within(PATIENCE, () => witness.keys.length > 100);
    const [seen, bound, isFine] = ended(await host.stop());
    await within(PATIENCE, () => witness.pressed.length === 0);
    const isRestored = await keymap() === before;
    return [`${seen}, ${witness.keys.length} key events, ${witness.pressed.length} keys down, ` +
      `the keymap ${isRestored ? "as before" : "changed"}`, `${bound}; none down, the keymap as before`,
    isFine && witness.keys.length < 10_000 && witness.pressed.length === 0 && isRestored];
  });
  witness.close();
}

/** Writes into the file until its disk is full. */
async function fill(file) {
  for (let size = 1 << 16; size > 0; size >>= 4) {
    while (await appendFile(file, Buffer.alloc(size)).then(() => true, () => false));
  }
}

async function fullDisk() {
  const folder = `${process.env.HOME}/small`;
  await mkdir(folder, { mode: 0o700 });
  const env = { ...process.env, XDG_RUNTIME_DIR: folder, XDG_DATA_HOME: folder, XDG_CONFIG_HOME: folder };
  const onSmallDisk = (command) => ["unshare", "--map-current-user", "--mount", "sh", "-ec",
    `mount -t tmpfs -o size=256k,mode=700 none "${folder}"; ${command}; exec "$@"`, "sh"];
  await table.check("a disk that is full", async () => {
    const filling = `cat /dev/zero > "${folder}/all" 2> /dev/null || :`;
    const why = await Host.start(onSmallDisk(filling), env).then(() => "started", ({ message }) => message.trim());
    return [why.split("\n").at(-1), "a reason", /session.json: No space left/.test(why)];
  });
  await table.check("a disk that fills up", async () => {
    const before = await keymap();
    const host = await Host.start(onSmallDisk(":"), env);
    const witness = await Witness.open();
    const line = await openLine(host);
    await fill(host.path(`${folder}/all`));
    await line.call("keyDown", { key: "shift" });
    await line.call("keyUp", { key: "shift" });
    await line.call("typeText", { text: "éЖ漢" });
    await within(PATIENCE, () => witness.keys.length >= 8);
    const typed = witness.keys.filter(({ isDown }) => isDown).map(({ keysym }) => keysym).join(" ");
    const [seen, bound, isFine] = ended(await host.stop());
    const isRestored = await keymap() === before;
    witness.close();
    return [`${typed}, ${seen}, the keymap ${isRestored ? "as before" : "changed"}`,
      `Shift_L eacute U0416 U6F22, ${bound}, as before`,
      typed === "Shift_L eacute U0416 U6F22" && isFine && isRestored];
  });
}

async function noMemory() {
  const owner = await fillClipboard(15 * MIB);
  const host = await Host.start();
  const witness = await Witness.open();
  await table.check("no memory left", async () => {
    const line = await openLine(host);
    await line.call("keyDown", { key: "shift" });
    if (!await within(PATIENCE, () => witness.pressed.length === 1)) return ["no key went down", "one", false];
    // what the allocator has reserved serves for a while
    const bytes = Math.ceil((await host.memory("VmSize") + 4) * MIB);
    await exec("prlimit", ["--pid", host.pid, `--as=${bytes}`]);
    const slow = await Promise.all(Array.from({ length: 6 }, () => openLine(host)));
    for (const each of slow) {
      each.pause();
      for (let i = 0; i < 2; i++) each.call("getClipboard").catch(() => {});
    }
    const status = await Promise.race([host.ended, sleep(PATIENCE, "still runs", { ref: false })]);
    await within(PATIENCE, () => witness.pressed.length === 0);
    const why = host.errors.trim().split("\n").at(-1);
    return [`ended with ${status}, "${why}", ${witness.pressed.length} keys down`, "a reason, none down",
      status !== "still runs" && why !== "" && witness.pressed.length === 0];
  });
  host.process.kill("SIGKILL");
  witness.close();
  owner.kill();
}

async function silence(host) {
  const witness = await Witness.open();
  await table.check("a phone that holds a key and falls silent", async () => {
    const line = await openLine(host);
    line.answersPings = false;
    await line.call("keyDown", { key: "shift" });
    if (!await within(PATIENCE, () => witness.pressed.length === 1)) return ["no key went down", "one", false];
    const took = await timed(() => within(PATIENCE, () => witness.pressed.length === 0));
    return [`let go after ${ms(took)}, ${witness.pressed.length} keys down`, "within 8 s",
      took < 8000 && witness.pressed.length === 0];
  });
  witness.close();
}

async function backgroundWork(host) {
  const player = spawn("mpv", ["--no-config", "--idle", "--vo=null", "--ao=null",
    "--script=/etc/mpv/scripts/mpris.so"],
    { stdio: "ignore" });
  await table.check("400 \"getNowPlaying\" to a player that hangs, and gone", async () => {
    const names = async () => (await exec("dbus-send", ["--session", "--print-reply", "--dest=org.freedesktop.DBus",
      "/",
      "org.freedesktop.DBus.ListNames"])).stdout;
    if (!await within(PATIENCE, async () => (await names()).includes("MediaPlayer2"))) return ["no player", "", false];
    process.kill(player.pid, "SIGSTOP");
    const other = await openLine(host);
    const alone = await timed(() => other.call("getNowPlaying"));
    const gone = await openLine(host);
    let refused = 0;
    for (let i = 0; i < 400; i++) {
      gone.call("getNowPlaying").catch((error) => { refused += error.code === "BUSY"; });
    }
    await within(PATIENCE, () => refused >= 360);
    const refusals = refused;
    gone.vanish();
    const next = await timed(() => other.call("getNowPlaying"));
    other.vanish();
    return [`${refusals} refused; another phone's takes ${ms(alone)} alone, ${ms(next)} then`,
      "360 or more refused; at most 3 s longer", refusals >= 360 && next < alone + 3000];
  });
  process.kill(player.pid, "SIGKILL");
}

/** Puts a text of so many bytes into the clipboard; ends with the returned process. */
async function fillClipboard(size) {
  const file = `${process.env.HOME}/clipboard`;
  await writeFile(file, "x".repeat(size));
  return spawn("xclip", ["-quiet", "-selection", "clipboard", "-i", file], { stdio: "ignore" });
}

async function clipboards(host) {
  for (const [mebibytes, wanted] of [[15, 15 * MIB], [17, "TOO_LARGE"], [63, "TOO_LARGE"]]) {
    await table.check(`a clipboard of ${mebibytes} MiB`, async () => {
      const owner = await fillClipboard(mebibytes * MIB);
      const line = await openLine(host);
      const get = async () => line.call("getClipboard").then(({ length }) => length,
        ({ code, message }) => code ?? message);
      let seen;
      await within(PATIENCE, async () => { seen = await get(); return seen === wanted; });
      const after = Array.isArray(await line.call("getDisplays"));
      owner.kill();
      line.vanish();
      return [`${seen}, then the phone is ${after ? "served" : "not served"}`, `${wanted}, served`,
        seen === wanted && after];
    });
  }
}

async function slowReaders(host) {
  await table.check("seven phones that do not read 90 MiB each", async () => {
    const owner = await fillClipboard(15 * MIB);
    const line = await openLine(host);
    await within(PATIENCE, async () => (await line.call("getClipboard")).length === 15 * MIB);
    const before = await host.memory();
    await writeFile(`/proc/${host.pid}/clear_refs`, "5"); // the peak counts from here
    const slow = await Promise.all(Array.from({ length: 7 }, () => openLine(host)));
    for (const each of slow) {
      each.pause();
      for (let i = 0; i < 6; i++) each.call("getClipboard").catch(() => {});
    }
    await sleep(5000);
    const took = await timed(() => line.call("getDisplays"));
    const peak = await host.memory("VmHWM") - before;
    for (const each of slow) each.vanish();
    line.vanish();
    owner.kill();
    return [`${peak.toFixed(0)} MiB more at the most, another phone served within ${ms(took)}`,
      "at most 8 x 32 MiB and one reply's 64, within 5 s", peak <= 320 && took < 5000];
  });
}

async function wrongTokens(host) {
  await table.check("wrong tokens", async () => {
    const took = [];
    for (let i = 0; i < 6; i++) took.push(await timed(() => ask(host.session, "/engine?token=0")));
    const late = took.slice(3).reduce((sum, each) => sum + each, 0);
    const many = Promise.all(Array.from({ length: 20 }, () => ask(host.session, "/engine?token=0")));
    let line;
    const right = await timed(async () => { line = await openLine(host); });
    const statuses = (await many).map(({ status }) => status);
    line.vanish();
    const slowed = statuses.filter((status) => status === 429).length;
    return [`the fourth to sixth waited ${ms(late)}, of 20 at once ${slowed} got 429, ` +
      `the right token in after ${ms(right)}`,
      "1750 ms or more, some, within 1 s", late >= 1750 && slowed > 0 &&
      statuses.every((status) => status === 403 || status === 429) && right < 1000];
  });
}

function violations() {
  const channel = "com.tapdeck/control";
  const call = encodeMethodCall("getDisplays", null);
  const message = (value) => frame(0x82, Buffer.from(encodeMessage(value)));
  const whole = Buffer.from(encodeMessage([1, channel, call]));
  return [
    ["a reserved opcode", frame(0x83, Buffer.from("x")), 1002], ["a reserved bit", frame(0xc2, whole), 1002],
    ["no mask", frame(0x82, whole, false), 1002], ["a ping of 126 bytes", frame(0x89, Buffer.alloc(126)), 1002],
    ["a ping in parts", frame(0x09, Buffer.from("x")), 1002], ["a part of nothing", frame(0x80, whole), 1002],
    ["a text that is no UTF-8", frame(0x81, Buffer.from([0xff])), 1007],
    ["a text", frame(0x81, whole.subarray(0, 0)), 1003],
    ["a message cut short", frame(0x82, whole.subarray(0, -1)), 1007], ["the id 0", message([0, channel, call]), 1002],
    ["no payload", message([1, channel]), 1002], ["a call cut short", message([1, channel, call.slice(0, -1)]), 1007],
    ["more than 1 MiB", frame(0x82, Buffer.alloc(MIB + 1)), 1009],
  ];
}

async function brokenFrames(host) {
  const bystander = await openLine(host);
  for (const [what, bytes, code] of violations()) {
    await table.check(`WebSocket: ${what}`, async () => {
      const line = await openLine(host);
      line.write(bytes);
      await Promise.race([line.closed, sleep(PATIENCE, null, { ref: false })]);
      const served = Array.isArray(await bystander.call("getDisplays"));
      const seen = line.farewell?.code ?? "no goodbye";
      line.vanish();
      return [`${seen}, another phone is ${served ? "served" : "not served"}`, `${code}, served`,
        seen === code && served];
    });
  }
  bystander.vanish();
}

async function refusals(host) {
  const { port, token } = host.session;
  const own = `Host: 127.0.0.1:${port}`;
  const upgrade = ["Connection: Upgrade", "Upgrade: websocket", "Sec-WebSocket-Version: 13",
    "Sec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA=="];
  const protocol = "Sec-WebSocket-Protocol: tapdeck.engine.v1";
  const engine = `/engine?token=${token}`;
  const cases = [
    ["another Host", "/", [`Host: evil.example:${port}`], 421], ["no port in Host", "/", ["Host: 127.0.0.1"], 421],
    ["another Host's upgrade", engine, [`Host: evil.example:${port}`, ...upgrade, protocol], 421],
    ["another Origin", engine, [own, ...upgrade, protocol, "Origin: http://evil.example"], 403],
    ["the Origin null", engine, [own, ...upgrade, protocol, "Origin: null"], 403],
    ["the own page over https", engine, [own, ...upgrade, protocol, `Origin: https://127.0.0.1:${port}`], 403],
    ["another subprotocol", engine, [own, ...upgrade, "Sec-WebSocket-Protocol: other"], 400],
    ["a path with dots", "/%2e%2e/%2e%2e/etc/passwd", [own], 404], ["an escaped path", "/%69ndex.html", [own], 404],
    ["a whole URL", `http://127.0.0.1:${port}/`, [own], 404], ["a POST", "/", [own], 405, "POST"],
  ];
  for (const [what, path, headers, wanted, method] of cases) {
    await table.check(`HTTP: ${what}`, async () => {
      const { status, text } = await ask(host.session, path, headers, method);
      const isClosed = /Cross-Origin-Resource-Policy: same-origin\r\n/.test(text);
      return [`${status}${isClosed ? "" : ", readable by other origins"}`, wanted, status === wanted && isClosed];
    });
  }
  await table.check("a ninth phone", async () => {
    const lines = await Promise.all(Array.from({ length: 8 }, () => openLine(host)));
    const answer = await Line.open(host.session).then(() => "let in", ({ message }) => message);
    for (const each of lines) each.vanish();
    return [answer, "HTTP 503", answer === "HTTP 503"];
  });
  await table.check("what the host prints where nobody sits", async () => {
    const isTold = (host.output + host.errors).includes(token);
    return [isTold ? "the token" : "no token", "no token", !isTold];
  });
}

async function secondHost(host) {
  await table.check("a second host on the display", async () => {
    const why = await Host.start().then(() => "started", ({ message }) => message.trim());
    const line = await openLine(host);
    const served = Array.isArray(await line.call("getDisplays"));
    line.vanish();
    return [`${why}; the first is ${served ? "served" : "not served"}`, "a reason; served",
      /Tapdeck/.test(why) && served];
  });
}

const host = await Host.start();
await flood(host);
await silence(host);
await backgroundWork(host);
await clipboards(host);
await slowReaders(host);
await wrongTokens(host);
await brokenFrames(host);
await refusals(host);
await secondHost(host);
await table.check("SIGTERM after all that", async () => ended(await host.stop()));
await starve();
await endInText();
await fullDisk();
await noMemory();
table.end();
process.exit();
