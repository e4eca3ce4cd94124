#include "Runner/Arguments.h"

#include <cmath>

#include "Runner/CheckedConversion.h"

namespace tapdeck {
namespace {

const ValueMap* stringKeyedMap(const Value& value) {
  const auto* map = value.getIf<ValueMap>();
  return map != nullptr && map->hasOnlyStringKeys() ? map : nullptr;
}

std::optional<int64_t> exactInteger(double value) {
  if (!fitsInt64(value) || std::trunc(value) != value) return std::nullopt;
  return static_cast<int64_t>(value);
}

std::optional<double> exactDouble(int64_t value) {
  const auto converted = static_cast<double>(value);
  if (exactInteger(converted) != value) return std::nullopt;
  return converted;
}

}  // namespace

Arguments::Arguments(const Value& arguments) : _map(stringKeyedMap(arguments)) {}

const Value* Arguments::find(std::string_view key) const {
  return _map != nullptr ? _map->find(key) : nullptr;
}

std::optional<std::string> Arguments::string(std::string_view key) const {
  const Value* value = find(key);
  const auto* text = value != nullptr ? value->getIf<std::string>() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<double> Arguments::number(std::string_view key) const {
  const Value* value = find(key);
  if (value == nullptr) return std::nullopt;
  if (const auto* floating = value->getIf<double>()) return *floating;
  if (const auto* whole = value->getIf<int64_t>()) return exactDouble(*whole);
  return std::nullopt;
}

std::optional<int64_t> Arguments::integer(std::string_view key) const {
  const Value* value = find(key);
  if (value == nullptr) return std::nullopt;
  if (const auto* whole = value->getIf<int64_t>()) return *whole;
  if (const auto* floating = value->getIf<double>()) return exactInteger(*floating);
  return std::nullopt;
}

std::optional<bool> Arguments::boolean(std::string_view key) const {
  const Value* value = find(key);
  const auto* flag = value != nullptr ? value->getIf<bool>() : nullptr;
  if (flag != nullptr) return *flag;
  const std::optional<int64_t> whole = integer(key);
  return whole == 0 || whole == 1 ? std::optional(whole == 1) : std::nullopt;
}

}  // namespace tapdeck
