#pragma once

#include <xcb/xcb.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace tapdeck::testing {

/// The window that owns a selection now, or XCB_WINDOW_NONE.
xcb_window_t selectionOwner(const std::string& selection);

/// Another client that owns a selection and answers for it as a test wants, from a thread and a
/// connection of its own.
class SelectionOwner {
 public:
  struct Form {
    std::string type;
    std::string bytes;
  };
  /// The selection in the form that is asked for by name; absent when there is none.
  using Answer = std::function<std::optional<Form>(const std::string& target)>;

  SelectionOwner(const std::string& selection, Answer answer);
  ~SelectionOwner();
  SelectionOwner(const SelectionOwner&) = delete;
  SelectionOwner& operator=(const SelectionOwner&) = delete;

  /// An answer of this type begins an incremental transfer after which the owner dies.
  static constexpr const char* kDeadlyType = "INCR";
  /// An answer of this type is never given.
  static constexpr const char* kSilentType = "silence";

 private:
  void serve();
  void answer(const xcb_selection_request_event_t& request);
  std::string nameOf(xcb_atom_t atom);

  Answer _answer;
  xcb_connection_t* _connection;
  xcb_window_t _window = 0;
  std::atomic<bool> _ended = false;
  std::thread _thread;
};

}  // namespace tapdeck::testing
