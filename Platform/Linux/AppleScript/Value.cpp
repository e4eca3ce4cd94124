#include "Platform/Linux/AppleScript/Value.h"

#include <array>
#include <charconv>
#include <cmath>

namespace tapdeck::applescript {
namespace {

/// Reals are written with an exponent from this magnitude on, and up to its reciprocal.
constexpr double kLongReal = 10000;
constexpr double kShortReal = 0.0001;

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

[[noreturn]] void fail(const Value& value, const std::string& kind) {
  throw ScriptError{kCannotCoerce, "Can’t make " + quoted(value) + " into type " + kind + ".", ""};
}

}  // namespace

bool Record::operator==(const Record&) const = default;

std::string display(const Value& value) {
  return std::visit(Display(), value);
}

std::string quoted(const Value& value) {
  return value.getIf<std::string>() != nullptr ? "\"" + display(value) + "\"" : display(value);
}

std::string asText(const Value& value) {
  const bool hasText = value.getIf<Nothing>() == nullptr && value.getIf<Data>() == nullptr &&
                       value.getIf<Object>() == nullptr && value.getIf<Record>() == nullptr;
  if (!hasText) fail(value, "text");
  return display(value);
}

double asReal(const Value& value) {
  if (const auto* integer = value.getIf<int64_t>()) return static_cast<double>(*integer);
  if (const auto* real = value.getIf<double>()) return *real;
  fail(value, "number");
}

int64_t asInteger(const Value& value) {
  constexpr double kBound = 9007199254740992.0;  // integers are exact in a real up to here
  const double rounded = std::nearbyint(asReal(value));
  if (!(std::abs(rounded) <= kBound)) fail(value, "integer");
  return static_cast<int64_t>(rounded);
}

bool asBoolean(const Value& value) {
  if (const auto* truth = value.getIf<bool>()) return *truth;
  fail(value, "boolean");
}

}  // namespace tapdeck::applescript
