// Elements of the page, found and made.

/**
 * The element that `selector` names; it must be there, and of this kind where one is given.
 * @template {Element} [E=HTMLElement]
 * @param {ParentNode} root
 * @param {string} selector
 * @param {new () => E} [kind]
 * @returns {E}
 */
export function one(root, selector, kind) {
  const found = root.querySelector(selector);
  if (!found || (kind && !(found instanceof kind))) throw new Error(`There is no ${selector}`);
  return /** @type {any} */ (found);
}

/**
 * @template {Element} [E=HTMLElement]
 * @param {ParentNode} root
 * @param {string} selector
 * @param {new () => E} [_kind]
 * @returns {E[]}
 */
export function all(root, selector, _kind) {
  return /** @type {any} */ ([...root.querySelectorAll(selector)]);
}

/** @param {string} id */
export const byId = (id) => one(document, `#${id}`);

/**
 * @template {keyof HTMLElementTagNameMap} K
 * @param {K} name
 * @param {string} [className]
 * @param {string} [content] the text in it
 * @returns {HTMLElementTagNameMap[K]}
 */
export function make(name, className = "", content = "") {
  const made = document.createElement(name);
  made.className = className;
  made.textContent = content;
  return made;
}

/** The same for drawings. @param {string} name @param {Record<string, string | number>} attributes */
export function draw(name, attributes) {
  const made = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, String(value));
  return made;
}
