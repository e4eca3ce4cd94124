// What a person has chosen on this device; it lasts.

const STORED = "tapdeck.settings";

export const DEFAULTS = {
  /** "" follows the browser. */
  language: "",
  place: "touchpad",
  /** A factor on what fingers move the pointer. */
  speed: 1,
  scrollSpeed: 1,
  /** Whether the content goes with the fingers. */
  scrollFollows: true,
  holdDrag: true,
  strip: "right",
  vibration: true,
  quality: "balanced",
  /** What a finger on the picture does: "direct" or "trackpad". */
  screenMode: "direct",
  helpSeen: false,
  /** Applications by their identifiers. */
  pinned: /** @type {string[]} */ ([]),
  recent: /** @type {string[]} */ ([]),
};

/** @typedef {typeof DEFAULTS} Values */

function load() {
  const values = structuredClone(DEFAULTS);
  try {
    const kept = JSON.parse(localStorage.getItem(STORED) ?? "{}");
    for (const [name, value] of Object.entries(kept)) {
      const usual = values[/** @type {keyof Values} */ (name)];
      if (typeof value === typeof usual && Array.isArray(value) === Array.isArray(usual)) {
        Object.assign(values, { [name]: value });
      }
    }
  } catch {
    // what cannot be read is as if it had never been chosen
  }
  return values;
}

/** Emits "change" with the name of the setting as its detail. */
export class Settings extends EventTarget {
  /** @type {Readonly<Values>} */
  values = load();

  /** @template {keyof Values} K @param {K} name @param {Values[K]} value */
  set(name, value) {
    this.values = { ...this.values, [name]: value };
    try {
      localStorage.setItem(STORED, JSON.stringify(this.values));
    } catch {
      // it holds until the page is left
    }
    this.dispatchEvent(new CustomEvent("change", { detail: name }));
  }
}
