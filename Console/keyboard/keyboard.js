// The field that types, and the keys that a phone does not have: in the keyboard's own place, and in a
// bar above the phone's keyboard wherever else.

import { number, text } from "../text/text.js";
import { all, byId, one } from "../ui/dom.js";
import { Note } from "../ui/note.js";
import { repeats } from "../ui/repeat.js";
import { keyOf, NAMED_KEYS, shortcut, spell } from "./keys.js";
import { LiveField } from "./livefield.js";
import { characters } from "./typing.js";

const REPEAT_EVERY = 55;
/** So much text (UTF-16 units) takes long enough to be worth showing, and stopping. */
const LONG_TEXT = 100;
/** So much that waits is worth another way. */
const PASTE_FROM = 200;
/** Keys that mean something to the browser too, and go to the computer only when captured. */
const BROWSER_KEY = /^(Tab|F\d+)$/;
/** @type {[keyof KeyboardEvent, string][]} */
const MODIFIER_KEYS = [["shiftKey", "shift"], ["ctrlKey", "control"], ["altKey", "option"],
  ["metaKey", "command"]];

const onApple = /Mac|iPhone|iPad/.test(navigator.platform);

/** @param {KeyboardEvent} event */
const heldIn = (event) => MODIFIER_KEYS.filter(([flag]) => event[flag]).map(([, name]) => name);

export class Keyboard {
  #panel = byId("panel-keyboard");
  #bar = byId("typing-bar");
  #typing = one(document, ".typing");
  #field = one(this.#typing, "textarea", HTMLTextAreaElement);
  #capture = one(this.#panel, ".capture");
  #work = one(this.#typing, ".work");
  #note = new Note(one(this.#typing, ".outcome"));
  #connection;
  #queue;
  #modifiers;
  #text;
  #leaving = false;

  /**
   * @param {import("../connection/connection.js").Connection} connection
   * @param {import("./typing.js").TypingQueue} queue
   * @param {import("./modifiers.js").Modifiers} modifiers
   */
  constructor(connection, queue, modifiers) {
    this.#connection = connection;
    this.#queue = queue;
    this.#modifiers = modifiers;
    this.#text = new LiveField(this.#field, {
      erase: (count) => { for (; count > 0; count--) queue.press("backspace"); },
      type: (typed) => this.#type(typed),
      enter: () => this.#press("return"),
      impatient: () => modifiers.command,
      changed: () => this.#show(),
    });
    this.#fillBar();
    this.#listen();
    this.#show();
  }

  /** Ends what the field is in the middle of. */
  rest() {
    this.#text.finish();
  }

  /** Puts the field where it is wanted: into the keyboard's own place or into the bar. @param {boolean} inPanel */
  moveField(inPanel) {
    const slot = one(inPanel ? this.#panel : this.#bar, ".typing-slot");
    if (this.#typing.parentElement !== slot) slot.append(this.#typing);
  }

  focus() {
    this.#field.focus({ preventScroll: true });
  }

  /** A page of a talk, say: a key with nothing around it. @param {string} key */
  press(key) {
    this.#press(key);
  }

  /** The bar's further keys are those of the keyboard's own place. */
  #fillBar() {
    const same = all(this.#panel, ".function-keys, .shortcuts").map((keys) => keys.cloneNode(true));
    one(this.#bar, ".bar-more").prepend(...same);
  }

  #listen() {
    for (const area of [this.#panel, this.#bar]) {
      // A tap on a key leaves the focus in the field, or the phone's keyboard would go away.
      area.addEventListener("mousedown", (event) => {
        const button = /** @type {Element} */ (event.target).closest("button");
        if (button && !button.matches("#bar-close")) event.preventDefault();
      });
      for (const button of all(area, "[data-key]")) this.#bindKey(button);
      for (const button of all(area, "[data-shortcut]")) {
        const keys = shortcut(button.dataset.shortcut ?? "");
        one(button, "kbd").textContent = spell(keys);
        button.addEventListener("click", () => this.#press(keys.key, keys.modifiers));
      }
    }
    this.#field.addEventListener("keydown", (event) => this.#keyDown(event));
    this.#field.addEventListener("keyup", () => this.#keyUp());
    this.#capture.addEventListener("click", () => this.#setCapture(!this.#capturing));
    one(this.#work, ".stop").addEventListener("click", () => {
      this.#queue.stop();
      this.#text.discard();
    });
    one(this.#work, ".paste-instead").addEventListener("click", () => {
      this.#queue.paste(shortcut("paste"));
      this.#text.discard();
      this.#note.say(text("typingPasted"));
    });
    this.#queue.addEventListener("change", () => this.#show());
    this.#queue.addEventListener("lost", (event) => {
      this.#text.discard();
      this.#note.say(text("typingLost", { count: /** @type {CustomEvent} */ (event).detail }), true);
    });
    this.#connection.addEventListener("state", () => this.#show());
  }

  /** @param {HTMLElement} button */
  #bindKey(button) {
    const press = () => this.#press(button.dataset.key ?? "");
    if (button.hasAttribute("data-repeat")) {
      repeats(button, press, { every: REPEAT_EVERY, ready: () => !this.#queue.busy });
    } else {
      button.addEventListener("click", press);
      button.addEventListener("contextmenu", (event) => event.preventDefault());
    }
  }

  // What is typed while a command modifier is held means keys.
  /** @param {string} typed */
  #type(typed) {
    this.#note.say("");
    let rest = typed;
    for (const character of characters(typed)) {
      if (!this.#modifiers.command) break;
      rest = rest.slice(character.length);
      const key = keyOf(character);
      if (key) this.#queue.press(key);
      else this.#queue.type(character);
      this.#modifiers.used();
    }
    if (!rest) return;
    this.#queue.type(rest);
    this.#modifiers.used();
  }

  /** @param {string} key @param {string[]} [modifiers] */
  #press(key, modifiers = []) {
    if (!this.#connection.connected) return;
    if (key === "backspace" && this.#modifiers.held.size === 0 && this.#text.eraseLast()) return;
    this.#text.finish();
    this.#queue.press(key, modifiers.filter((name) => !this.#modifiers.held.has(name)));
    this.#modifiers.used();
  }

  get #capturing() {
    return this.#capture.getAttribute("aria-checked") === "true";
  }

  /** @param {boolean} on */
  #setCapture(on) {
    this.#capture.setAttribute("aria-checked", String(on));
    if (on) this.#field.focus();
  }

  /** @param {KeyboardEvent} event */
  #keyDown(event) {
    const wasLeaving = this.#leaving;
    this.#leaving = this.#capturing && (event.key === "Control" || event.key === "Alt")
      && event.ctrlKey && event.altKey && (wasLeaving || !event.repeat);
    // An input method that is at work has the key itself.
    if (event.isComposing || event.keyCode === 229) return;
    const key = this.#keyFor(event);
    if (!key) return;
    event.preventDefault();
    if (!event.repeat || !this.#queue.busy) this.#press(key, heldIn(event));
  }

  // Control and Alt pressed together, and nothing else, give the keyboard back.
  #keyUp() {
    if (!this.#leaving) return;
    this.#leaving = false;
    this.#setCapture(false);
    this.#capture.focus();
  }

  /** @param {KeyboardEvent} event */
  #keyFor(event) {
    const named = NAMED_KEYS[event.key];
    if (this.#capturing) return named ?? shortcutKey(event);
    return event.altKey || event.metaKey || BROWSER_KEY.test(event.key) ? undefined : named;
  }

  #show() {
    const { left, total } = this.#queue;
    this.#typing.classList.toggle("waiting", left > 0 || this.#text?.composing === true);
    this.#typing.classList.toggle("empty", this.#text?.empty !== false);
    this.#field.readOnly = !this.#connection.connected;
    // Once it is shown it stays until the last character has arrived.
    this.#work.hidden = left === 0 || (this.#work.hidden && left < LONG_TEXT);
    if (this.#work.hidden) return;
    const progress = one(this.#work, "progress", HTMLProgressElement);
    progress.max = total;
    progress.value = total - left;
    one(this.#work, "span").textContent = text("typingLeft", { count: number(left) });
    one(this.#work, ".paste-instead").hidden = left < PASTE_FROM;
  }
}

// A combination that writes a character is text; only one that does not is a shortcut.
/** @param {KeyboardEvent} event */
function shortcutKey(event) {
  const writes = event.getModifierState("AltGraph") || (onApple && event.altKey && !event.ctrlKey);
  if (event.key.length !== 1 || !(event.ctrlKey || event.metaKey || event.altKey)) return undefined;
  if (writes && !event.metaKey) return undefined;
  return keyOf(event.key) ?? /^(?:Key|Digit)(.)$/.exec(event.code)?.[1].toLowerCase();
}
