#include "Runner/Input/HeldInput.h"

#include <mutex>
#include <optional>
#include <vector>

#include "Runner/Owned.h"

namespace tapdeck {
namespace {

/// A key or, when there is one, a button.
struct Held {
  CGKeyCode key = 0;
  std::optional<MouseButtonEventTypes> button;

  bool is(const Held& other) const {
    if (button.has_value() != other.button.has_value()) return false;
    return button ? button->button == other.button->button : key == other.key;
  }
};

// a process that stops may do so on any thread
std::mutex mutex;
std::vector<Held> held;

void note(const Held& what, bool down) {
  const std::lock_guard lock(mutex);
  std::erase_if(held, [&](const Held& other) { return what.is(other); });
  if (down) held.push_back(what);
}

Owned<CGEventRef> releaseOf(const Held& what) {
  if (!what.button) {
    return Owned<CGEventRef>(CGEventCreateKeyboardEvent(nullptr, what.key, false));
  }
  const Owned<CGEventRef> now(CGEventCreate(nullptr));
  if (!now) return Owned<CGEventRef>(nullptr);
  return Owned<CGEventRef>(CGEventCreateMouseEvent(
      nullptr, what.button->release, CGEventGetLocation(now.get()), what.button->button));
}

}  // namespace

void noteKey(CGKeyCode key, bool down) {
  note({.key = key, .button = std::nullopt}, down);
}

void noteButton(const MouseButtonEventTypes& button, bool down) {
  note({.key = 0, .button = button}, down);
}

void letGoOfInput() {
  const std::lock_guard lock(mutex);
  for (; !held.empty(); held.pop_back()) {
    const Owned<CGEventRef> event = releaseOf(held.back());
    if (!event) continue;
    if (!held.back().button) CGEventSetFlags(event.get(), {});
    CGEventPost(kCGHIDEventTap, event.get());
  }
}

}  // namespace tapdeck
