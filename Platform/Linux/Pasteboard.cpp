#include "Platform/Linux/Pasteboard.h"

#include <gtkmm/clipboard.h>

#include <memory>
#include <vector>

#include "Platform/Linux/SelectionReader.h"

namespace tapdeck::platform {

namespace {

// GTK's own name for the selection that cut, copy and paste use.
constexpr const char* kClipboardSelection = "CLIPBOARD";

Glib::RefPtr<Gtk::Clipboard> clipboard() {
  return Gtk::Clipboard::get(gdk_atom_intern_static_string(kClipboardSelection));
}

const std::vector<Gtk::TargetEntry>& textTargets() {
  static const std::vector<Gtk::TargetEntry> targets = [] {
    std::vector<Gtk::TargetEntry> entries;
    for (const char* name :
         {"UTF8_STRING", "text/plain;charset=utf-8", "STRING", "TEXT", "COMPOUND_TEXT"}) {
      entries.emplace_back(name);
    }
    return entries;
  }();
  return targets;
}

/// What GTK calls with the answer, which outlives the caller if it comes too late.
struct OwnAnswer {
  bool arrived = false;
  std::optional<std::string> text;
};

void takeOwnAnswer(GtkClipboard*, GtkSelectionData* data, gpointer shared) noexcept {
  const std::unique_ptr<std::shared_ptr<OwnAnswer>> answer(
      static_cast<std::shared_ptr<OwnAnswer>*>(shared));
  int length = 0;
  const guchar* bytes = gtk_selection_data_get_data_with_length(data, &length);
  (*answer)->arrived = true;
  if (length >= 0) {
    (*answer)->text.emplace(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
  }
}

/// The text when this very process owns the selection: GTK answers such a request before it
/// returns, without the main loop.
OwnAnswer ownText(GdkAtom selection) {
  auto answer = std::make_shared<OwnAnswer>();
  gtk_clipboard_request_contents(gtk_clipboard_get(selection),
                                 gdk_atom_intern_static_string("UTF8_STRING"), takeOwnAnswer,
                                 new std::shared_ptr<OwnAnswer>(answer));
  return *answer;
}

}  // namespace

std::optional<std::string> pasteboardString() {
  GdkDisplay* display = gdk_display_get_default();
  const GdkAtom selection = gdk_atom_intern_static_string(kClipboardSelection);
  if (gdk_selection_owner_get_for_display(display, selection) != nullptr) {
    const OwnAnswer own = ownText(selection);
    if (own.arrived) return own.text;
  }
  return readSelection(gdk_display_get_name(display), kClipboardSelection);
}

void clearPasteboard() {
  // Only its owner can empty the selection.
  setPasteboardString("");
  clipboard()->clear();
}

void setPasteboardString(const std::string& text) {
  const auto answer = [text](Gtk::SelectionData& data, guint) {
    gtk_selection_data_set_text(data.gobj(), text.data(), static_cast<int>(text.size()));
  };
  clipboard()->set(textTargets(), answer, [] {});
  clipboard()->set_can_store(textTargets());
}

void storePasteboard() {
  clipboard()->store();
}

}  // namespace tapdeck::platform
