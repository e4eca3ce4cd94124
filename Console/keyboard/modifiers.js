// Modifier keys that stay down until they are tapped again.

/** Emits "change" whenever `held`, the names of the modifiers that are down, changes. */
export class Modifiers extends EventTarget {
  held = new Set();
  #connection;
  #queue;

  constructor(connection, queue) {
    super();
    this.#connection = connection;
    this.#queue = queue;
    // The host lets go of what a lost connection held.
    connection.addEventListener("state", () => { if (!connection.connected) this.#clear(); });
  }

  /** Whether what is typed means keys and not text: Shift alone does not make it so. */
  get command() {
    return [...this.held].some((name) => name !== "shift");
  }

  toggle(name) {
    if (!this.#connection.connected) return;
    const down = !this.held.delete(name);
    if (down) this.held.add(name);
    this.#queue.hold(name, down);
    this.dispatchEvent(new Event("change"));
  }

  releaseAll() {
    if (this.held.size === 0) return;
    this.#queue.letGo();
    this.#clear();
  }

  #clear() {
    if (this.held.size === 0) return;
    this.held.clear();
    this.dispatchEvent(new Event("change"));
  }
}

/** Makes `button` (with the modifier's name in data-modifier) press that modifier and let go of it. */
export function bindModifier(button, modifiers, system) {
  const name = button.dataset.modifier;
  const show = () => button.setAttribute("aria-pressed", modifiers.held.has(name));
  button.textContent = system.modifier(name);
  button.addEventListener("click", () => modifiers.toggle(name));
  modifiers.addEventListener("change", show);
  show();
}
