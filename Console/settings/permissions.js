// What is shown of the permissions: a card for each, and one banner while any is missing.

import { text } from "../text/text.js";
import { all, byId, one } from "../ui/dom.js";
import { Note } from "../ui/note.js";

/** @typedef {import("../connection/line.js").Line} Line */

/** @param {HTMLElement} card @param {Line} line */
export function bindPermissionCard(card, line) {
  const kind = /** @type {"control" | "screen"} */ (card.dataset.permission);
  const pill = one(card, ".pill");
  const actions = one(card, ".actions");
  const note = new Note(one(card, ".outcome"));

  const show = () => {
    const granted = line.granted[kind];
    pill.textContent = text(granted === null ? "permissionUnknown"
      : granted ? "permissionGranted" : "permissionMissing");
    pill.className = `pill ${granted === null ? "" : granted ? "good" : "bad"}`;
    actions.hidden = granted !== false;
  };
  bindRequests(actions, kind, line, note);
  line.addEventListener("change", show);
  show();
}

/**
 * Two buttons: to ask for a permission, and to open the computer's settings.
 * @param {HTMLElement} actions @param {"control" | "screen"} kind @param {Line} line @param {Note} note
 */
export function bindRequests(actions, kind, line, note) {
  const [request, settings] = all(actions, "button");
  request.addEventListener("click", () => note.attempt(() => line.request(kind), text("askedForIt")));
  settings.addEventListener("click", () => note.attempt(() => line.openSettings(kind), text("settingsOpen")));
}

/** @param {Line} line */
export function bindPermissionBanner(line) {
  const banner = byId("permission-banner");
  const marks = all(document, ".permission-mark");
  for (const mark of marks) {
    const words = document.createElement("span");
    words.className = "unseen";
    words.textContent = text("permissionMark");
    mark.append(words);
  }
  line.addEventListener("change", () => {
    const [control, screen] = [line.granted.control === false, line.granted.screen === false];
    banner.hidden = !control && !screen;
    one(banner, "span").textContent = banner.hidden ? ""
      : text(control && screen ? "bannerBoth" : control ? "bannerControl" : "bannerScreen");
    for (const mark of marks) mark.hidden = banner.hidden;
  });
}
