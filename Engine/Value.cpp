#include "Engine/Value.h"

#include <algorithm>

namespace tapdeck {

ValueMap::ValueMap() = default;

ValueMap::ValueMap(std::initializer_list<std::pair<std::string_view, Value>> entries) {
  _entries.reserve(entries.size());
  for (const auto& [key, value] : entries) set(Value(key), value);
}

ValueMap ValueMap::ofDistinctKeys(std::vector<Entry> entries) {
  ValueMap map;
  map._entries = std::move(entries);
  return map;
}

void ValueMap::set(Value key, Value value) {
  const auto same = [&](const Entry& entry) { return entry.first == key; };
  const auto found = std::find_if(_entries.begin(), _entries.end(), same);
  if (found != _entries.end()) {
    found->second = std::move(value);
  } else {
    _entries.emplace_back(std::move(key), std::move(value));
  }
}

const Value* ValueMap::find(std::string_view key) const {
  for (const auto& [candidate, value] : _entries) {
    const auto* text = candidate.getIf<std::string>();
    if (text != nullptr && *text == key) return &value;
  }
  return nullptr;
}

bool ValueMap::hasOnlyStringKeys() const {
  return std::all_of(_entries.begin(), _entries.end(), [](const Entry& entry) {
    return entry.first.getIf<std::string>() != nullptr;
  });
}

size_t ValueMap::size() const {
  return _entries.size();
}

bool ValueMap::empty() const {
  return _entries.empty();
}

std::vector<ValueMap::Entry>::const_iterator ValueMap::begin() const {
  return _entries.begin();
}

std::vector<ValueMap::Entry>::const_iterator ValueMap::end() const {
  return _entries.end();
}

bool operator==(const ValueMap& a, const ValueMap& b) {
  if (a.size() != b.size()) return false;
  return std::all_of(a.begin(), a.end(), [&](const ValueMap::Entry& entry) {
    return std::find(b.begin(), b.end(), entry) != b.end();
  });
}

bool operator==(const Value& a, const Value& b) {
  return a._data == b._data;
}

}  // namespace tapdeck
