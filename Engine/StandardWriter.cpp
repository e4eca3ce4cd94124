#include "Engine/StandardWriter.h"

#include <iterator>
#include <limits>
#include <stdexcept>
#include <utility>

namespace tapdeck::codec {
namespace {

/// Fewer bytes are copied sooner than their piece is handled.
constexpr size_t kMinSharedSize = 4096;

}  // namespace

void Writer::byte(uint8_t value) {
  raw(&value, 1);
}

void Writer::value(const Value& root) {
  _pending.push_back(&root);
  while (!_pending.empty()) {
    const Value& next = *_pending.back();
    _pending.pop_back();
    next.visit([this](const auto& held) { content(held); });
  }
}

void Writer::list(size_t count) {
  tag(Tag::list);
  size(count);
}

void Writer::methodCall(const MethodCall& call) {
  value(Value(call.method));
  value(call.arguments);
}

void Writer::envelope(const Outcome& outcome) {
  if (const auto* error = std::get_if<MethodError>(&outcome)) {
    byte(kError);
    value(Value(error->code));
    value(Value(error->message));
    value(error->details);
  } else {
    byte(kSuccess);
    value(std::get<Value>(outcome));
  }
}

Message Writer::take() {
  return std::move(_message);
}

void Writer::tag(Tag tag) {
  byte(static_cast<uint8_t>(tag));
}

void Writer::size(size_t size) {
  if (size < kSizeIn16Bits) {
    byte(static_cast<uint8_t>(size));
  } else if (size <= std::numeric_limits<uint16_t>::max()) {
    byte(kSizeIn16Bits);
    number(static_cast<uint16_t>(size));
  } else if (size <= std::numeric_limits<uint32_t>::max()) {
    byte(kSizeIn32Bits);
    number(static_cast<uint32_t>(size));
  } else {
    throw std::length_error("a value is too long for a message");
  }
}

void Writer::align(size_t to) {
  while ((_size - _start) % to != 0) byte(0);
}

void Writer::raw(const void* data, size_t count) {
  _size += count;
  _copiedSize += count;
  if (!_isMeasuring) _message.append({static_cast<const uint8_t*>(data), count});
}

template <typename T>
void Writer::number(T value) {
  raw(&value, sizeof value);
}

template <typename T>
void Writer::typedList(Tag listTag, const std::vector<T>& list) {
  tag(listTag);
  size(list.size());
  align(sizeof(T));
  if (!list.empty()) raw(list.data(), list.size() * sizeof(T));
}

void Writer::content(std::monostate) {
  tag(Tag::null);
}

void Writer::content(bool value) {
  tag(value ? Tag::yes : Tag::no);
}

void Writer::content(int64_t value) {
  if (std::in_range<int32_t>(value)) {
    tag(Tag::int32);
    number(static_cast<int32_t>(value));
  } else {
    tag(Tag::int64);
    number(value);
  }
}

void Writer::content(double value) {
  tag(Tag::float64);
  align(sizeof value);
  number(value);
}

void Writer::content(const std::string& value) {
  tag(Tag::string);
  size(value.size());
  raw(value.data(), value.size());
}

void Writer::content(const Value::Bytes& value) {
  tag(Tag::bytes);
  size(value.size());
  if (value.size() < kMinSharedSize) {
    raw(value.data(), value.size());
  } else {
    _size += value.size();
    if (!_isMeasuring) _message.share(value);
  }
}

void Writer::content(const Value::Int32List& value) {
  typedList(Tag::int32List, value);
}

void Writer::content(const Value::Int64List& value) {
  typedList(Tag::int64List, value);
}

void Writer::content(const Value::Float32List& value) {
  typedList(Tag::float32List, value);
}

void Writer::content(const Value::Float64List& value) {
  typedList(Tag::float64List, value);
}

void Writer::content(const Value::List& value) {
  list(value.size());
  for (auto element = value.rbegin(); element != value.rend(); ++element) {
    _pending.push_back(&*element);
  }
}

void Writer::content(const Value::Map& value) {
  tag(Tag::map);
  size(value.size());
  const auto last = std::make_reverse_iterator(value.end());
  const auto first = std::make_reverse_iterator(value.begin());
  for (auto entry = last; entry != first; ++entry) {
    _pending.push_back(&entry->second);
    _pending.push_back(&entry->first);
  }
}

}  // namespace tapdeck::codec
