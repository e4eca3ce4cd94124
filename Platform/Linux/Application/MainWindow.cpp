#include "Platform/Linux/Application/MainWindow.h"

#include <gdk/gdkx.h>
#include <giomm/file.h>
#include <glibmm/datetime.h>
#include <glibmm/main.h>
#include <gtkmm/button.h>
#include <gtkmm/cssprovider.h>
#include <gtkmm/image.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Platform/Linux/Application/Options.h"
#include "Platform/Linux/StandInEngine/BrowserName.h"
#include "Platform/UserDefaults.h"

namespace tapdeck {

namespace {

constexpr const char* styleSheet = R"(
.contents { padding: 18px; }
.heading { font-weight: bold; font-size: 115%; }
.section { font-weight: bold; padding: 12px 2px 2px 2px; }
.small { font-size: 90%; }
.address { font-family: monospace; padding: 6px 8px; border-radius: 6px;
           background-color: alpha(@theme_fg_color, 0.07); }
.notice { padding: 6px 8px; border-radius: 6px; background-color: alpha(@warning_color, 0.18); }
.card { background-color: @theme_base_color; border: 1px solid @borders; border-radius: 8px; }
.card row + row { border-top: 1px solid @borders; }
.card row { padding: 0; background: none; }
list.card { background-color: @theme_base_color; }
.padded { padding: 14px; }
.row { padding: 10px 14px; transition: background-color 400ms; }
.row + .row { border-top: 1px solid @borders; }
.highlighted { background-color: alpha(@theme_selected_bg_color, 0.35); }
)";

/// Of the list of devices, in points; four rows.
constexpr int kMaxListHeight = 220;

void installStyle() {
  const auto provider = Gtk::CssProvider::create();
  provider->load_from_data(styleSheet);
  Gtk::StyleContext::add_provider_for_screen(Gdk::Screen::get_default(), provider,
                                             GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

struct Action {
  const char* label;
  std::function<void()> perform;
};

/// A row of the list of devices and connections; the list owns it.
Gtk::Widget* newRow(const Glib::ustring& title, const Glib::ustring& remark,
                    const std::vector<Action>& actions) {
  auto* row = Gtk::make_managed<Gtk::Box>(Gtk::ORIENTATION_HORIZONTAL, 10);
  auto* image = Gtk::make_managed<Gtk::Image>();
  image->set_from_icon_name("network-transmit-receive-symbolic", Gtk::ICON_SIZE_MENU);
  auto* name = Gtk::make_managed<Gtk::Label>(title, Gtk::ALIGN_START);
  name->set_ellipsize(Pango::ELLIPSIZE_END);
  auto* state = Gtk::make_managed<Gtk::Label>(remark);
  state->get_style_context()->add_class("dim-label");
  row->pack_start(*image, Gtk::PACK_SHRINK);
  row->pack_start(*name, Gtk::PACK_EXPAND_WIDGET);
  row->pack_start(*state, Gtk::PACK_SHRINK);
  for (const Action& action : actions) {
    auto* button = Gtk::make_managed<Gtk::Button>(action.label);
    // the action takes this very row away
    button->signal_clicked().connect(
        [perform = action.perform] { Glib::signal_idle().connect_once(perform); });
    row->pack_start(*button, Gtk::PACK_SHRINK);
  }
  row->get_style_context()->add_class("row");
  return row;
}

Glib::ustring whenSeen(const StandInEngine::Device& device) {
  if (device.isConnected) return "connected";
  return "last seen " + Glib::DateTime::create_now_local(device.seen).format("%x, %H:%M");
}

}  // namespace

MainWindow::MainWindow(std::weak_ptr<MainFlutterWindow> state,
                       std::shared_ptr<StandInEngine> engine, std::string networkAddress,
                       std::function<void()> quit)
    : _state(std::move(state)),
      _engine(std::move(engine)),
      _networkAddress(std::move(networkAddress)),
      _quit(std::move(quit)),
      _nobody("No device is connected or paired."),
      _lan("Allow phones in this network", "Everybody in the network can try to connect."),
      _tls("Encrypt what is sent",
           "While this is off, everybody in the network can read along. While it is on, browsers "
           "ask "
           "once whether to trust this computer's certificate."),
      _control("Allow control of pointer and keyboard",
               "Moves, clicks, scrolling, keys and text arrive at your applications."),
      _screen("Allow the screen to be seen", "The page may show what the displays show."),
      _footnote("Closing this window leaves Tapdeck running.") {
  installStyle();
  set_title("Tapdeck");
  set_icon_name("input-mouse");
  set_default_size(640, -1);
  buildHeader();
  buildContents();
  refreshConnections();
  watchSettings();
  _engine->observe([this] { refreshConnections(); });
  permissions::setPromptHandler(
      [this](permissions::Permission permission) { promptFor(permission); });
}

MainWindow::~MainWindow() {
  permissions::setPromptHandler({});
  _engine->observe({});
  // The children go before the window, which must not look for its focus among them then.
  unset_focus();
}

void MainWindow::bringForward() {
  show();
  // No event of the user stands behind this, and a window manager ignores a request without a time.
  present(gdk_x11_get_server_time(get_window()->gobj()));
  becameKey();
}

void MainWindow::buildHeader() {
  _quitItem.property_text() = "Quit Tapdeck";
  _quitItem.signal_clicked().connect([this] { _quit(); });
  _quitItem.set_margin_start(6);
  _quitItem.set_margin_end(6);
  _quitItem.set_margin_top(6);
  _quitItem.set_margin_bottom(6);
  _quitItem.show();
  _menu.add(_quitItem);
  _menuButton.set_popover(_menu);
  _menuButton.set_image_from_icon_name("open-menu-symbolic");
  _menuButton.set_tooltip_text("Menu");
  _header.set_title("Tapdeck");
  _header.set_show_close_button();
  _header.pack_end(_menuButton);
  set_titlebar(_header);
  _header.show_all();
}

void MainWindow::buildContents() {
  _address.get_style_context()->add_class("card");
  _address.get_style_context()->add_class("padded");
  _contents.pack_start(_address, Gtk::PACK_SHRINK);

  _nobody.get_style_context()->add_class("dim-label");
  _nobody.get_style_context()->add_class("row");
  _nobody.show();
  _peers.set_selection_mode(Gtk::SELECTION_NONE);
  _peers.set_placeholder(_nobody);
  _peersView.set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
  _peersView.add(_peers);
  addSection("Devices", _peersView);
  for (Gtk::Label* label : {&_failedLogins, &_failure}) {
    label->set_no_show_all();
    label->set_line_wrap();
    label->set_xalign(0);
    label->get_style_context()->add_class("notice");
    _contents.pack_start(*label, Gtk::PACK_SHRINK);
  }

  _lan.onToggled([this](bool isAllowed) { allowNetwork(isAllowed); });
  _tls.onToggled([this](bool isEncrypted) { encryptNetwork(isEncrypted); });
  _network.pack_start(_lan, Gtk::PACK_SHRINK);
  _network.pack_start(_tls, Gtk::PACK_SHRINK);
  _fingerprint.set_no_show_all();
  _fingerprint.set_selectable();
  _fingerprint.set_line_wrap();
  _fingerprint.set_line_wrap_mode(Pango::WRAP_CHAR);
  _fingerprint.set_xalign(0);
  _fingerprint.get_style_context()->add_class("row");
  _fingerprint.get_style_context()->add_class("small");
  _network.pack_start(_fingerprint, Gtk::PACK_SHRINK);
  addSection("Network", _network);

  _control.onToggled(
      [](bool isGranted) { permissions::setGranted(permissions::Permission::control, isGranted); });
  _screen.onToggled([](bool isGranted) {
    permissions::setGranted(permissions::Permission::screenCapture, isGranted);
  });
  refreshPermissions();

  _permissions.pack_start(_control, Gtk::PACK_SHRINK);
  _permissions.pack_start(_screen, Gtk::PACK_SHRINK);
  addSection("Permissions", _permissions);

  _footnote.get_style_context()->add_class("dim-label");
  _footnote.get_style_context()->add_class("small");
  _footnote.set_margin_top(10);
  _contents.pack_end(_footnote, Gtk::PACK_SHRINK);
  _contents.get_style_context()->add_class("contents");
  add(_contents);
  _contents.show_all();
  // GTK would give the focus to the address and select it.
  set_focus(_address.firstButton());
}

void MainWindow::addSection(const Glib::ustring& title, Gtk::Widget& contents) {
  auto* label = Gtk::make_managed<Gtk::Label>(title, Gtk::ALIGN_START);
  label->get_style_context()->add_class("section");
  contents.get_style_context()->add_class("card");
  _contents.pack_start(*label, Gtk::PACK_SHRINK);
  _contents.pack_start(contents, Gtk::PACK_SHRINK);
}

void MainWindow::watchSettings() {
  const auto file = Gio::File::create_for_path(permissions::settingsPath());
  // The monitor sees nothing in a folder that appears later.
  g_mkdir_with_parents(file->get_parent()->get_path().c_str(), 0700);
  try {
    _settingsMonitor = file->monitor_file(Gio::FILE_MONITOR_WATCH_MOVES);
  } catch (const Glib::Error&) {
    // The switches still follow the settings whenever the window is brought forward.
    return;
  }
  _settingsMonitor->signal_changed().connect(
      [this](const auto&, const auto&, Gio::FileMonitorEvent) { refreshPermissions(); });
}

void MainWindow::refreshPermissions() {
  _control.setOn(permissions::isGranted(permissions::Permission::control));
  _screen.setOn(permissions::isGranted(permissions::Permission::screenCapture));
}

void MainWindow::refreshConnections() {
  for (Gtk::Widget* row : _peers.get_children()) delete row;
  for (const auto& device : _engine->devices()) {
    std::vector<Action> actions;
    if (device.isConnected) {
      actions.push_back({"Disconnect", [this, id = device.id] { _engine->disconnectDevice(id); }});
    }
    actions.push_back(
        {"Forget", [this, id = device.id] { attempt([&] { _engine->forgetDevice(id); }); }});
    _peers.append(*newRow(device.name, whenSeen(device), actions));
  }
  for (const auto& peer : _engine->peers()) {
    if (peer.isPaired) continue;
    _peers.append(*newRow(
        browserName(peer.userAgent), peer.address,
        {{"Disconnect", [this, number = peer.connection] { _engine->disconnect(number); }}}));
  }
  _peers.show_all_children();
  int minimum = 0;
  int natural = 0;
  _peers.get_preferred_height(minimum, natural);
  _peersView.set_min_content_height(std::min(natural, kMaxListHeight));
  const auto wrong = _engine->failedLogins();
  _failedLogins.set_text(
      Glib::ustring::compose("Refused for a wrong code since the start: %1", wrong));
  _failedLogins.set_visible(wrong > 0);
  _address.setAddresses(_engine->pageAddresses());
  _lan.setOn(_engine->address() != kThisComputer);
  _tls.setOn(_engine->isEncrypted());
  _fingerprint.set_text("The certificate's SHA-256 fingerprint: " + _engine->fingerprint());
  _fingerprint.set_visible(_engine->isEncrypted());
}

void MainWindow::encryptNetwork(bool isEncrypted) {
  attempt([&] {
    _engine->setEncrypted(isEncrypted);
    platform::setUserDefaultsBool(kEncryptNetwork, isEncrypted);
  });
  refreshConnections();
}

void MainWindow::allowNetwork(bool isAllowed) {
  attempt([&] {
    _engine->listenOn(isAllowed ? _networkAddress : kThisComputer);
    platform::setUserDefaultsBool(kAllowNetwork, isAllowed);
  });
  refreshConnections();
}

void MainWindow::attempt(const std::function<void()>& action) {
  _failure.hide();
  try {
    action();
  } catch (const std::runtime_error& error) {
    _failure.set_text(error.what());
    _failure.show();
  }
}

void MainWindow::promptFor(permissions::Permission permission) {
  bringForward();
  (permission == permissions::Permission::control ? _control : _screen).highlight();
}

void MainWindow::becameKey() {
  refreshPermissions();
  if (const auto state = _state.lock()) state->showCursorOnBecomingKey();
}

bool MainWindow::on_delete_event(GdkEventAny*) {
  hide();
  return true;
}

bool MainWindow::on_focus_in_event(GdkEventFocus* event) {
  becameKey();
  return Gtk::Window::on_focus_in_event(event);
}

bool MainWindow::on_key_press_event(GdkEventKey* event) {
  const bool control = (event->state & GDK_CONTROL_MASK) != 0;
  if (control && event->keyval == GDK_KEY_q) {
    _quit();
    return true;
  }
  if (control && event->keyval == GDK_KEY_w) {
    hide();
    return true;
  }
  return Gtk::Window::on_key_press_event(event);
}

}  // namespace tapdeck
