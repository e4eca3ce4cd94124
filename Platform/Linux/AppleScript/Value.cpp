#include "Platform/Linux/AppleScript/Value.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace tapdeck::applescript {
namespace {

/// Reals are written with an exponent from here on, and up to its counterpart.
constexpr double kLongReal = 10000;
constexpr double kShortReal = 0.0001;

std::string_view nameOf(Type type) {
  switch (type) {
    case Type::text:
      return "text";
    case Type::integer:
      return "integer";
    case Type::real:
      return "real";
    case Type::number:
      return "number";
    case Type::boolean:
      return "boolean";
  }
  return "";
}

template <typename... Form>
std::string written(double number, Form... form) {
  std::array<char, 400> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, form...).ptr;
  return {text.data(), end};
}

/// Such as 42.0, 0.5, 1.2345E+4: the shortest that reads as the same number.
std::string textOf(double number) {
  if (!std::isfinite(number)) return std::isnan(number) ? "NAN" : number > 0 ? "INF" : "-INF";
  const double size = std::abs(number);
  if (size == 0 || (size > kShortReal && size < kLongReal)) {
    std::string text = written(number, std::chars_format::fixed);
    return text.find('.') == std::string::npos ? text + ".0" : text;
  }
  const std::string text = written(number, std::chars_format::scientific);
  const size_t exponent = text.find('e');
  std::string mantissa = text.substr(0, exponent);
  if (mantissa.find('.') == std::string::npos) mantissa += ".0";
  const size_t digits = text.find_first_not_of('0', exponent + 2);
  return mantissa + "E" + text[exponent + 1] + text.substr(digits);
}

std::string textOf(const Record& record) {
  std::string text;
  for (const auto& [property, value] : record.fields) {
    if (!text.empty()) text += ", ";
    text += std::string(wordsOf(property)) + ":" + display(value);
  }
  return text;
}

std::string textOf(const Object& object) {
  const std::string application = "application \"" + std::string(nameOf(object.application)) + "\"";
  switch (object.kind) {
    case Object::Kind::application:
      return application;
    case Object::Kind::track:
      return (object.application == Application::vlc ? "current item of " : "current track of ") +
             application;
    case Object::Kind::artwork:
      return "artwork 1 of current track of " + application;
  }
  return "";
}

std::string textOf(const Data& data) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "«data tdta";
  for (const char byte : data.bytes) {
    const auto bits = static_cast<unsigned char>(byte);
    text += {kDigits[bits >> 4], kDigits[bits & 15]};
  }
  return text + "»";
}

struct Display {
  std::string operator()(Nothing) const { return ""; }
  std::string operator()(Missing) const { return "missing value"; }
  std::string operator()(bool truth) const { return truth ? "true" : "false"; }
  std::string operator()(int64_t number) const { return std::to_string(number); }
  std::string operator()(double number) const { return textOf(number); }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(Constant constant) const { return std::string(wordsOf(constant)); }
  std::string operator()(const File& file) const { return file.path; }
  template <typename Other>
  std::string operator()(const Other& other) const {
    return textOf(other);
  }
};

[[noreturn]] void fail(const Value& value, Type type) {
  throw ScriptError{kCannotCoerce,
                    "Can’t make " + quoted(value) + " into type " + std::string(nameOf(type)) + ".",
                    ""};
}

template <typename Number>
std::optional<Number> read(std::string_view text) {
  Number number{};
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isWhole = error == std::errc() && end == text.data() + text.size();
  return isWhole ? std::optional(number) : std::nullopt;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const size_t start = text.find_first_not_of(kBlank);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlank) + 1 - start);
}

Value toNumber(const Value& value, Type type) {
  if (value.getIf<int64_t>() != nullptr || value.getIf<double>() != nullptr) return value;
  if (const auto* text = value.getIf<std::string>()) {
    if (const auto integer = read<int64_t>(trimmed(*text))) return *integer;
    if (const auto real = read<double>(trimmed(*text))) return *real;
  }
  fail(value, type);
}

}  // namespace

bool Record::operator==(const Record&) const = default;

std::string display(const Value& value) {
  return std::visit(Display(), value);
}

std::string quoted(const Value& value) {
  return value.getIf<std::string>() != nullptr ? "\"" + display(value) + "\"" : display(value);
}

Value coerce(const Value& value, Type type) {
  switch (type) {
    case Type::text:
      return asText(value);
    case Type::integer:
      return asInteger(value);
    case Type::real:
      return asReal(value);
    case Type::number:
      return toNumber(value, Type::number);
    case Type::boolean:
      return asBoolean(value);
  }
  return value;
}

std::string asText(const Value& value) {
  const bool hasText = value.getIf<Nothing>() == nullptr && value.getIf<Data>() == nullptr &&
                       value.getIf<Object>() == nullptr && value.getIf<Record>() == nullptr;
  if (!hasText) fail(value, Type::text);
  return display(value);
}

double asReal(const Value& value) {
  const Value number = toNumber(value, Type::real);
  const auto* integer = number.getIf<int64_t>();
  return integer != nullptr ? static_cast<double>(*integer) : *number.getIf<double>();
}

int64_t asInteger(const Value& value) {
  constexpr double kBound = 9007199254740992.0;  // integers are exact in a real up to here
  const Value number = toNumber(value, Type::integer);
  if (const auto* integer = number.getIf<int64_t>()) return *integer;
  const double rounded = std::nearbyint(*number.getIf<double>());
  if (!(std::abs(rounded) <= kBound)) fail(value, Type::integer);
  return static_cast<int64_t>(rounded);
}

bool asBoolean(const Value& value) {
  if (const auto* truth = value.getIf<bool>()) return *truth;
  if (const auto* text = value.getIf<std::string>()) {
    if (*text == "true" || *text == "false") return *text == "true";
  }
  fail(value, Type::boolean);
}

}  // namespace tapdeck::applescript
