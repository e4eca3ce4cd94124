#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/comboboxtext.h>
#include <gtkmm/label.h>

#include <string>
#include <vector>

#include "Platform/Linux/Application/QrCode.h"

namespace tapdeck {

/// The page's address, to read, to scan, to copy and to open.
class AddressCard : public Gtk::Box {
 public:
  AddressCard();
  ~AddressCard() override;

  /// The best one first, at least one. A code is shown only where a phone can use it.
  void setAddresses(std::vector<std::string> addresses);
  Gtk::Widget& firstButton() { return _copy; }

 private:
  const std::string& chosen() const;
  void showChosen();
  void copy();

  std::vector<std::string> _addresses;
  QrCode _code;
  Gtk::Box _column{Gtk::ORIENTATION_VERTICAL, 8};
  Gtk::Label _heading;
  Gtk::Label _advice;
  Gtk::ComboBoxText _choice;
  Gtk::Label _address;
  Gtk::Box _buttons{Gtk::ORIENTATION_HORIZONTAL, 8};
  Gtk::Button _copy{"Copy"};
  Gtk::Button _open{"Open here"};
  sigc::connection _endOfCopied;
};

}  // namespace tapdeck
