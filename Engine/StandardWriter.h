#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Engine/StandardFormat.h"
#include "Engine/Value.h"

namespace tapdeck::codec {

static_assert(std::endian::native == std::endian::little,
              "numbers are copied as they lie in memory, and the wire is little-endian");

/// Writes values one after another into one message; alignment counts from the message's start.
class Writer {
 public:
  void byte(uint8_t value);
  /// Nested values are walked, not recursed into, so that depth costs no stack. Throws
  /// std::length_error for a string or list of 4 Gi elements or more, which has no encoding.
  void value(const Value& root);
  std::vector<uint8_t> take();

 private:
  void tag(Tag tag);
  void size(size_t size);
  void align(size_t to);
  void raw(const void* data, size_t count);
  template <typename T>
  void number(T value);
  template <typename T>
  void typedList(Tag tag, const std::vector<T>& list);

  void content(std::monostate);
  void content(bool value);
  void content(int64_t value);
  void content(double value);
  void content(const std::string& value);
  void content(const Value::Bytes& value);
  void content(const Value::Int32List& value);
  void content(const Value::Int64List& value);
  void content(const Value::Float32List& value);
  void content(const Value::Float64List& value);
  void content(const Value::List& value);
  void content(const Value::Map& value);

  std::vector<uint8_t> _bytes;
  /// What is still to be written, the next one last.
  std::vector<const Value*> _pending;
};

}  // namespace tapdeck::codec
