#include "Platform/macOS/HeldInput/HeldInput.h"

#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <vector>

#include "Platform/HeldInput.h"

namespace tapdeck::platform {
namespace {

struct Button {
  CGMouseButton number;
  CGEventType release;
};

/// A key or, when there is one, a button.
struct Held {
  CGKeyCode key = 0;
  std::optional<Button> button;

  bool is(const Held& other) const {
    if (button.has_value() != other.button.has_value()) return false;
    return button ? button->number == other.button->number : key == other.key;
  }
};

struct Releaser {
  void operator()(CGEventRef event) const { CFRelease(event); }
};
using Event = std::unique_ptr<std::remove_pointer_t<CGEventRef>, Releaser>;

// a process that stops may do so on any thread
std::mutex mutex;
std::vector<Held> held;

void note(const Held& what, bool down) {
  const std::lock_guard lock(mutex);
  std::erase_if(held, [&](const Held& other) { return what.is(other); });
  if (down) held.push_back(what);
}

Event releaseOf(const Held& what) {
  if (!what.button) return Event(CGEventCreateKeyboardEvent(nullptr, what.key, false));
  const Event now(CGEventCreate(nullptr));
  if (!now) return nullptr;
  return Event(CGEventCreateMouseEvent(nullptr, what.button->release, CGEventGetLocation(now.get()),
                                       what.button->number));
}

}  // namespace

void noteKey(CGKeyCode key, bool down) {
  note({.key = key, .button = std::nullopt}, down);
}

void noteButton(CGMouseButton button, CGEventType release, bool down) {
  note({.key = 0, .button = Button{button, release}}, down);
}

void letGoOfInput() {
  const std::lock_guard lock(mutex);
  for (; !held.empty(); held.pop_back()) {
    const Event event = releaseOf(held.back());
    if (!event) continue;
    if (!held.back().button) CGEventSetFlags(event.get(), {});
    CGEventPost(kCGHIDEventTap, event.get());
  }
}

}  // namespace tapdeck::platform
