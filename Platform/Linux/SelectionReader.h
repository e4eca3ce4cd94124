#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace tapdeck::platform {

/// The longest text of a selection that is read whole, in bytes.
inline constexpr std::size_t kMaxSelectionText = std::size_t{16} << 20;

/// How long the owner of a selection may take.
struct SelectionPatience {
  /// Without any sign of the owner.
  std::chrono::milliseconds silence{1000};
  /// In all, while it keeps sending.
  std::chrono::milliseconds total{5000};
};

/// Asks another client for the text of a selection such as "CLIPBOARD", over a connection of its
/// own to `display`, so that no event of the process is handled meanwhile. Blocks, but never past
/// the patience: an owner that does not answer, stops in the middle or dies has no text. UTF-8;
/// bytes that are none are replaced. A text longer than kMaxSelectionText is cut somewhere behind
/// that, so that its length tells. The process must not own the selection itself, since it could
/// not answer. Any thread. Follows the X Consortium's ICCCM 2, incremental transfers included.
std::optional<std::string> readSelection(const std::string& display, const std::string& selection,
                                         const SelectionPatience& patience = {});

}  // namespace tapdeck::platform
