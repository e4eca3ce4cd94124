#include "Platform/Linux/Application/SwitchRow.h"

#include <glibmm/main.h>

namespace tapdeck {

namespace {

constexpr unsigned int kHighlightMilliseconds = 4000;

}  // namespace

SwitchRow::SwitchRow(const Glib::ustring& title, const Glib::ustring& explanation)
    : Gtk::Box(Gtk::ORIENTATION_HORIZONTAL, 12),
      _title(title, Gtk::ALIGN_START),
      _explanation(explanation, Gtk::ALIGN_START) {
  _explanation.set_line_wrap();
  _explanation.set_xalign(0);
  _explanation.get_style_context()->add_class("dim-label");
  _explanation.get_style_context()->add_class("small");
  _texts.pack_start(_title, Gtk::PACK_SHRINK);
  _texts.pack_start(_explanation, Gtk::PACK_SHRINK);
  _switch.set_valign(Gtk::ALIGN_CENTER);
  _switch.get_accessible()->set_name(title);
  pack_start(_texts, Gtk::PACK_EXPAND_WIDGET);
  pack_start(_switch, Gtk::PACK_SHRINK);
  get_style_context()->add_class("row");

  _switch.property_active().signal_changed().connect([this] {
    // this was setOn(), not the user
    if (_switch.get_active() == _shown) return;
    _shown = _switch.get_active();
    if (_toggled) _toggled(_shown);
  });
}

SwitchRow::~SwitchRow() {
  _endOfHighlight.disconnect();
}

void SwitchRow::setOn(bool isOn) {
  _shown = isOn;
  _switch.set_active(isOn);
}

void SwitchRow::highlight() {
  const auto style = get_style_context();
  style->add_class("highlighted");
  _endOfHighlight.disconnect();
  _endOfHighlight = Glib::signal_timeout().connect(
      [style] {
        style->remove_class("highlighted");
        return false;
      },
      kHighlightMilliseconds);
  _switch.grab_focus();
}

}  // namespace tapdeck
