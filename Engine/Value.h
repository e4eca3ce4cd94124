#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Engine/SharedBytes.h"

namespace tapdeck {

class Value;

/// A map in the order in which its entries were sent; a key may be any value. Built so that no key
/// stands twice (`set` replaces). Equality ignores the order of the entries.
class ValueMap {
 public:
  using Entry = std::pair<Value, Value>;
  ValueMap();
  ValueMap(std::initializer_list<std::pair<std::string_view, Value>> entries);
  /// A map of entries no two of whose keys are equal, which the caller vouches for: nothing checks
  /// it. For large maps, as `set` looks at every entry each time.
  static ValueMap ofDistinctKeys(std::vector<Entry> entries);

  /// Adds the entry, or replaces the value of an equal key in its place.
  void set(Value key, Value value);
  /// The value under the string key, or null when there is none. Owned by the map.
  const Value* find(std::string_view key) const;
  /// True when every key is a string (an empty map included).
  bool hasOnlyStringKeys() const;

  size_t size() const;
  bool empty() const;
  std::vector<Entry>::const_iterator begin() const;
  std::vector<Entry>::const_iterator end() const;
  friend bool operator==(const ValueMap& a, const ValueMap& b);

 private:
  std::vector<Entry> _entries;
};

/// One value of the UI engine's standard message codec: what arguments and replies are made of.
/// A plain value type without a thread of its own; strings are UTF-8.
class Value {
 public:
  using Bytes = SharedBytes;
  using Int32List = std::vector<int32_t>;
  using Int64List = std::vector<int64_t>;
  using Float32List = std::vector<float>;
  using Float64List = std::vector<double>;
  using List = std::vector<Value>;
  using Map = ValueMap;

  /// Null.
  Value() = default;
  explicit Value(std::nullptr_t) {}
  explicit Value(bool value) : _data(value) {}
  explicit Value(int32_t value) : _data(int64_t{value}) {}
  explicit Value(int64_t value) : _data(value) {}
  explicit Value(double value) : _data(value) {}
  explicit Value(const char* value) : _data(std::string(value)) {}
  explicit Value(std::string_view value) : _data(std::string(value)) {}
  explicit Value(std::string value) : _data(std::move(value)) {}
  explicit Value(Bytes value) : _data(std::move(value)) {}
  explicit Value(Int32List value) : _data(std::move(value)) {}
  explicit Value(Int64List value) : _data(std::move(value)) {}
  explicit Value(Float32List value) : _data(std::move(value)) {}
  explicit Value(Float64List value) : _data(std::move(value)) {}
  explicit Value(List value) : _data(std::move(value)) {}
  explicit Value(Map value) : _data(std::move(value)) {}
  /// A pointer of any other kind is no value; without this it would become a boolean.
  template <typename T>
  explicit Value(const T*) = delete;

  bool isNull() const { return std::holds_alternative<std::monostate>(_data); }
  /// The content when it is of exactly the asked kind, else null: no conversion takes place.
  /// The pointer is good while the value lives unchanged.
  template <typename T>
  const T* getIf() const {
    return std::get_if<T>(&_data);
  }
  template <typename Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    return std::visit(std::forward<Visitor>(visitor), _data);
  }

  /// Same kind and same content; an integer never equals a floating-point number, NaN equals NaN
  /// nowhere, as IEEE 754 has it.
  friend bool operator==(const Value& a, const Value& b);

 private:
  std::variant<std::monostate, bool, int64_t, double, std::string, Bytes, Int32List, Int64List,
               Float32List, Float64List, List, Map>
      _data;
};

}  // namespace tapdeck
