// A stand-in for what a test cannot have of the host: players, another screen, a restart.

import { CallError, decodeMessage, decodeMethodCall, encodeMessage, encodeMethodCall }
  from "../../Console/codec.js";
import { CONNECTED } from "./setup.js";

export class StandIn {
  /** Every call of the methods that are answered here: {method, args}. */
  calls = [];
  /** How many calls of one method were under way at once, at the most. */
  atOnce = {};
  #answers;
  #open = {};

  /**
   * Answers the methods that `answers` names for the host: each is a function from the arguments to
   * the result or a promise of it. The page is loaded anew.
   */
  static async of(page, answers) {
    const standIn = new StandIn();
    standIn.#answers = answers;
    await page.routeWebSocket(/engine/, (socket) => {
      const host = socket.connectToServer();
      socket.onMessage((message) => standIn.#pass(message, socket, host));
    });
    await page.reload();
    await page.waitForSelector(CONNECTED);
    return standIn;
  }

  /** The arguments of the calls of `method` so far. */
  of(method) {
    return this.calls.filter((call) => call.method === method).map(({ args }) => args);
  }

  async #pass(message, socket, host) {
    const [id, , payload] = decodeMessage(new Uint8Array(message));
    const { method, args } = decodeMethodCall(payload);
    if (!this.#answers[method]) return host.send(message);
    this.calls.push({ method, args });
    this.#open[method] = (this.#open[method] ?? 0) + 1;
    this.atOnce[method] = Math.max(this.atOnce[method] ?? 0, this.#open[method]);
    const reply = await this.#answer(method, args);
    this.#open[method]--;
    socket.send(Buffer.from(encodeMessage([id, "com.tapdeck/control", reply])));
  }

  async #answer(method, args) {
    try {
      // The bytes of a success are those of null and the result, as values of one message.
      return encodeMethodCall(null, await this.#answers[method](args));
    } catch (error) {
      if (!(error instanceof CallError)) throw error;
      const record = [true, error.code, error.message, null];
      return Uint8Array.from(record.flatMap((value) => [...encodeMessage(value)]));
    }
  }
}
