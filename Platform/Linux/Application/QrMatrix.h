#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tapdeck {

/// A text's QR code, without the quiet zone around it.
struct QrMatrix {
  /// Modules that must stay light around the code.
  static constexpr int kQuietZone = 4;

  /// Modules per side; 0 when the text is too long for a code.
  int size = 0;
  /// Row by row.
  std::vector<bool> dark;

  /// False outside of the code.
  bool isDark(int column, int row) const;
};

QrMatrix qrMatrixOf(const std::string& text);

/// The code for a terminal, dark on light with its quiet zone: lines of half blocks, each line two
/// rows, ending with the terminal's own colours. Empty when the text is too long.
std::string qrLines(const std::string& text);

}  // namespace tapdeck
