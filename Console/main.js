// Puts the page together.

import { AppList } from "./apps/apps.js";
import { AppView } from "./apps/appview.js";
import { Connection } from "./connection/connection.js";
import { Identity } from "./connection/identity.js";
import { Line } from "./connection/line.js";
import { Keyboard } from "./keyboard/keyboard.js";
import { modifierName } from "./keyboard/keys.js";
import { bindModifier, Modifiers } from "./keyboard/modifiers.js";
import { TypingQueue } from "./keyboard/typing.js";
import { TypingBar } from "./keyboard/typingbar.js";
import { MediaView } from "./media/mediaview.js";
import { bindClipboard } from "./more/clipboard.js";
import { DisplayList, DisplayView } from "./more/displays.js";
import { bindPower } from "./more/power.js";
import { bindPresent } from "./present/view.js";
import { Laser } from "./screen/laser.js";
import { bindLaser, bindMode, bindWindow, FullScreen } from "./screen/tools.js";
import { ScreenView } from "./screen/view.js";
import { bindLoginItem } from "./settings/loginitem.js";
import { bindPermissionBanner, bindPermissionCard } from "./settings/permissions.js";
import { Settings } from "./settings/settings.js";
import { bindSettings } from "./settings/view.js";
import { chooseLanguage, writeTexts } from "./text/text.js";
import { bindMouseButton } from "./touch/buttons.js";
import { RemotePointer } from "./touch/pointer.js";
import { bindScrollStrip, Momentum } from "./touch/scrolling.js";
import { Touchpad } from "./touch/touchpad.js";
import { Back } from "./ui/back.js";
import { all, byId, one } from "./ui/dom.js";
import { bindHelp } from "./ui/help.js";
import { bindLinePanel } from "./ui/linepanel.js";
import { Note } from "./ui/note.js";
import { Places } from "./ui/places.js";
import { keepAwake } from "./ui/wakelock.js";

const settings = new Settings();
document.documentElement.lang = chooseLanguage(settings.values.language, navigator.languages);
writeTexts(document);

const connection = new Connection(new Identity());
const line = new Line(connection);
const displays = new DisplayList(connection);
const pointer = new RemotePointer(connection, () => displays.records);
const momentum = new Momentum((x, y) => pointer.scroll(x, y), settings);
const steering = { connection, displays, line, pointer, momentum, settings };
const touchpad = new Touchpad(byId("pad"), steering);
const laser = new Laser(connection);
const screenPanel = byId("panel-screen");
const screenView = new ScreenView(screenPanel, { ...steering, laser });
const fullScreen = new FullScreen(screenPanel);
const queue = new TypingQueue(connection);
const modifiers = new Modifiers(connection, queue);
const keyboard = new Keyboard(connection, queue, modifiers);
const typingBar = new TypingBar(keyboard);
const places = new Places(settings);
const awake = keepAwake(() => connection.connected);

const dialog = bindPower(byId("panel-power"), connection, () => back.update());
const back = new Back([
  { isOpen: () => dialog.open, close: () => dialog.close() },
  { isOpen: () => typingBar.isOpen, close: () => typingBar.close() },
  { isOpen: () => fullScreen.isOpen, close: () => fullScreen.close() },
  { isOpen: () => !places.isFirst, close: () => places.showFirst() },
]);

// Modifiers are held from one place to the next, for a click with Shift, say.
function endGestures() {
  touchpad.cancel();
  screenView.picture.cancel();
  pointer.releaseAll();
  keyboard.rest();
}

function letGo() {
  endGestures();
  modifiers.releaseAll();
}

for (const button of all(document, "[data-button]")) bindMouseButton(button, pointer);
for (const button of all(document, "[data-modifier]")) bindModifier(button, modifiers, modifierName);
pointer.addEventListener("clicked", () => modifiers.used());
bindScrollStrip(byId("scroll-strip"), momentum);
const screenNote = new Note(one(screenPanel, ".outcome"));
bindLaser(laser, screenNote);
bindMode(settings);
bindWindow(connection, displays, screenView, screenNote);
for (const card of all(document, "[data-permission]")) bindPermissionCard(card, line);
bindPermissionBanner(line);
bindClipboard(byId("panel-clipboard"), connection);
bindSettings(byId("panel-settings"), settings);
bindLoginItem(byId("panel-settings"), connection);
bindPresent(byId("panel-present"), { connection, queue, laser, pointer, settings });
new AppView(byId("panel-apps"), new AppList(connection), connection, settings);
new MediaView(byId("panel-media"), connection);
new DisplayView(byId("panel-displays"), displays, pointer, connection);
bindHelp(settings);
bindLinePanel(connection);

places.addEventListener("change", () => {
  endGestures();
  fullScreen.close();
  typingBar.close();
  keyboard.moveField(places.current === "keyboard");
  back.update();
});
for (const opened of [typingBar, fullScreen]) opened.addEventListener("change", () => back.update());
settings.addEventListener("change", () => { byId("pad").dataset.strip = settings.values.strip; });
byId("pad").dataset.strip = settings.values.strip;

connection.addEventListener("state", () => {
  awake();
  if (connection.connected) return;
  touchpad.cancel();
  screenView.picture.cancel();
});
document.addEventListener("visibilitychange", () => {
  awake();
  if (document.hidden) letGo();
});
window.addEventListener("blur", letGo);
window.addEventListener("hashchange", () => { if (location.hash) connection.start(); });
window.addEventListener("pagehide", () => {
  letGo();
  laser.leave();
  connection.stop();
});
window.addEventListener("pageshow", ({ persisted }) => { if (persisted) connection.start(); });

places.start();
connection.start();
