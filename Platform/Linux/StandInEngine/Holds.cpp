#include "Platform/Linux/StandInEngine/Holds.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace tapdeck::standin {
namespace {

/// A string argument as the host reads it: only from a map whose keys are all strings.
std::optional<std::string> stringArgument(const MethodCall& call, std::string_view key) {
  const auto* map = call.arguments.getIf<Value::Map>();
  if (map == nullptr || !map->hasOnlyStringKeys()) return std::nullopt;
  const Value* value = map->find(key);
  const auto* text = value != nullptr ? value->getIf<std::string>() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::string lowered(std::string name) {
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

}  // namespace

/// What a call does to the holds; without a name it does nothing.
struct Holds::Change {
  Kind kind = Kind::button;
  bool presses = false;
  std::optional<std::string> name;
};

Holds::Change Holds::changeOf(const MethodCall& call) {
  const std::string& method = call.method;
  if (method == "mouseDown" || method == "mouseUp") {
    return {Kind::button, method == "mouseDown", stringArgument(call, "button").value_or("left")};
  }
  if (method == "keyDown" || method == "keyUp") {
    auto name = stringArgument(call, "key");
    if (name) name = lowered(*std::move(name));
    return {Kind::key, method == "keyDown", std::move(name)};
  }
  if (method == "hideCursor" || method == "showCursor") {
    return {Kind::cursor, method == "hideCursor", ""};
  }
  if (method == "showLaser" || method == "hideLaser") {
    return {Kind::laser, method == "showLaser", ""};
  }
  return {};
}

bool Holds::note(ConnectionNumber connection, const MethodCall& call) {
  const Change change = changeOf(call);
  if (!change.name) return true;
  if (change.name->size() > kMaxNameBytes) return false;
  if (!change.presses) {
    letGo(connection, change);
    return true;
  }
  size_t count = 0;
  for (const Hold& hold : _holds) {
    if (hold.connection != connection) continue;
    const bool isCounted = hold.kind == Kind::cursor;
    if (!isCounted && hold.kind == change.kind && hold.name == *change.name) return true;
    ++count;
  }
  if (count >= kMaxPerConnection) return false;
  _holds.push_back({connection, change.kind, *change.name});
  return true;
}

void Holds::letGo(ConnectionNumber connection, const Change& change) {
  if (change.kind != Kind::cursor) {
    // The host knows one state per button and key: up is up, whoever pressed it.
    std::erase_if(_holds, [&](const Hold& hold) {
      return hold.kind == change.kind && hold.name == *change.name;
    });
    return;
  }
  // One show takes back one hide: the connection's own, if it has one.
  const auto isHide = [](const Hold& hold) { return hold.kind == Kind::cursor; };
  auto hide = std::find_if(_holds.begin(), _holds.end(), [&](const Hold& hold) {
    return isHide(hold) && hold.connection == connection;
  });
  if (hide == _holds.end()) hide = std::find_if(_holds.begin(), _holds.end(), isHide);
  if (hide != _holds.end()) _holds.erase(hide);
}

bool Holds::holdsAny(ConnectionNumber connection) const {
  return std::any_of(_holds.begin(), _holds.end(),
                     [connection](const Hold& hold) { return hold.connection == connection; });
}

std::vector<MethodCall> Holds::end(ConnectionNumber connection) {
  std::vector<Hold> left;
  std::erase_if(_holds, [&](const Hold& hold) {
    if (hold.connection != connection) return false;
    left.push_back(hold);
    return true;
  });
  std::reverse(left.begin(), left.end());
  std::stable_sort(left.begin(), left.end(),
                   [](const Hold& a, const Hold& b) { return a.kind < b.kind; });
  std::vector<MethodCall> calls;
  for (const Hold& hold : left) {
    if (hold.kind == Kind::cursor || !isHeld(hold.kind, hold.name))
      calls.push_back(releaseOf(hold));
  }
  return calls;
}

MethodCall Holds::releaseOf(const Hold& hold) {
  switch (hold.kind) {
    case Kind::button:
      return {"mouseUp", Value(ValueMap{{"button", Value(hold.name)}})};
    case Kind::key:
      return {"keyUp", Value(ValueMap{{"key", Value(hold.name)}})};
    case Kind::cursor:
      return {"showCursor", Value()};
    case Kind::laser:
      break;
  }
  return {"hideLaser", Value()};
}

bool Holds::isHeld(Kind kind, const std::string& name) const {
  return std::any_of(_holds.begin(), _holds.end(),
                     [&](const Hold& hold) { return hold.kind == kind && hold.name == name; });
}

}  // namespace tapdeck::standin
