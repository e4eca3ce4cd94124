// What is typed, on its way to the computer: in order, one call at a time.

/** How many characters a call carries at most: the host is busy with them for about 0.25 s. */
const CHUNK = 50;
/** So many UTF-16 units are looked at for a chunk's end. */
const WINDOW = 800;

const segmenter = new Intl.Segmenter(undefined, { granularity: "grapheme" });

/** A text's characters as a person counts them. */
export const characters = (/** @type {string} */ text) => Array.from(segmenter.segment(text), ({ segment }) => segment);

/** The start of the character that the UTF-16 unit at this place belongs to. */
export const characterStart = (/** @type {string} */ text, /** @type {number} */ at) =>
  segmenter.segment(text).containing(at)?.index ?? at;

/** @type {(key: string) => [string, object]} */
const down = (key) => ["keyDown", { key }];
/** @type {(key: string) => [string, object]} */
const up = (key) => ["keyUp", { key }];

/** @param {string} text */
function firstChunk(text) {
  const found = characters(text.slice(0, WINDOW));
  // The window's last character may go on behind it.
  if (text.length > WINDOW && found.length > 1) found.pop();
  return found.slice(0, CHUNK).join("");
}

/**
 * Text and keys waiting for the host. `left` and `total` count the UTF-16 units of text that have
 * not arrived and those typed since nothing waited. Emits "change", and "lost" with the number of
 * units that the end of the line swallowed.
 */
export class TypingQueue extends EventTarget {
  left = 0;
  total = 0;
  #connection;
  /** @type {{text?: string, calls: [string, object][], holds?: boolean}[]} */
  #items = [];
  #busy = false;
  /** The keys that were sent down to stay so. @type {Set<string>} */
  #down = new Set();

  /** @param {import("../connection/connection.js").Connection} connection */
  constructor(connection) {
    super();
    this.#connection = connection;
  }

  /** Whether something has not been answered yet. */
  get busy() {
    return this.#busy;
  }

  /** @param {string} text */
  type(text) {
    const last = this.#items[this.#items.length - 1];
    if (last?.text) last.text += text;
    else this.#items.push({ text, calls: [] });
    this.left += text.length;
    this.total += text.length;
    this.#pump();
  }

  /**
   * Presses a key with these modifiers around it; what is pressed is let go of in any case.
   * @param {string} key
   * @param {string[]} [modifiers]
   */
  press(key, modifiers = []) {
    this.#add({ calls: [...modifiers.map(down), ["keyPress", { key }], ...[...modifiers].reverse().map(up)] });
  }

  /** Presses a key that stays down, or lets go of it. @param {string} key @param {boolean} isDown */
  hold(key, isDown) {
    this.#add({ calls: [isDown ? down(key) : up(key)], holds: true });
  }

  /** Lets the text that waits take the way by the clipboard: written there, then pasted with these keys. */
  paste({ key, modifiers }) {
    const text = this.#items.map((item) => item.text ?? "").join("");
    this.stop();
    if (!text) return;
    this.#add({ calls: [["setClipboard", { text }]] });
    this.press(key, modifiers);
  }

  /** Lets go of all that is held at once, ahead of everything that waits. */
  letGo() {
    this.#items = this.#items.filter(({ holds }) => !holds);
    for (const key of this.#down) this.#connection.call(...up(key)).catch(() => {});
    this.#down.clear();
  }

  /** Drops the text and the presses that wait; what is under way is finished. */
  stop() {
    this.#items = this.#items.filter(({ holds }) => holds);
    this.total -= this.left;
    this.left = 0;
    this.#changed();
  }

  #add(item) {
    this.#items.push(item);
    this.#pump();
  }

  async #pump() {
    if (this.#busy) return;
    this.#busy = true;
    while (this.#items.length > 0) {
      this.#changed();
      try {
        await this.#sendFirst();
      } catch {
        this.#lose();
      }
    }
    this.#busy = false;
    this.left = this.total = 0;
    this.#changed();
  }

  async #sendFirst() {
    const item = this.#items[0];
    if (item.text) {
      const text = firstChunk(item.text);
      item.text = item.text.slice(text.length);
      if (!item.text) this.#items.shift();
      await this.#connection.call("typeText", { text });
      this.left = Math.max(0, this.left - text.length);
    } else {
      this.#items.shift();
      for (const [method, args] of item.calls) {
        const { key } = /** @type {{key?: string}} */ (args);
        if (item.holds && key && method === "keyDown") this.#down.add(key);
        else if (item.holds && key) this.#down.delete(key);
        await this.#connection.call(method, args);
      }
    }
  }

  #lose() {
    const lost = this.left;
    this.#items = [];
    if (lost > 0) this.dispatchEvent(new CustomEvent("lost", { detail: lost }));
  }

  #changed() {
    this.dispatchEvent(new Event("change"));
  }
}
