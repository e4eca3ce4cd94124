#pragma once

#include <functional>
#include <vector>

namespace tapdeck::recording {

/// What the recording platform was handed to run later.
struct Queued {
  std::vector<std::function<void()>> global;
  std::vector<std::function<void()>> main;
  std::vector<std::function<void()>> screenObservers;
};

Queued& queued();

}  // namespace tapdeck::recording
