#include "Engine/StandardReader.h"

#include <cstring>
#include <map>
#include <utility>

#include "Engine/StandardFormat.h"
#include "Engine/Utf8.h"

namespace tapdeck::codec {

Reader::Reader(std::span<const uint8_t> message) : _message(message) {}

uint8_t Reader::byte() {
  return take(1).front();
}

Value Reader::value() {
  return read(0, nullptr);
}

bool Reader::isAtEnd() const {
  return _offset == _message.size();
}

void Reader::expectEnd() const {
  if (!isAtEnd()) throw Malformed();
}

Value Reader::read(int depth, KeyForm* key) {
  const auto tag = static_cast<Tag>(byte());
  if (tag == Tag::list) return list(depth + 1, key);
  if (tag == Tag::map) return map(depth + 1, key);
  Value value = leaf(tag);
  if (key != nullptr) key->append(value);
  return value;
}

Value Reader::element(int depth, KeyForm* key) {
  --_owed;
  return read(depth, key);
}

Value Reader::leaf(Tag tag) {
  switch (tag) {
    case Tag::null:
      return {};
    case Tag::yes:
      return Value(true);
    case Tag::no:
      return Value(false);
    case Tag::int32:
      return Value(number<int32_t>());
    case Tag::int64:
      return Value(number<int64_t>());
    case Tag::float64:
      align(sizeof(double));
      return Value(number<double>());
    case Tag::largeInt:
    case Tag::string:
      return Value(text());
    case Tag::bytes:
      return typedList<uint8_t>();
    case Tag::int32List:
      return typedList<int32_t>();
    case Tag::int64List:
      return typedList<int64_t>();
    case Tag::float32List:
      return typedList<float>();
    case Tag::float64List:
      return typedList<double>();
    case Tag::list:
    case Tag::map:
      break;
  }
  throw Malformed();
}

Value Reader::list(int depth, KeyForm* key) {
  const size_t count = enterContainer(depth, 1);
  if (key != nullptr) key->beginList(count);
  Value::List elements;
  elements.reserve(count);
  for (size_t n = 0; n < count; ++n) elements.push_back(element(depth, key));
  return Value(std::move(elements));
}

Value Reader::map(int depth, KeyForm* key) {
  struct Place {
    size_t index;
    std::string valueForm;
  };
  const size_t count = enterContainer(depth, 2);
  std::map<std::string, Place> places;
  std::vector<ValueMap::Entry> entries;
  entries.reserve(count);
  for (size_t n = 0; n < count; ++n) {
    KeyForm keyForm(_serial);
    KeyForm valueForm(_serial);
    Value entryKey = element(depth, &keyForm);
    Value entryValue = element(depth, key == nullptr ? nullptr : &valueForm);
    const auto [place, isNew] = places.try_emplace(keyForm.take(), Place{entries.size(), {}});
    place->second.valueForm = valueForm.take();
    if (isNew) {
      entries.emplace_back(std::move(entryKey), std::move(entryValue));
    } else {
      entries[place->second.index].second = std::move(entryValue);
    }
  }
  if (key != nullptr) {
    key->beginMap(places.size());
    for (const auto& [form, place] : places) {
      key->append(form);
      key->append(place.valueForm);
    }
  }
  return Value(ValueMap::ofDistinctKeys(std::move(entries)));
}

// What is owed is counted over all the containers around: were each looked at alone, containers
// nested in one another could each claim, and reserve for, the whole rest of the message.
size_t Reader::enterContainer(int depth, size_t valuesPerEntry) {
  if (depth > kDepthLimit) throw Malformed();
  const size_t count = size();
  const size_t left = _message.size() - _offset;
  if (left < _owed || count > (left - _owed) / valuesPerEntry) throw Malformed();
  _owed += count * valuesPerEntry;
  return count;
}

std::span<const uint8_t> Reader::take(size_t count) {
  if (count > _message.size() - _offset) throw Malformed();
  const auto taken = _message.subspan(_offset, count);
  _offset += count;
  return taken;
}

size_t Reader::size() {
  const uint8_t first = byte();
  if (first == kSizeIn16Bits) return number<uint16_t>();
  if (first == kSizeIn32Bits) return number<uint32_t>();
  return first;
}

void Reader::align(size_t to) {
  take((to - _offset % to) % to);
}

std::string Reader::text() {
  const auto bytes = take(size());
  std::string text(bytes.begin(), bytes.end());
  if (!isUtf8(text)) throw Malformed();
  return text;
}

template <typename T>
T Reader::number() {
  T value;
  std::memcpy(&value, take(sizeof value).data(), sizeof value);
  return value;
}

template <typename T>
Value Reader::typedList() {
  const size_t count = size();
  align(sizeof(T));
  if (count > (_message.size() - _offset) / sizeof(T)) throw Malformed();
  const auto bytes = take(count * sizeof(T));
  std::vector<T> list(count);
  if (count > 0) std::memcpy(list.data(), bytes.data(), bytes.size());
  return Value(std::move(list));
}

}  // namespace tapdeck::codec
