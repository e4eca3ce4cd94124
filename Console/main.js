// Puts the page together.

import { bindMouseButton } from "./buttons.js";
import { bindClipboard } from "./clipboard.js";
import { Connection } from "./connection.js";
import { DisplayList, DisplayView } from "./displays.js";
import { bindPermissionCard, Permissions } from "./permissions.js";
import { RemotePointer } from "./pointer.js";
import { bindTabs } from "./tabs.js";
import { Touchpad } from "./touchpad.js";

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
const token = () => decodeURIComponent(location.hash.slice(1));

const connection = new Connection(token());
const displays = new DisplayList(connection);
const pointer = new RemotePointer(connection, () => displays.records);
const permissions = new Permissions(connection);
const touchpad = new Touchpad(byId("pad"), pointer);

function letGo() {
  touchpad.cancel();
  pointer.releaseAll();
}

function showState() {
  const [status, advice] = STATES[connection.state];
  document.body.dataset.state = connection.state;
  byId("status-text").textContent = status;
  byId("advice").textContent = advice;
  byId("advice").hidden = !advice;
  if (!connection.connected) touchpad.cancel();
}

function showPermissions() {
  const { control, screen } = permissions.granted;
  byId("control-banner").hidden = control !== false;
  byId("permission-mark").hidden = control !== false && screen !== false;
}

for (const button of document.querySelectorAll("[data-button]")) bindMouseButton(button, pointer);
for (const card of document.querySelectorAll("[data-permission]")) {
  bindPermissionCard(card, permissions);
}
bindClipboard(byId("panel-clipboard"), connection);
new DisplayView(byId("panel-displays"), displays, pointer, connection);
const showTab = bindTabs(byId("tabs"), letGo);
byId("control-banner").querySelector("button")
  .addEventListener("click", () => showTab("tab-permissions"));

permissions.addEventListener("change", showPermissions);
connection.addEventListener("state", showState);
document.addEventListener("visibilitychange", () => { if (document.hidden) letGo(); });
window.addEventListener("blur", letGo);
window.addEventListener("hashchange", () => connection.setToken(token()));
window.addEventListener("pagehide", () => {
  letGo();
  connection.stop();
});
window.addEventListener("pageshow", ({ persisted }) => { if (persisted) connection.start(); });

showState();
connection.start();
