#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "Engine/Message.h"
#include "Engine/MethodCall.h"
#include "Engine/Reply.h"
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
  /// Begins a list; its elements are what is written next.
  void list(size_t size);
  void methodCall(const MethodCall& call);
  /// Of a value or an error.
  void envelope(const Outcome& outcome);
  /// Writes a byte array whose bytes are a message of their own, written by `write` in its place:
  /// nothing is encoded first and copied then. `write` is called twice, first to learn the length.
  template <typename Write>
  void message(Write write) {
    Writer measure;
    measure._isMeasuring = true;
    write(measure);
    tag(Tag::bytes);
    size(measure._size);
    _message.reserve(measure._copiedSize);
    const size_t outerStart = std::exchange(_start, _size);
    write(*this);
    _start = outerStart;
  }
  /// What was written; the last call of all.
  Message take();

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

  Message _message;
  /// Of what was written, or measured without being written.
  size_t _size = 0;
  /// The part of it that is not shared.
  size_t _copiedSize = 0;
  bool _isMeasuring = false;
  /// Where the message begins that is being written.
  size_t _start = 0;
  /// What is still to be written, the next one last.
  std::vector<const Value*> _pending;
};

}  // namespace tapdeck::codec
