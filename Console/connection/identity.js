// Who this page is to the host: a guest with the token of this run, or a device that it knows.

const SECRET = "tapdeck.device";

/** @typedef {{kind: "token" | "device", value: string}} Credential */

const stored = () => {
  try {
    return localStorage.getItem(SECRET) ?? "";
  } catch {
    return ""; // a browser may forbid all storage
  }
};

/** The token in an address such as the host shows, or in the part behind its # sign alone. @param {string} text */
export function tokenIn(text) {
  const found = /(?:#|^)([0-9a-f]{32})\s*$/i.exec(text.trim());
  return found ? found[1] : "";
}

export class Identity {
  #secret = stored();

  get token() {
    return decodeURIComponent(location.hash.slice(1));
  }

  /** What to come with, the best first. @returns {Credential[]} */
  get credentials() {
    /** @type {Credential[]} */
    const all = [{ kind: "device", value: this.#secret }, { kind: "token", value: this.token }];
    return all.filter(({ value }) => value);
  }

  /** From now on this page is a device of the host's; the token has done its work. @param {string} secret */
  become(secret) {
    try {
      localStorage.setItem(SECRET, secret);
    } catch {
      return; // the address must go on saying who this is
    }
    this.#secret = secret;
    this.dropToken();
  }

  /** The token is of no more use, and nobody should see it in the address. */
  dropToken() {
    if (location.hash) history.replaceState(history.state, "", location.pathname);
  }

  forget() {
    this.#secret = "";
    try {
      localStorage.removeItem(SECRET);
    } catch {
      // there was none
    }
  }
}
