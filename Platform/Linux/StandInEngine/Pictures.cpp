#include "Platform/Linux/StandInEngine/Pictures.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tapdeck::standin {
namespace {

Value argument(const MethodCall& call, std::string_view key) {
  const auto* map = call.arguments.getIf<Value::Map>();
  // the host takes no argument from any other map
  const bool isRead = map != nullptr && map->hasOnlyStringKeys();
  const Value* value = isRead ? map->find(key) : nullptr;
  return value != nullptr ? *value : Value();
}

bool isForced(const MethodCall& call) {
  const Value force = argument(call, "force");
  const auto* flag = force.getIf<bool>();
  return flag != nullptr && *flag;
}

bool holds(const Value& reply, std::string_view key) {
  const auto* map = reply.getIf<Value::Map>();
  return map != nullptr && map->find(key) != nullptr;
}

Value unchanged() {
  return Value(ValueMap{{"unchanged", Value(true)}});
}

}  // namespace

MethodCall Pictures::forced(const MethodCall& call) {
  ValueMap arguments{{"force", Value(true)}};
  for (const char* key : {"display", "maxWidth", "quality"}) {
    Value value = argument(call, key);
    if (!value.isNull()) arguments.set(Value(key), std::move(value));
  }
  return {call.method, Value(std::move(arguments))};
}

Pictures::View Pictures::viewOf(const MethodCall& call) {
  return Value(Value::List{argument(call, "display"), argument(call, "maxWidth"),
                           argument(call, "quality")});
}

std::optional<Outcome> Pictures::settle(ConnectionNumber connection, const MethodCall& call,
                                        Outcome outcome) {
  const auto* reply = std::get_if<Value>(&outcome);
  if (reply == nullptr) return outcome;
  const View view = viewOf(call);
  const Picture* picture = nullptr;
  if (holds(*reply, "jpeg")) {
    picture = &keep(view, *reply);
    _last = picture->number;
  } else if (holds(*reply, "unchanged")) {
    picture = pictureOf(view);
    // like the host's last picture, which is another view's
    if (picture == nullptr || picture->number != _last) return std::nullopt;
  } else {
    return outcome;
  }
  const uint64_t before = std::exchange(_shown[connection], picture->number);
  outcome = before == picture->number && !isForced(call) ? unchanged() : picture->reply;
  prune();
  return outcome;
}

void Pictures::reset(ConnectionNumber connection) {
  _shown.erase(connection);
  prune();
}

Pictures::Picture* Pictures::pictureOf(const View& view) {
  const auto found = std::find_if(_pictures.begin(), _pictures.end(),
                                  [&view](const Picture& each) { return each.view == view; });
  return found != _pictures.end() ? &*found : nullptr;
}

const Pictures::Picture& Pictures::keep(const View& view, Value reply) {
  Picture* picture = pictureOf(view);
  if (picture == nullptr) return _pictures.emplace_back(Picture{view, std::move(reply), ++_count});
  // a still screen gives the same bytes again
  if (picture->reply != reply) *picture = {view, std::move(reply), ++_count};
  return *picture;
}

void Pictures::prune() {
  std::erase_if(_pictures, [this](const Picture& picture) {
    return std::none_of(_shown.begin(), _shown.end(),
                        [&picture](const auto& each) { return each.second == picture.number; });
  });
}

}  // namespace tapdeck::standin
