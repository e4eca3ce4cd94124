#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace tapdeck::platform {

/// The longest text of a selection that is read whole, in bytes.
inline constexpr std::size_t kMaxSelectionText = std::size_t{16} << 20;

/// How long the owner of a selection may take.
struct SelectionTimeouts {
  /// Without any sign of the owner.
  std::chrono::milliseconds silence{1000};
  /// In all, while it keeps sending.
  std::chrono::milliseconds total{5000};
};

/// The text of a selection such as "CLIPBOARD" that another client owns, in UTF-8, invalid bytes
/// replaced. Uses a connection of its own to `display`, so that no event of the process is handled
/// meanwhile. Blocks, for as long as `timeouts` allow; absent when the owner does not
/// reply, stops in the middle or ends. The process must not own the selection itself, since it
/// cannot reply while this blocks. Any thread. Follows the X Consortium's ICCCM 2, incremental
/// transfers included. A text longer than kMaxSelectionText is cut somewhere behind that, so that
/// its length tells.
std::optional<std::string> readSelection(const std::string& display, const std::string& selection,
                                         const SelectionTimeouts& timeouts = {});

}  // namespace tapdeck::platform
