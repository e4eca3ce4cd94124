#include "Platform/Linux/AppleScript/Operators.h"

#include <cmath>
#include <string>

namespace tapdeck::applescript {
namespace {

/// An integer when both operands are integers and the result fits, else a real.
Value number(double result, const Value& left, const Value& right) {
  const bool areIntegers = left.getIf<int64_t>() != nullptr && right.getIf<int64_t>() != nullptr;
  if (areIntegers && std::abs(result) <= kMaxInteger) return static_cast<int64_t>(result);
  return result;
}

Value concatenate(const Value& left, const Value& right) {
  // each line of a script can double the length of a text
  constexpr size_t kMaxText = size_t{16} << 20;
  std::string text = asText(left);
  text += asText(right);
  if (text.size() > kMaxText) throw ScriptError{kOutOfMemory, "Out of memory.", ""};
  return text;
}

}  // namespace

Value operate(BinaryOperator operation, const Value& left, const Value& right) {
  switch (operation) {
    case BinaryOperator::add:
      return number(asReal(left) + asReal(right), left, right);
    case BinaryOperator::subtract:
      return number(asReal(left) - asReal(right), left, right);
    case BinaryOperator::concatenate:
      return concatenate(left, right);
    case BinaryOperator::equal:
      return left == right;
  }
  return Missing();
}

}  // namespace tapdeck::applescript
