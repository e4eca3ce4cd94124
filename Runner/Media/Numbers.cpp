#include "Runner/Media/Numbers.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

namespace tapdeck {
namespace {

/// The digits of a positive number, "0." before them and times ten to the power of `exponent`.
struct Decimal {
  std::string digits;
  int exponent = 0;
};

Decimal shortestDecimal(double value) {
  char text[40];
  for (int afterPoint = 0; afterPoint < std::numeric_limits<double>::max_digits10; ++afterPoint) {
    // both functions go by the process's locale, and so agree about the point
    std::snprintf(text, sizeof text, "%.*e", afterPoint, value);
    if (std::strtod(text, nullptr) == value) break;
  }
  const std::string_view written(text);
  const size_t e = written.find('e');
  Decimal decimal;
  for (const char character : written.substr(0, e)) {
    if (character >= '0' && character <= '9') decimal.digits += character;
  }
  decimal.exponent = static_cast<int>(std::strtol(text + e + 1, nullptr, 10)) + 1;
  return decimal;
}

std::string withExponent(const Decimal& decimal) {
  std::string text = decimal.digits.substr(0, 1);
  if (decimal.digits.size() > 1) text += "." + decimal.digits.substr(1);
  char exponent[16];
  std::snprintf(exponent, sizeof exponent, "e%+03d", decimal.exponent - 1);
  return text + exponent;
}

std::string withoutExponent(const Decimal& decimal) {
  if (decimal.exponent <= 0) {
    return "0." + std::string(static_cast<size_t>(-decimal.exponent), '0') + decimal.digits;
  }
  const auto whole = static_cast<size_t>(decimal.exponent);
  if (decimal.digits.size() <= whole) {
    return decimal.digits + std::string(whole - decimal.digits.size(), '0') + ".0";
  }
  return decimal.digits.substr(0, whole) + "." + decimal.digits.substr(whole);
}

std::string positiveDescription(double value) {
  constexpr double mostWithoutExponent = 9007199254740992.0;  // up to it every integer is a double
  constexpr double leastWithoutExponent = 0.0001;
  if (value == 0) return "0.0";
  if (std::isinf(value)) return "inf";
  const Decimal decimal = shortestDecimal(value);
  const bool isPlain = value >= leastWithoutExponent && value <= mostWithoutExponent;
  return isPlain ? withoutExponent(decimal) : withExponent(decimal);
}

size_t digitsAt(std::string_view text, size_t start) {
  const size_t end = text.find_first_not_of("0123456789", start);
  return (end == std::string_view::npos ? text.size() : end) - start;
}

bool hasSignAt(std::string_view text, size_t place) {
  return place < text.size() && (text[place] == '+' || text[place] == '-');
}

/// Sign, digits with or without a point, exponent: nothing else is read as a number.
bool isDecimalNumber(std::string_view text) {
  size_t place = hasSignAt(text, 0) ? 1 : 0;
  size_t digits = digitsAt(text, place);
  place += digits;
  if (place < text.size() && text[place] == '.') {
    const size_t afterPoint = digitsAt(text, place + 1);
    digits += afterPoint;
    place += 1 + afterPoint;
  }
  if (digits == 0) return false;
  if (place < text.size() && (text[place] == 'e' || text[place] == 'E')) {
    ++place;
    if (hasSignAt(text, place)) ++place;
    const size_t exponent = digitsAt(text, place);
    if (exponent == 0) return false;
    place += exponent;
  }
  return place == text.size();
}

}  // namespace

std::string descriptionOf(double value) {
  if (std::isnan(value)) return "nan";
  return (std::signbit(value) ? "-" : "") + positiveDescription(std::fabs(value));
}

std::optional<double> decimalNumber(std::string_view text) {
  if (!isDecimalNumber(text)) return std::nullopt;
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  double value = 0;
  stream >> value;
  // a number too small for a double is a failure to some streams, and as good as 0
  return std::isfinite(value) && std::fabs(value) < std::numeric_limits<double>::max()
             ? std::optional(value)
             : std::nullopt;
}

std::optional<int64_t> decimalInteger(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

}  // namespace tapdeck
