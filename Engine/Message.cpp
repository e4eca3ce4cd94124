#include "Engine/Message.h"

#include <utility>

namespace tapdeck::codec {

void Message::append(std::span<const uint8_t> bytes) {
  _copied.insert(_copied.end(), bytes.begin(), bytes.end());
}

void Message::share(const SharedBytes& bytes) {
  _shared.push_back({_copied.size(), bytes});
  _sharedSize += bytes.size();
}

std::vector<std::span<const uint8_t>> Message::pieces() const {
  std::vector<std::span<const uint8_t>> pieces;
  const std::span copied(_copied);
  size_t place = 0;
  const auto addCopied = [&](size_t end) {
    if (end > place) pieces.push_back(copied.subspan(place, end - place));
    place = end;
  };
  for (const Insertion& insertion : _shared) {
    addCopied(insertion.place);
    pieces.push_back(insertion.bytes);
  }
  addCopied(copied.size());
  return pieces;
}

std::vector<uint8_t> Message::joined() && {
  if (_shared.empty()) return std::move(_copied);
  std::vector<uint8_t> bytes;
  bytes.reserve(size());
  for (const auto piece : pieces()) bytes.insert(bytes.end(), piece.begin(), piece.end());
  return bytes;
}

}  // namespace tapdeck::codec
