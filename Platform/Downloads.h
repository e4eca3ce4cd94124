#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "Platform/Workspace.h"

namespace tapdeck::platform {

/// What a data task hands over: the bytes that arrived, whatever the server's status; absent when
/// there are none to hand over.
using DataCompletion = std::function<void(std::optional<std::vector<uint8_t>> data)>;

/// NSURLSession.sharedSession dataTaskWithRequest, resumed, for a request of the default cache
/// policy whose timeoutInterval, 60 s at first, is set to this many seconds. Returns at once; calls
/// `completed` once, on another thread. Any thread.
void startDataTask(const URL& url, double timeoutInterval, DataCompletion completed);

}  // namespace tapdeck::platform
