#include <gdk/gdk.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/Linux/Fronts/Pasteboard.h"
#include "Platform/Linux/Fronts/SelectionReader.h"
#include "Platform/Queues.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/Observer.h"

namespace tapdeck::testing {
namespace {

using platform::pasteboardString;
using platform::setPasteboardString;

/// Another client that owns a selection and answers for it as a test wants, from a thread of its
/// own.
class SelectionOwner {
 public:
  struct Form {
    std::string type;
    std::string bytes;
  };
  /// The selection in the form that is asked for by name; absent when there is none.
  using Answer = std::function<std::optional<Form>(const std::string& target)>;

  SelectionOwner(const std::string& selection, Answer answer) : _answer(std::move(answer)) {
    xcb_set_selection_owner(_client.get(), _window, _client.atom(selection), XCB_CURRENT_TIME);
    if (_client.selectionOwner(selection) != _window) throw std::runtime_error("not the owner");
    _thread = std::jthread([this](const std::stop_token& end) { serve(end); });
  }

  /// An answer of this type begins an incremental transfer after which the owner dies.
  static constexpr const char* kDeadlyType = "INCR";
  /// An answer of this type is never given.
  static constexpr const char* kSilentType = "silence";

 private:
  void serve(const std::stop_token& end) {
    while (!end.stop_requested() && xcb_connection_has_error(_client.get()) == 0) {
      const auto event = Observer::owned(xcb_poll_for_event(_client.get()));
      if (event && (event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
        answer(*reinterpret_cast<xcb_selection_request_event_t*>(event.get()));
      } else if (!event) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
    }
  }
  void answer(const xcb_selection_request_event_t& request) {
    const auto form = _answer(_client.atomName(request.target));
    if (form && form->type == kSilentType) return;
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    if (form) {
      notify.property = request.property;
      xcb_change_property(_client.get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                          _client.atom(form->type), 8, static_cast<uint32_t>(form->bytes.size()),
                          form->bytes.data());
    }
    xcb_send_event(_client.get(), 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
    if (form && form->type == kDeadlyType) xcb_destroy_window(_client.get(), _window);
    xcb_flush(_client.get());
  }

  Answer _answer;
  Observer _client;
  xcb_window_t _window = _client.createHiddenWindow();
  std::jthread _thread;
};

using Form = SelectionOwner::Form;

std::string longText(std::size_t size) {
  std::string text;
  for (int i = 0; text.size() < size; ++i) text += std::to_string(i) + " häuser\n";
  return text;
}

void putThereByXclip(const std::string& text) {
  const TemporaryFolder folder;
  const auto file = folder.path / "text";
  std::ofstream(file, std::ios::binary) << text;
  Observer observer;
  const auto ownerBefore = observer.selectionOwner("CLIPBOARD");
  outputOf({"xclip", "-selection", "clipboard", file.string()});
  // It goes to the background before the X server has its request to own the selection.
  ASSERT_TRUE(eventually([&] {
    const auto owner = observer.selectionOwner("CLIPBOARD");
    return owner != XCB_WINDOW_NONE && owner != ownerBefore;
  }));
}

std::string seenByXclip() {
  return outputOf({"xclip", "-selection", "clipboard", "-o"});
}

TEST(PasteboardTest, TakesTheTextOfOtherClients) {
  for (const std::string& text :
       {std::string("héllo 🌍\nline 2"), std::string(), longText(2'000'000), longText(10'000'000)}) {
    putThereByXclip(text);
    EXPECT_TRUE(pasteboardString() == text) << text.size() << " bytes";
  }
  // one that cannot be sent on is neither held whole nor taken for none
  putThereByXclip(longText(70'000'000));
  const auto cut = pasteboardString().value_or("").size();
  EXPECT_GT(cut, platform::kMaxSelectionText);
  EXPECT_LT(cut, platform::kMaxSelectionText * 5 / 4);
}

TEST(PasteboardTest, GivesItsTextToItselfAndToOthers) {
  for (const std::string& text : {std::string("wörld 🎉"), longText(10'000'000)}) {
    setPasteboardString(text);
    EXPECT_TRUE(pasteboardString() == text) << text.size() << " bytes";
    EXPECT_TRUE(seenByXclip() == text) << text.size() << " bytes";
  }
  setPasteboardString("");
  EXPECT_EQ(pasteboardString(), "");
  putThereByXclip("theirs");
  EXPECT_EQ(pasteboardString(), "theirs");
  platform::clearPasteboard();
  EXPECT_EQ(pasteboardString(), std::nullopt);
  EXPECT_EQ(seenByXclip(), "");
}

TEST(PasteboardTest, UnderstandsTheFormsThatOwnersOffer) {
  const std::tuple<std::string, Form, std::optional<std::string>> cases[] = {
      {"STRING", {"STRING", "caf\xE9"}, "café"},
      {"TEXT", {"UTF8_STRING", "café"}, "café"},
      {"UTF8_STRING", {"UTF8_STRING", "a\xFFz"}, "a\xEF\xBF\xBDz"},
      {"UTF8_STRING", {"UTF8_STRING", std::string("a\0b\0", 4)}, std::string("a\0b", 3)},
      {"UTF8_STRING", {"UTF8_STRING", ""}, ""},
      {"image/png", {"image/png", "\x89PNG"}, std::nullopt},
  };
  for (const auto& [target, form, text] : cases) {
    const SelectionOwner owner("CLIPBOARD", [&](const std::string& asked) {
      return asked == target ? std::optional(form) : std::nullopt;
    });
    EXPECT_EQ(pasteboardString(), text) << target;
  }
}

TEST(PasteboardTest, WaitsForNoOwnerForEver) {
  bool otherWorkRan = false;
  platform::asyncOnMain([&otherWorkRan] { otherWorkRan = true; });
  const std::vector<std::pair<const char*, std::chrono::milliseconds>> fates = {
      {SelectionOwner::kSilentType, std::chrono::milliseconds(1900)},
      {SelectionOwner::kDeadlyType, std::chrono::milliseconds(700)}};
  for (const auto& [fate, limit] : fates) {
    const SelectionOwner owner("CLIPBOARD", [type = fate](const std::string&) {
      return Form{type, std::string(4, '\0')};
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pasteboardString(), std::nullopt) << fate;
    EXPECT_LT(std::chrono::steady_clock::now() - start, limit) << fate;
  }
  EXPECT_FALSE(otherWorkRan) << "other calls were answered while this one waited";
  EXPECT_TRUE(eventually([&otherWorkRan] { return otherWorkRan; }));
}

TEST(PasteboardTest, AsksTheClipboardManagerToKeepTheText) {
  std::string kept;
  const std::string display = gdk_display_get_name(gdk_display_get_default());
  const SelectionOwner manager("CLIPBOARD_MANAGER", [&](const std::string& target) {
    if (target == "SAVE_TARGETS") kept = platform::readSelection(display, "CLIPBOARD").value_or("");
    return Form{"NULL", ""};
  });
  setPasteboardString("to be kept");
  platform::storePasteboard();
  EXPECT_EQ(kept, "to be kept");
}

}  // namespace
}  // namespace tapdeck::testing
