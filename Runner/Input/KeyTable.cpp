#include "Runner/Input/KeyTable.h"

#include <string>
#include <unordered_map>

#include "Runner/Input/KeyRows.h"
#include "Runner/Input/UnicodeText.h"

namespace tapdeck {
namespace {

struct ModifierRow {
  std::string_view name;
  CGEventFlags flag;
};

constexpr ModifierRow kModifierRows[] = {
    {"shift", kCGEventFlagMaskShift},         {"control", kCGEventFlagMaskControl},
    {"ctrl", kCGEventFlagMaskControl},        {"option", kCGEventFlagMaskAlternate},
    {"alt", kCGEventFlagMaskAlternate},       {"command", kCGEventFlagMaskCommand},
    {"cmd", kCGEventFlagMaskCommand},         {"win", kCGEventFlagMaskCommand},
    {"capslock", kCGEventFlagMaskAlphaShift},
};

const std::unordered_map<std::string_view, CGKeyCode>& keyCodes() {
  static const auto* codes = [] {
    auto* map = new std::unordered_map<std::string_view, CGKeyCode>;
    for (const KeyRow& row : kKeyRows) map->emplace(row.name, row.code);
    return map;
  }();
  return *codes;
}

}  // namespace

CGKeyCode keyCodeForName(std::string_view name) {
  const auto found = keyCodes().find(lowercased(name));
  return found != keyCodes().end() ? found->second : kNoKeyCode;
}

std::optional<CGEventFlags> modifierFlagForName(std::string_view name) {
  const std::string lower = lowercased(name);
  for (const ModifierRow& row : kModifierRows) {
    if (row.name == lower) return row.flag;
  }
  return std::nullopt;
}

}  // namespace tapdeck
