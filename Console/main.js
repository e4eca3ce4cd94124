// Puts the page together.

import { AppList } from "./apps/apps.js";
import { AppView } from "./apps/appview.js";
import { bindMouseButton } from "./touch/buttons.js";
import { bindClipboard } from "./more/clipboard.js";
import { Connection } from "./connection/connection.js";
import { DisplayList, DisplayView } from "./more/displays.js";
import { Keyboard } from "./keyboard/keyboard.js";
import { System } from "./keyboard/keys.js";
import { Laser } from "./screen/laser.js";
import { bindLoginItem } from "./settings/loginitem.js";
import { MediaView } from "./media/mediaview.js";
import { bindModifier, Modifiers } from "./keyboard/modifiers.js";
import { bindPermissionCard, Permissions } from "./settings/permissions.js";
import { RemotePointer } from "./touch/pointer.js";
import { ScreenView } from "./screen/screenview.js";
import { bindScrollStrip, Momentum } from "./touch/scrolling.js";
import { bindTabs } from "./ui/tabs.js";
import { Touchpad } from "./touch/touchpad.js";
import { TypingQueue } from "./keyboard/typing.js";

const STATES = {
  "connecting": ["Connecting…", ""],
  "connected": ["Connected", ""],
  "no-token": ["Not connected", "This address has no token. Open the whole address that the host "
    + "shows, with everything after the # sign, or scan its code."],
  "refused": ["Refused", "The host does not take this page in. Its address changes with every start: "
    + "open the one that it shows now. If it is this one, too many pages are open already."],
  "unreachable": ["Host not reachable", "The host does not answer. Check that it is running and that "
    + "this device is on the same network. This page goes on trying."],
};

const byId = (id) => document.getElementById(id);
const controlBanners = document.querySelectorAll(".control-banner");
const token = () => decodeURIComponent(location.hash.slice(1));

const connection = new Connection(token());
const displays = new DisplayList(connection);
const pointer = new RemotePointer(connection, () => displays.records);
const permissions = new Permissions(connection);
const momentum = new Momentum((x, y) => pointer.scroll(x, y));
const touchpad = new Touchpad(byId("pad"), pointer, momentum);
const laser = new Laser(connection);
const { picture } = new ScreenView(byId("panel-screen"),
  { connection, displays, permissions, pointer, momentum, laser });
const system = new System(document.body.dataset.system);
const queue = new TypingQueue(connection);
const modifiers = new Modifiers(connection, queue);
const keyboard = new Keyboard(byId("panel-keyboard"), connection, queue, modifiers, system);

// Modifiers are held from one section to the next, for a click with Shift, say.
function changeSection() {
  touchpad.cancel();
  picture.cancel();
  pointer.releaseAll();
  keyboard.rest();
}

function letGo() {
  changeSection();
  modifiers.releaseAll();
}

function showState() {
  const [status, advice] = STATES[connection.state];
  document.body.dataset.state = connection.state;
  byId("status-text").textContent = status;
  byId("advice").textContent = advice;
  byId("advice").hidden = !advice;
  if (connection.connected) return;
  touchpad.cancel();
  picture.cancel();
}

function showPermissions() {
  const { control, screen } = permissions.granted;
  for (const banner of controlBanners) banner.hidden = control !== false;
  byId("permission-mark").hidden = control !== false && screen !== false;
}

for (const button of document.querySelectorAll("[data-button]")) bindMouseButton(button, pointer);
for (const button of document.querySelectorAll("[data-modifier]")) {
  bindModifier(button, modifiers, system);
}
bindScrollStrip(byId("scroll-strip"), momentum);
for (const card of document.querySelectorAll("[data-permission]")) {
  bindPermissionCard(card, permissions);
}
bindClipboard(byId("panel-clipboard"), connection);
bindLoginItem(byId("panel-settings"), connection);
new AppView(byId("panel-apps"), new AppList(connection), connection);
new MediaView(byId("panel-media"), connection);
new DisplayView(byId("panel-displays"), displays, pointer, connection);
const showTab = bindTabs(byId("tabs"), changeSection);
for (const banner of controlBanners) {
  banner.querySelector("button").addEventListener("click", () => showTab("tab-settings"));
}

permissions.addEventListener("change", showPermissions);
connection.addEventListener("state", showState);
document.addEventListener("visibilitychange", () => { if (document.hidden) letGo(); });
window.addEventListener("blur", letGo);
window.addEventListener("hashchange", () => connection.setToken(token()));
window.addEventListener("pagehide", () => {
  letGo();
  laser.leave();
  connection.stop();
});
window.addEventListener("pageshow", ({ persisted }) => { if (persisted) connection.start(); });

showState();
connection.start();
