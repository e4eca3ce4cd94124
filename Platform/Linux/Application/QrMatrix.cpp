#include "Platform/Linux/Application/QrMatrix.h"

#include <qrencode.h>

#include <memory>

namespace tapdeck {
namespace {

struct FreeCode {
  void operator()(QRcode* code) const { QRcode_free(code); }
};

}  // namespace

bool QrMatrix::isDark(int column, int row) const {
  if (column < 0 || row < 0 || column >= size || row >= size) return false;
  return dark[static_cast<std::size_t>(row) * static_cast<std::size_t>(size) +
              static_cast<std::size_t>(column)];
}

QrMatrix qrMatrixOf(const std::string& text) {
  const std::unique_ptr<QRcode, FreeCode> code(
      QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M));
  QrMatrix matrix;
  if (!code) return matrix;
  matrix.size = code->width;
  const auto side = static_cast<std::size_t>(matrix.size);
  for (std::size_t i = 0; i < side * side; ++i) matrix.dark.push_back((code->data[i] & 1) != 0);
  return matrix;
}

std::string qrLines(const std::string& text) {
  const QrMatrix matrix = qrMatrixOf(text);
  if (matrix.size == 0) return "";
  constexpr const char* blackOnWhite = "\x1b[30;107m";
  constexpr const char* usual = "\x1b[0m\n";
  std::string lines;
  for (int row = -QrMatrix::kQuietZone; row < matrix.size + QrMatrix::kQuietZone; row += 2) {
    lines += blackOnWhite;
    for (int column = -QrMatrix::kQuietZone; column < matrix.size + QrMatrix::kQuietZone;
         ++column) {
      const bool upper = matrix.isDark(column, row);
      const bool lower = matrix.isDark(column, row + 1);
      lines += upper ? (lower ? "█" : "▀") : (lower ? "▄" : " ");
    }
    lines += usual;
  }
  return lines;
}

}  // namespace tapdeck
