#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "Tests/Desktop/Observer.h"

namespace tapdeck::testing {

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

  Answer _answer;
  Observer _client;
  xcb_window_t _window;
  std::atomic<bool> _ended = false;
  std::thread _thread;
};

}  // namespace tapdeck::testing
