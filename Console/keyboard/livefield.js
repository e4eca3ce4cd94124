// A text field whose content goes to the computer while it is being written.

import { characters, characterStart } from "./typing.js";

// Phones report no deletion in an empty field, so it never is: this one has no width.
const GUARD = "\u200b";
/** From here on the field starts anew at the end of a word, and from there on wherever it is. */
const ENOUGH = 300;
const TOO_MUCH = 1500;
const LINE_BREAKS = new Set(["insertLineBreak", "insertParagraph"]);

/**
 * Android's keyboards compose every word, also where no candidates are chosen from. To wait for the
 * word's end would only delay it there; what is corrected afterwards is erased and typed again.
 */
const composesEveryWord = () => /Android/.test(navigator.userAgent)
  && !navigator.languages.some((language) => /^(zh|ja|ko)\b/.test(language));

/**
 * What makes `before` into `after` at its end: characters to erase, then text to add; pure.
 * @param {string} before
 * @param {string} after
 */
export function difference(before, after) {
  let same = 0;
  while (same < before.length && before[same] === after[same]) same++;
  same = Math.min(characterStart(before, same), characterStart(after, same));
  return { erased: characters(before.slice(same)).length, added: after.slice(same) };
}

/**
 * Compares the field with what it held at last, whatever event announces a change: autocorrection,
 * dictation, paste and every input method come out right, and nothing is sent twice. Text that an
 * input method is still composing waits until it is done, or until `actions.impatient()` says that
 * nothing waits. `actions` gets erase(count), type(text), enter() and changed() besides.
 */
export class LiveField {
  composing = false;
  #field;
  #known = "";
  #actions;

  /**
   * @param {HTMLTextAreaElement} field
   * @param {{erase: (count: number) => void, type: (text: string) => void, enter: () => void,
   *   impatient: () => boolean, changed: () => void}} actions
   */
  constructor(field, actions) {
    this.#field = field;
    this.#actions = actions;
    field.addEventListener("compositionstart", () => this.#compose(true));
    field.addEventListener("compositionend", () => {
      this.#compose(false);
      this.#sync();
    });
    field.addEventListener("input", () => {
      if (actions.impatient()) this.finish();
      else if (!this.composing || composesEveryWord()) this.#sync();
    });
    field.addEventListener("beforeinput", (event) => {
      if (this.composing || !event.cancelable || !LINE_BREAKS.has(event.inputType)) return;
      event.preventDefault();
      actions.enter();
    });
    field.addEventListener("blur", () => this.finish());
    this.#clear();
  }

  get empty() {
    return this.#field.value.replace(GUARD, "") === "";
  }

  /** Sends what is still being composed, then starts anew: the computer's text goes on elsewhere. */
  finish() {
    this.#sync();
    this.#clear();
  }

  /** Erases the last character here and there; false if there is none that could be. */
  eraseLast() {
    const last = characters(this.#known).pop();
    if (this.composing || !last) return false;
    this.#field.value = GUARD + this.#known.slice(0, -last.length);
    this.#sync();
    return true;
  }

  /** Starts anew without sending anything. */
  discard() {
    this.#clear();
  }

  #compose(composing) {
    this.composing = composing;
    this.#actions.changed();
  }

  #sync() {
    const text = this.#field.value.replace(GUARD, "");
    const guardErased = this.#field.value === "" && this.#known === "";
    const { erased, added } = difference(this.#known, text);
    this.#known = text;
    if (erased > 0 || guardErased) this.#actions.erase(erased || 1);
    if (added) this.#actions.type(added);
    this.#actions.changed();
    // The input method would lose its place if the text changed under it.
    if (!this.composing) this.#tidy();
  }

  #tidy() {
    const { length } = this.#known;
    if (length > TOO_MUCH || (length > ENOUGH && /\s$/.test(this.#known))) this.#clear();
    else if (this.#field.value !== GUARD + this.#known) this.#field.value = GUARD + this.#known;
  }

  #clear() {
    this.composing = false;
    this.#known = "";
    if (this.#field.value !== GUARD) this.#field.value = GUARD;
    this.#actions.changed();
  }
}
