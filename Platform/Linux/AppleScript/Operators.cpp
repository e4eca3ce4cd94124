#include "Platform/Linux/AppleScript/Operators.h"

#include <glib.h>

#include <cmath>
#include <memory>
#include <string>
#include <utility>

namespace tapdeck::applescript {
namespace {

/// Integers beyond are reals.
constexpr double kLargestInteger = 536870911;
/// A script may double a text as often as it has lines.
constexpr size_t kLongestText = size_t{16} << 20;

using Text = std::unique_ptr<char, decltype(&g_free)>;

/// Texts are compared without regard to case.
std::string folded(const std::string& text) {
  const Text normal(g_utf8_normalize(text.c_str(), -1, G_NORMALIZE_DEFAULT), g_free);
  if (normal == nullptr) return text;
  const Text folded(g_utf8_casefold(normal.get(), -1), g_free);
  return folded.get();
}

bool isNumber(const Value& value) {
  return value.getIf<int64_t>() != nullptr || value.getIf<double>() != nullptr;
}

bool areEqual(const Value& left, const Value& right) {
  if (isNumber(left) && isNumber(right)) return asReal(left) == asReal(right);
  const auto* text = left.getIf<std::string>();
  const auto* other = right.getIf<std::string>();
  if (text != nullptr && other != nullptr) return folded(*text) == folded(*other);
  return left == right;
}

/// Below 0 when the left one comes first; the left one decides whether it is about texts.
int order(const Value& left, const Value& right) {
  if (left.getIf<std::string>() != nullptr) {
    return folded(asText(left)).compare(folded(asText(right)));
  }
  const double a = asReal(left);
  const double b = asReal(right);
  return a < b ? -1 : a > b ? 1 : 0;
}

Value concatenate(const Value& left, const Value& right) {
  std::string text = asText(left);
  text += asText(right);
  if (text.size() > kLongestText) throw ScriptError{kOutOfMemory, "Out of memory.", ""};
  return text;
}

/// An integer where both were ones and it fits.
Value number(double result, bool isInteger) {
  if (isInteger && std::abs(result) <= kLargestInteger) return static_cast<int64_t>(result);
  return result;
}

Value calculate(BinaryOperator operation, const Value& left, const Value& right) {
  const Value a = coerce(left, Type::number);
  const Value b = coerce(right, Type::number);
  const bool areIntegers = a.getIf<int64_t>() != nullptr && b.getIf<int64_t>() != nullptr;
  const double x = asReal(a);
  const double y = asReal(b);
  const auto divisor = [y, &left] {
    if (y == 0) {
      throw ScriptError{kDivisionByZero, "Can’t divide " + quoted(left) + " by zero.", ""};
    }
    return y;
  };
  switch (operation) {
    case BinaryOperator::add:
      return number(x + y, areIntegers);
    case BinaryOperator::subtract:
      return number(x - y, areIntegers);
    case BinaryOperator::multiply:
      return number(x * y, areIntegers);
    case BinaryOperator::divide:
      return x / divisor();
    case BinaryOperator::wholeDivide:
      return number(std::trunc(x / divisor()), true);
    case BinaryOperator::remainder:
      return number(std::fmod(x, divisor()), areIntegers);
    default:
      return std::pow(x, y);
  }
}

}  // namespace

Value operate(BinaryOperator operation, const Value& left, const Value& right) {
  using enum BinaryOperator;
  switch (operation) {
    case concatenate:
      return applescript::concatenate(left, right);
    case equal:
      return areEqual(left, right);
    case notEqual:
      return !areEqual(left, right);
    case less:
      return order(left, right) < 0;
    case lessOrEqual:
      return order(left, right) <= 0;
    case greater:
      return order(left, right) > 0;
    case greaterOrEqual:
      return order(left, right) >= 0;
    case contains:
      return folded(asText(left)).find(folded(asText(right))) != std::string::npos;
    case startsWith:
      return folded(asText(left)).starts_with(folded(asText(right)));
    case endsWith:
      return folded(asText(left)).ends_with(folded(asText(right)));
    default:
      return calculate(operation, left, right);
  }
}

Value negated(const Value& number) {
  return calculate(BinaryOperator::subtract, int64_t{0}, number);
}

}  // namespace tapdeck::applescript
