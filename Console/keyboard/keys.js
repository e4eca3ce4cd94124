// The keys of the host by name, and what they are called.

import { text } from "../text/text.js";

/** @typedef {import("../text/text.js").TextKey} TextKey */

/** @type {Record<string, string[]>} */
const SHORTCUTS = {
  copy: ["c", "control"], paste: ["v", "control"], cut: ["x", "control"], undo: ["z", "control"],
  redo: ["z", "control", "shift"], all: ["a", "control"], switch: ["tab", "option"],
};

/** Keys that do not write, by the name that browsers give them. @type {Record<string, string>} */
export const NAMED_KEYS = {
  Enter: "return", Escape: "escape", Tab: "tab",
  ArrowLeft: "left", ArrowRight: "right", ArrowUp: "up", ArrowDown: "down",
  Home: "home", End: "end", PageUp: "pageup", PageDown: "pagedown",
  ...Object.fromEntries(Array.from({ length: 12 }, (_, at) => [`F${at + 1}`, `f${at + 1}`])),
};

const WRITING_KEYS = new Set("abcdefghijklmnopqrstuvwxyz0123456789-=[]\\;',./`");
/** @type {Record<string, string>} */
const SPELLED_OUT = { " ": "space", "\n": "return", "\t": "tab" };

/** The key that writes this character without a modifier, or undefined. @param {string} character */
export function keyOf(character) {
  const name = character.toLowerCase();
  return SPELLED_OUT[name] ?? (WRITING_KEYS.has(name) ? name : undefined);
}

/** What the key of a modifier is called. @param {string} name */
export const modifierName = (name) =>
  text(/** @type {TextKey} */ (`cap${name[0].toUpperCase()}${name.slice(1)}`));

/** A shortcut's key and modifiers. @param {string} name */
export function shortcut(name) {
  const [key, ...modifiers] = SHORTCUTS[name];
  return { key, modifiers };
}

/** How a shortcut is written, such as "Ctrl+C". @param {{key: string, modifiers: string[]}} keys */
export const spell = ({ key, modifiers }) =>
  [...modifiers.map(modifierName), key[0].toUpperCase() + key.slice(1)].join("+");
