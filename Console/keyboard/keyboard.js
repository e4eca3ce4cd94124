// The keyboard panel: the field that types, and the keys that a phone does not have.

import { keyOf, NAMED_KEYS } from "./keys.js";
import { LiveField } from "./livefield.js";
import { characters } from "./typing.js";

const REPEAT_AFTER = 420;
const REPEAT_EVERY = 55;
/** So much text (UTF-16 units) takes long enough to be worth showing, and stopping. */
const LONG_TEXT = 100;
/** Keys that mean something to the browser too, and go to the computer only when captured. */
const BROWSER_KEY = /^(Tab|F\d+)$/;
const MODIFIER_KEYS = { shiftKey: "shift", ctrlKey: "control", altKey: "option", metaKey: "command" };

const onApple = /Mac|iPhone|iPad/.test(navigator.platform);

const heldIn = (event) =>
  Object.entries(MODIFIER_KEYS).filter(([flag]) => event[flag]).map(([, name]) => name);

export class Keyboard {
  #panel;
  #field;
  #text;
  #capture;
  #work;
  #outcome;
  #connection;
  #queue;
  #modifiers;
  #repeat = 0;
  #leaving = false;

  constructor(panel, connection, queue, modifiers, system) {
    this.#panel = panel;
    this.#field = panel.querySelector("textarea");
    this.#capture = panel.querySelector(".capture");
    this.#work = panel.querySelector(".work");
    this.#outcome = panel.querySelector(".outcome");
    this.#connection = connection;
    this.#queue = queue;
    this.#modifiers = modifiers;
    this.#text = new LiveField(this.#field, {
      erase: (count) => { for (; count > 0; count--) queue.press("backspace"); },
      type: (text) => this.#type(text),
      enter: () => this.#press("return"),
      impatient: () => modifiers.command,
      changed: () => this.#show(),
    });
    this.#listen(system);
    this.#show();
  }

  /** Ends what a finger or the field is in the middle of. */
  rest() {
    clearTimeout(this.#repeat);
    this.#text.finish();
  }

  #listen(system) {
    // A tap on a key leaves the focus in the field, or the phone's keyboard would go away.
    this.#panel.addEventListener("mousedown", (event) => {
      if (event.target.closest("button")) event.preventDefault();
    });
    for (const button of this.#panel.querySelectorAll("[data-key]")) this.#bindKey(button);
    for (const button of this.#panel.querySelectorAll("[data-shortcut]")) {
      const { key, modifiers } = system.shortcut(button.dataset.shortcut);
      button.querySelector("kbd").textContent = system.spell({ key, modifiers });
      button.addEventListener("click", () => this.#press(key, modifiers));
    }
    this.#field.addEventListener("keydown", (event) => this.#keyDown(event));
    this.#field.addEventListener("keyup", () => this.#keyUp());
    this.#capture.addEventListener("click", () => this.#setCapture(!this.#capturing));
    this.#work.querySelector("button").addEventListener("click", () => {
      this.#queue.stop();
      this.#text.discard();
    });
    this.#queue.addEventListener("change", () => this.#show());
    this.#queue.addEventListener("lost", ({ detail }) => {
      this.#text.discard();
      this.#outcome.textContent = `The line broke, and ${detail} characters may not have arrived.`;
    });
    this.#connection.addEventListener("state", () => this.#show());
  }

  #bindKey(button) {
    const press = () => this.#press(button.dataset.key);
    const end = () => {
      clearTimeout(this.#repeat);
      button.classList.remove("pressed");
    };
    button.addEventListener("contextmenu", (event) => event.preventDefault());
    if (!button.hasAttribute("data-repeat")) {
      button.addEventListener("click", press);
      return;
    }
    button.addEventListener("pointerdown", (event) => {
      if (event.button !== 0) return;
      clearTimeout(this.#repeat);
      button.classList.add("pressed");
      press();
      this.#repeatAfter(REPEAT_AFTER, press);
    });
    for (const type of ["pointerup", "pointercancel", "pointerleave"]) {
      button.addEventListener(type, end);
    }
    // A click that no pointer made is a screen reader's or a key's.
    button.addEventListener("click", (event) => {
      if (!event.pointerType && event.detail === 0) press();
    });
  }

  // A repetition that the computer is not ready for is left out: it must end with the finger.
  #repeatAfter(delay, press) {
    this.#repeat = setTimeout(() => {
      if (!this.#queue.busy) press();
      this.#repeatAfter(REPEAT_EVERY, press);
    }, delay);
  }

  // What is typed while a command modifier is held means keys.
  #type(text) {
    this.#outcome.textContent = "";
    if (!this.#modifiers.command) {
      this.#queue.type(text);
      return;
    }
    for (const character of characters(text)) {
      const key = keyOf(character);
      if (key) this.#queue.press(key);
      else this.#queue.type(character);
    }
  }

  #press(key, modifiers = []) {
    if (!this.#connection.connected) return;
    if (key === "backspace" && this.#modifiers.held.size === 0 && this.#text.eraseLast()) return;
    this.#text.finish();
    this.#queue.press(key, modifiers.filter((name) => !this.#modifiers.held.has(name)));
  }

  get #capturing() {
    return this.#capture.getAttribute("aria-checked") === "true";
  }

  #setCapture(on) {
    this.#capture.setAttribute("aria-checked", on);
    if (on) this.#field.focus();
  }

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

  #keyFor(event) {
    const named = NAMED_KEYS[event.key];
    if (this.#capturing) return named ?? shortcutKey(event);
    return event.altKey || event.metaKey || BROWSER_KEY.test(event.key) ? undefined : named;
  }

  #show() {
    const { left, total } = this.#queue;
    const { connected } = this.#connection;
    this.#panel.classList.toggle("waiting", left > 0 || this.#text?.composing === true);
    this.#panel.classList.toggle("empty", this.#text?.empty !== false);
    this.#field.readOnly = !connected;
    // Once it is shown it stays until the last character has arrived.
    this.#work.hidden = left === 0 || (this.#work.hidden && left < LONG_TEXT);
    if (this.#work.hidden) return;
    const progress = this.#work.querySelector("progress");
    progress.max = total;
    progress.value = total - left;
    this.#work.querySelector("span").textContent = `${left.toLocaleString("en")} left`;
  }
}

// A combination that writes a character is text; only one that does not is a shortcut.
function shortcutKey(event) {
  const writes = event.getModifierState("AltGraph") || (onApple && event.altKey && !event.ctrlKey);
  if (event.key.length !== 1 || !(event.ctrlKey || event.metaKey || event.altKey)) return undefined;
  if (writes && !event.metaKey) return undefined;
  return keyOf(event.key) ?? /^(?:Key|Digit)(.)$/.exec(event.code)?.[1].toLowerCase();
}
