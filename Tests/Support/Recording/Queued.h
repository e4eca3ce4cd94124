#pragma once

#include <functional>
#include <vector>

namespace tapdeck::recording {

/// What the recording platform was handed to run later.
struct Queued {
  std::vector<std::function<void()>> global;
  std::vector<std::function<void()>> main;
  std::vector<std::function<void()>> screenObservers;
  std::vector<std::function<void()>> childEnds;
  std::vector<std::function<void()>> downloads;
};

Queued& queued();

}  // namespace tapdeck::recording
