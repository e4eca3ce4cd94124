// The gestures, shown until somebody has used them once.

import { byId } from "./dom.js";

/** @param {import("../settings/settings.js").Settings} settings */
export function bindHelp(settings) {
  const helps = [byId("pad-help"), byId("screen-help")];
  const surfaces = [byId("pad"), byId("stage")];
  const show = () => {
    document.body.classList.toggle("help-seen", settings.values.helpSeen);
    for (const help of helps) help.classList.remove("used");
  };
  surfaces.forEach((surface, at) => surface.addEventListener("pointerdown", () => {
    helps[at].classList.add("used");
    if (!settings.values.helpSeen) settings.set("helpSeen", true);
  }));
  settings.addEventListener("change", (event) => {
    if (/** @type {CustomEvent} */ (event).detail === "helpSeen" && !settings.values.helpSeen) show();
  });
  show();
}
