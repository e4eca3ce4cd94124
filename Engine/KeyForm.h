#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Engine/StandardFormat.h"
#include "Engine/Value.h"

namespace tapdeck::codec {

/// A map key as bytes that are the same for two keys exactly when the keys are equal, so that keys
/// can be sorted: finding doubles by comparing every key with every other would let a hostile
/// message of one megabyte keep the decoder busy for minutes.
///
/// Equal means what Value's == means: -0.0 is 0.0, a map's entries have no order (they are to be
/// appended sorted by their keys' forms), and a NaN equals nothing, for which it takes a new number
/// from `serial` each time.
class KeyForm {
 public:
  explicit KeyForm(uint64_t& serial);

  /// Appends a value other than a list or map.
  void append(const Value& leaf);
  /// Announces a list's elements or a map's entries; they are appended next.
  void beginList(size_t count);
  void beginMap(size_t count);
  void append(std::string_view finishedForm);
  std::string take();

 private:
  void tag(Tag tag);
  void size(size_t size);
  template <typename T>
  void number(T value);
  template <typename T>
  void real(T value);

  void content(std::monostate);
  void content(bool value);
  void content(int64_t value);
  void content(double value);
  void content(const std::string& value);
  void content(const Value::Bytes& value);
  template <typename T>
  void content(const std::vector<T>& list);
  void content(const Value::List&);
  void content(const Value::Map&);

  std::string _bytes;
  uint64_t& _serial;
};

}  // namespace tapdeck::codec
