#include "Platform/Linux/Application/MainWindow.h"

#include <gdk/gdkx.h>
#include <giomm/file.h>
#include <gtkmm/cssprovider.h>
#include <gtkmm/image.h>

#include <utility>

#include "Platform/Linux/Application/BrowserName.h"

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
.pointed-out { background-color: alpha(@theme_selected_bg_color, 0.35); }
)";

void installStyle() {
  const auto provider = Gtk::CssProvider::create();
  provider->load_from_data(styleSheet);
  Gtk::StyleContext::add_provider_for_screen(Gdk::Screen::get_default(), provider,
                                             GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

/// A row of the list of connections; the list owns it.
Gtk::Widget* newPeerRow(const StandInEngine::Peer& peer) {
  auto* row = Gtk::make_managed<Gtk::Box>(Gtk::ORIENTATION_HORIZONTAL, 10);
  auto* image = Gtk::make_managed<Gtk::Image>();
  image->set_from_icon_name("network-transmit-receive-symbolic", Gtk::ICON_SIZE_MENU);
  auto* name = Gtk::make_managed<Gtk::Label>(browserName(peer.userAgent), Gtk::ALIGN_START);
  name->set_ellipsize(Pango::ELLIPSIZE_END);
  name->set_tooltip_text(peer.userAgent);
  auto* address = Gtk::make_managed<Gtk::Label>(peer.address);
  address->get_style_context()->add_class("dim-label");
  row->pack_start(*image, Gtk::PACK_SHRINK);
  row->pack_start(*name, Gtk::PACK_EXPAND_WIDGET);
  row->pack_start(*address, Gtk::PACK_SHRINK);
  row->get_style_context()->add_class("row");
  return row;
}

}  // namespace

MainWindow::MainWindow(std::weak_ptr<MainFlutterWindow> state,
                       std::shared_ptr<StandInEngine> engine, std::function<void()> quit)
    : _state(std::move(state)),
      _engine(std::move(engine)),
      _quit(std::move(quit)),
      _address(_engine->pageAddresses()),
      _nobody("Nobody is connected."),
      _control(permissions::Permission::control, "Allow control of pointer and keyboard",
               "Moves, clicks, scrolling, keys and text arrive at your applications."),
      _screen(permissions::Permission::screenCapture, "Allow the screen to be seen",
              "The page may show what the displays show."),
      _footnote("Closing this window leaves Tapdeck running.") {
  installStyle();
  set_title("Tapdeck");
  set_icon_name("input-mouse");
  set_default_size(640, -1);
  buildHeader();
  buildContents();
  refreshPeers();
  watchSettings();
  _engine->observePeers([this] { refreshPeers(); });
  permissions::setPromptHandler([this](permissions::Permission permission) { ask(permission); });
}

MainWindow::~MainWindow() {
  permissions::setPromptHandler({});
  _engine->observePeers({});
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
  addSection("Connected", _peers);

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
  _control.refresh();
  _screen.refresh();
}

void MainWindow::refreshPeers() {
  for (Gtk::Widget* row : _peers.get_children()) delete row;
  for (const auto& peer : _engine->peers()) _peers.append(*newPeerRow(peer));
  _peers.show_all_children();
}

void MainWindow::ask(permissions::Permission permission) {
  bringForward();
  (permission == permissions::Permission::control ? _control : _screen).pointOut();
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
