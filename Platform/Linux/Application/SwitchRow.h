#pragma once

#include <gtkmm/box.h>
#include <gtkmm/label.h>
#include <gtkmm/switch.h>

#include <functional>
#include <utility>

namespace tapdeck {

/// A setting with its switch and a line that explains it.
class SwitchRow : public Gtk::Box {
 public:
  SwitchRow(const Glib::ustring& title, const Glib::ustring& explanation);
  ~SwitchRow() override;

  /// Calls `toggled` with the new setting when the user turns the switch.
  void onToggled(std::function<void(bool)> toggled) { _toggled = std::move(toggled); }
  /// Shows the setting as it is; nothing is called.
  void setOn(bool isOn);
  /// Highlights the row for a while and gives its switch the keyboard focus.
  void highlight();

 private:
  std::function<void(bool)> _toggled;
  bool _shown = false;
  Gtk::Box _texts{Gtk::ORIENTATION_VERTICAL, 2};
  Gtk::Label _title;
  Gtk::Label _explanation;
  Gtk::Switch _switch;
  sigc::connection _endOfHighlight;
};

}  // namespace tapdeck
