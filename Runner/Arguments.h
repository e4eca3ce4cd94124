#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Engine/Value.h"

namespace tapdeck {

/// Reads a method call's arguments by the rules that all methods share. Arguments that are not a
/// map with string keys count as an empty map; a key that is absent, null or of another kind counts
/// as missing. Does not own the value, which must outlive it.
class Arguments {
 public:
  explicit Arguments(const Value& arguments);

  /// A string.
  std::optional<std::string> string(std::string_view key) const;
  /// A number that a double represents exactly; a boolean is no number.
  std::optional<double> number(std::string_view key) const;
  /// A number that is exactly a signed 64-bit integer; 800.0 is one.
  std::optional<int64_t> integer(std::string_view key) const;
  /// A boolean, or a number that is exactly 0 or 1.
  std::optional<bool> boolean(std::string_view key) const;

 private:
  const Value* find(std::string_view key) const;

  const ValueMap* _map;
};

}  // namespace tapdeck
