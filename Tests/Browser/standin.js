// A stand-in for what a test cannot have of the host: players, another screen, a restart.

import { CallError, encodeMessage, encodeMethodCall } from "../../Console/connection/codec.js";
import { Line } from "./desktop.js";

/**
 * A line on which the methods that `noted` names are answered for the host: each is a function from
 * the arguments to the result or a promise of it. Its `calls` are {method, args}.
 */
export class StandIn extends Line {
  /** How many calls of one method were under way at once, at the most. */
  atOnce = {};
  #open = {};

  /** The arguments of the calls of `method` so far. */
  of(method) {
    return this.calls.filter((call) => call.method === method).map(({ args }) => args);
  }

  async pass({ method, args }, send, answer) {
    if (!this.noted[method]) return send();
    this.calls.push({ method, args });
    this.#open[method] = (this.#open[method] ?? 0) + 1;
    this.atOnce[method] = Math.max(this.atOnce[method] ?? 0, this.#open[method]);
    const reply = await this.#reply(method, args);
    this.#open[method]--;
    return answer(reply);
  }

  async #reply(method, args) {
    try {
      // The bytes of a success are those of null and the result, as values of one message.
      return encodeMethodCall(null, await this.noted[method](args));
    } catch (error) {
      if (!(error instanceof CallError)) throw error;
      const record = [true, error.code, error.message, null];
      return Uint8Array.from(record.flatMap((value) => [...encodeMessage(value)]));
    }
  }
}
