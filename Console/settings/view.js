// The settings of this device.

import { text } from "../text/text.js";
import { all, byId } from "../ui/dom.js";

/** Each language by its own name. */
const LANGUAGES = [["", ""], ["en", "English"], ["de", "Deutsch"]];

/** @typedef {keyof import("./settings.js").Values} Name */

/** @param {HTMLElement} panel @param {import("./settings.js").Settings} settings */
export function bindSettings(panel, settings) {
  for (const element of all(panel, "[data-setting]")) {
    const name = /** @type {Name} */ (element.dataset.setting);
    if (element instanceof HTMLInputElement) {
      element.value = String(settings.values[name]);
      element.addEventListener("input", () => settings.set(name, Number(element.value)));
    } else if (element instanceof HTMLSelectElement) {
      element.append(...LANGUAGES.map(([tag, own]) => new Option(own || text("languageAuto"), tag)));
      element.value = String(settings.values[name]);
      element.addEventListener("change", () => {
        settings.set(name, element.value);
        location.reload();
      });
    } else {
      const show = () => element.setAttribute("aria-checked", String(settings.values[name]));
      element.addEventListener("click", () => {
        settings.set(name, !settings.values[name]);
        show();
      });
      show();
    }
  }
  bindChoice("strip", settings);
  byId("show-help").addEventListener("click", () => settings.set("helpSeen", false));
}

/**
 * The radio buttons of this name, which stand for a setting of the same.
 * @param {"strip" | "quality"} name
 * @param {import("./settings.js").Settings} settings
 */
export function bindChoice(name, settings) {
  for (const input of all(document, `[name=${name}]`, HTMLInputElement)) {
    input.checked = input.value === settings.values[name];
    input.addEventListener("change", () => settings.set(name, input.value));
  }
}
