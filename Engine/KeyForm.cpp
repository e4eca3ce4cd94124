#include "Engine/KeyForm.h"

#include <cmath>
#include <type_traits>
#include <utility>

namespace tapdeck::codec {
namespace {

template <typename T>
constexpr Tag tagOfList() {
  if constexpr (std::is_floating_point_v<T>) {
    return sizeof(T) == 4 ? Tag::float32List : Tag::float64List;
  } else {
    return sizeof(T) == 4 ? Tag::int32List : Tag::int64List;
  }
}

}  // namespace

KeyForm::KeyForm(uint64_t& serial) : _serial(serial) {}

void KeyForm::append(const Value& leaf) {
  leaf.visit([this](const auto& held) { content(held); });
}

void KeyForm::beginList(size_t count) {
  tag(Tag::list);
  size(count);
}

void KeyForm::beginMap(size_t count) {
  tag(Tag::map);
  size(count);
}

void KeyForm::append(std::string_view finishedForm) {
  _bytes.append(finishedForm);
}

std::string KeyForm::take() {
  return std::exchange(_bytes, {});
}

void KeyForm::tag(Tag tag) {
  _bytes.push_back(static_cast<char>(tag));
}

void KeyForm::size(size_t size) {
  // Seven bits a byte: short, so that the usual key needs no heap.
  for (; size >= 0x80; size >>= 7) _bytes.push_back(static_cast<char>(0x80 | (size & 0x7F)));
  _bytes.push_back(static_cast<char>(size));
}

template <typename T>
void KeyForm::number(T value) {
  _bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <typename T>
void KeyForm::real(T value) {
  if (std::isnan(value)) {
    number(value);
    number(_serial++);
  } else {
    number(value == 0 ? T{0} : value);
  }
}

void KeyForm::content(std::monostate) {
  tag(Tag::null);
}

void KeyForm::content(bool value) {
  tag(value ? Tag::yes : Tag::no);
}

void KeyForm::content(int64_t value) {
  tag(Tag::int64);
  number(value);
}

void KeyForm::content(double value) {
  tag(Tag::float64);
  real(value);
}

void KeyForm::content(const std::string& value) {
  tag(Tag::string);
  size(value.size());
  append(std::string_view(value));
}

void KeyForm::content(const Value::Bytes& value) {
  tag(Tag::bytes);
  size(value.size());
  append(std::string_view(reinterpret_cast<const char*>(value.data()), value.size()));
}

template <typename T>
void KeyForm::content(const std::vector<T>& list) {
  tag(tagOfList<T>());
  size(list.size());
  for (const T element : list) {
    if constexpr (std::is_floating_point_v<T>) {
      real(element);
    } else {
      number(element);
    }
  }
}

// Never called: lists and maps are begun by their own functions.
void KeyForm::content(const Value::List&) {}
void KeyForm::content(const Value::Map&) {}

}  // namespace tapdeck::codec
