#include "Platform/Linux/Application/AddressCard.h"

#include <giomm/inetaddress.h>
#include <glib.h>
#include <glibmm/main.h>
#include <pangomm/attrlist.h>

#include <algorithm>
#include <utility>

#include "Platform/Linux/Support/GLibOwners.h"
#include "Platform/Pasteboard.h"
#include "Platform/Workspace.h"

namespace tapdeck {

namespace {

constexpr unsigned int kCopiedMilliseconds = 1500;

std::string hostOf(const std::string& address) {
  char* host = nullptr;
  g_uri_split(address.c_str(), G_URI_FLAGS_NONE, nullptr, nullptr, &host, nullptr, nullptr, nullptr,
              nullptr, nullptr);
  const glib::Text owned(host);
  return host == nullptr ? "" : host;
}

bool isLoopback(const std::string& address) {
  const std::string host = hostOf(address);
  if (host == "localhost") return true;
  const glib::Object<GInetAddress> parsed(g_inet_address_new_from_string(host.c_str()));
  return parsed && g_inet_address_get_is_loopback(parsed.get());
}

const char* adviceFor(bool isLocal) {
  if (!isLocal) {
    return "Scan the code with the phone's camera, or open the address in its browser. Both must "
           "be on the same network.";
  }
  return "A phone cannot reach this address: Tapdeck listens to this computer only. Turn on "
         "\"Allow "
         "phones in this network\" below to let phones in.";
}

}  // namespace

AddressCard::AddressCard()
    : Gtk::Box(Gtk::ORIENTATION_HORIZONTAL, 16),
      _heading("Open this page to take control", Gtk::ALIGN_START) {
  _heading.get_style_context()->add_class("heading");

  _advice.set_line_wrap();
  _advice.set_xalign(0);
  _advice.set_max_width_chars(44);

  _address.set_selectable();
  _address.set_line_wrap();
  _address.set_line_wrap_mode(Pango::WRAP_CHAR);
  // A hyphen at the line's end would be read as part of the address.
  Pango::AttrList attributes;
  auto noHyphens = Glib::wrap(pango_attr_insert_hyphens_new(FALSE), false);
  attributes.insert(noHyphens);
  _address.set_attributes(attributes);
  _address.set_xalign(0);
  _address.set_width_chars(40);
  _address.set_max_width_chars(40);
  _address.get_style_context()->add_class("address");
  _address.get_accessible()->set_name("The page's address");

  _choice.set_no_show_all();
  _code.set_no_show_all();
  _choice.signal_changed().connect([this] { showChosen(); });

  _copy.signal_clicked().connect([this] { copy(); });
  _open.signal_clicked().connect([this] {
    if (const auto url = platform::urlWithString(chosen())) platform::openURL(*url);
  });
  _buttons.pack_start(_copy, Gtk::PACK_SHRINK);
  _buttons.pack_start(_open, Gtk::PACK_SHRINK);

  _code.get_accessible()->set_name("QR code of the address");
  _code.set_valign(Gtk::ALIGN_START);
  for (Gtk::Widget* part :
       std::initializer_list<Gtk::Widget*>{&_heading, &_choice, &_address, &_buttons, &_advice}) {
    _column.pack_start(*part, Gtk::PACK_SHRINK);
  }
  pack_start(_code, Gtk::PACK_SHRINK);
  pack_start(_column, Gtk::PACK_EXPAND_WIDGET);
}

AddressCard::~AddressCard() {
  _endOfCopied.disconnect();
}

void AddressCard::setAddresses(std::vector<std::string> addresses) {
  if (addresses == _addresses) return;
  _addresses = std::move(addresses);
  const bool isLocal = std::all_of(_addresses.begin(), _addresses.end(), isLoopback);
  _advice.set_text(adviceFor(isLocal));
  const auto style = _advice.get_style_context();
  style->remove_class(isLocal ? "dim-label" : "notice");
  style->add_class(isLocal ? "notice" : "dim-label");
  _choice.remove_all();
  for (const std::string& address : _addresses) _choice.append(hostOf(address));
  _choice.set_active(0);
  _choice.set_visible(_addresses.size() > 1);
}

const std::string& AddressCard::chosen() const {
  const int row = std::max(0, _choice.get_active_row_number());
  return _addresses.at(static_cast<std::size_t>(row));
}

void AddressCard::showChosen() {
  // the list is empty while it is filled anew
  if (_choice.get_active_row_number() < 0) return;
  _address.set_text(chosen());
  _code.setText(chosen());
  _code.set_visible(!isLoopback(chosen()));
}

void AddressCard::copy() {
  platform::setPasteboardString(chosen());
  _copy.set_label("Copied");
  _endOfCopied.disconnect();
  _endOfCopied = Glib::signal_timeout().connect(
      [this] {
        _copy.set_label("Copy");
        return false;
      },
      kCopiedMilliseconds);
}

}  // namespace tapdeck
