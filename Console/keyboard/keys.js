// The keys of the host by name, and what they are called on either system.

/** What differs between the systems that a host runs on; the page's body says which one it is. */
const SYSTEMS = {
  linux: {
    modifiers: { shift: "Shift", control: "Ctrl", option: "Alt", command: "Super" },
    shortcut: "control",
    switcher: "option",
    join: "+",
  },
  macos: {
    modifiers: { shift: "⇧ Shift", control: "⌃ Ctrl", option: "⌥ Option", command: "⌘ Cmd" },
    symbols: { shift: "⇧", control: "⌃", option: "⌥", command: "⌘" },
    shortcut: "command",
    switcher: "command",
    join: "",
  },
};

const SHORTCUTS = {
  copy: ["c"], paste: ["v"], cut: ["x"], undo: ["z"], redo: ["z", "shift"], all: ["a"],
};

/** Keys that do not write, by the name that browsers give them. */
export const NAMED_KEYS = {
  Enter: "return", Escape: "escape", Tab: "tab",
  ArrowLeft: "left", ArrowRight: "right", ArrowUp: "up", ArrowDown: "down",
  Home: "home", End: "end", PageUp: "pageup", PageDown: "pagedown",
  ...Object.fromEntries(Array.from({ length: 12 }, (_, at) => [`F${at + 1}`, `f${at + 1}`])),
};

const WRITING_KEYS = new Set("abcdefghijklmnopqrstuvwxyz0123456789-=[]\\;',./`");
const SPELLED_OUT = { " ": "space", "\n": "return", "\t": "tab" };

/** The key that writes this character without a modifier, or undefined. */
export function keyOf(character) {
  const name = character.toLowerCase();
  return SPELLED_OUT[name] ?? (WRITING_KEYS.has(name) ? name : undefined);
}

export class System {
  #system;

  constructor(name) {
    this.#system = SYSTEMS[name];
  }

  /** What the key of a modifier is called. */
  modifier(name) {
    return this.#system.modifiers[name];
  }

  /** A shortcut's key and modifiers. */
  shortcut(name) {
    if (name === "switch") return { key: "tab", modifiers: [this.#system.switcher] };
    const [key, ...more] = SHORTCUTS[name];
    return { key, modifiers: [this.#system.shortcut, ...more] };
  }

  /** How a shortcut is written, such as "Ctrl+C" or "⌘C". */
  spell({ key, modifiers }) {
    const { symbols, modifiers: names, join } = this.#system;
    const keyName = key.length === 1 ? key.toUpperCase() : key[0].toUpperCase() + key.slice(1);
    return [...modifiers.map((name) => (symbols ?? names)[name]), keyName].join(join);
  }
}
