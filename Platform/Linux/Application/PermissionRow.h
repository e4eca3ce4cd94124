#pragma once

#include <gtkmm/box.h>
#include <gtkmm/label.h>
#include <gtkmm/switch.h>

#include "Platform/Linux/Permissions/Permissions.h"

namespace tapdeck {

/// One permission with its switch, kept in step with the user's settings.
class PermissionRow : public Gtk::Box {
 public:
  PermissionRow(permissions::Permission permission, const Glib::ustring& title,
                const Glib::ustring& explanation);
  ~PermissionRow() override;

  /// Shows what the settings say now.
  void refresh();
  /// Draws the eye to the row for a while and gives its switch the keyboard focus.
  void pointOut();

 private:
  void decide();

  permissions::Permission _permission;
  Gtk::Box _texts{Gtk::ORIENTATION_VERTICAL, 2};
  Gtk::Label _title;
  Gtk::Label _explanation;
  Gtk::Switch _switch;
  sigc::connection _endOfPointing;
};

}  // namespace tapdeck
