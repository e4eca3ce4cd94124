// The page's texts in the language of the person who reads them.

import { de } from "./de.js";
import { en } from "./en.js";

/** @typedef {keyof typeof en} TextKey */

/** @type {Record<string, Record<TextKey, string>>} */
const TABLES = { en, de };

let language = "en";

/**
 * Chooses the language: `wanted` where there is a table for it, else the first of the browser's that
 * has one, else English.
 * @param {string} wanted
 * @param {readonly string[]} offered
 */
export function chooseLanguage(wanted, offered) {
  const known = [wanted, ...offered].map((tag) => tag.split("-")[0]).find((tag) => TABLES[tag]);
  language = known ?? "en";
  return language;
}

/**
 * The text of this name with {values} put into it. Of a text that counts, the form for values.count is
 * taken: "one device|{count} devices".
 * @param {TextKey} key
 * @param {Record<string, string | number>} [values]
 */
export function text(key, values = {}) {
  const forms = TABLES[language][key].split("|");
  const one = new Intl.PluralRules(language).select(Number(values.count ?? 2)) === "one";
  const form = forms.length > 1 && one ? forms[0] : forms[forms.length - 1];
  return form.replace(/\{(\w+)\}/g, (_, name) =>
    typeof values[name] === "number" ? number(values[name]) : values[name] ?? "");
}

/** @param {number} value @param {Intl.NumberFormatOptions} [options] */
export function number(value, options) {
  return new Intl.NumberFormat(language, options).format(value);
}

/**
 * Writes the texts that the page's elements name: data-text for their content, data-label for their
 * accessible name, data-hint for a placeholder.
 * @param {ParentNode} root
 */
export function writeTexts(root) {
  const each = (attribute, write) => root.querySelectorAll(`[${attribute}]`).forEach((element) =>
    write(element, text(/** @type {TextKey} */ (element.getAttribute(attribute)))));
  each("data-text", (element, content) => { element.textContent = content; });
  each("data-label", (element, content) => element.setAttribute("aria-label", content));
  each("data-hint", (element, content) => element.setAttribute("placeholder", content));
}
