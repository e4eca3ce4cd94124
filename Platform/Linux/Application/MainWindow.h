#pragma once

#include <giomm/filemonitor.h>
#include <gtkmm/box.h>
#include <gtkmm/headerbar.h>
#include <gtkmm/label.h>
#include <gtkmm/listbox.h>
#include <gtkmm/menubutton.h>
#include <gtkmm/modelbutton.h>
#include <gtkmm/popover.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/window.h>

#include <functional>
#include <memory>
#include <string>

#include "Platform/Linux/Application/AddressCard.h"
#include "Platform/Linux/Application/SwitchRow.h"
#include "Platform/Linux/Permissions/Permissions.h"
#include "Platform/Linux/StandInEngine/StandInEngine.h"
#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

/// The host's window: the page's address, who is connected, what is permitted. Closing it hides it
/// and leaves the host running.
class MainWindow : public Gtk::Window {
 public:
  /// `networkAddress` is listened on while phones are allowed; `quit` ends the host.
  MainWindow(std::weak_ptr<MainFlutterWindow> state, std::shared_ptr<StandInEngine> engine,
             std::string networkAddress, std::function<void()> quit);
  ~MainWindow() override;

  /// Shows the window, in front and with the keyboard focus as far as the desktop allows.
  void bringForward();

 private:
  void buildHeader();
  void buildContents();
  void addSection(const Glib::ustring& title, Gtk::Widget& contents);
  void watchSettings();
  void refreshPermissions();
  void refreshConnections();
  void allowNetwork(bool isAllowed);
  void encryptNetwork(bool isEncrypted);
  /// Does what may fail, and says so on the window.
  void attempt(const std::function<void()>& action);
  void promptFor(permissions::Permission permission);
  void becameKey();

  bool on_delete_event(GdkEventAny* event) override;
  bool on_focus_in_event(GdkEventFocus* event) override;
  bool on_key_press_event(GdkEventKey* event) override;

  std::weak_ptr<MainFlutterWindow> _state;
  std::shared_ptr<StandInEngine> _engine;
  std::string _networkAddress;
  std::function<void()> _quit;

  Gtk::HeaderBar _header;
  Gtk::MenuButton _menuButton;
  Gtk::Popover _menu;
  Gtk::ModelButton _quitItem;
  Gtk::Box _contents{Gtk::ORIENTATION_VERTICAL, 6};
  AddressCard _address;
  /// Before the list whose placeholder it is, which must go first.
  Gtk::Label _nobody;
  Gtk::ListBox _peers;
  Gtk::ScrolledWindow _peersView;
  Gtk::Label _failedLogins;
  Gtk::Label _failure;
  Gtk::Box _network{Gtk::ORIENTATION_VERTICAL};
  SwitchRow _lan;
  SwitchRow _tls;
  Gtk::Label _fingerprint;
  Gtk::Box _permissions{Gtk::ORIENTATION_VERTICAL};
  SwitchRow _control;
  SwitchRow _screen;
  Gtk::Label _footnote;
  Glib::RefPtr<Gio::FileMonitor> _settingsMonitor;
};

}  // namespace tapdeck
