#include <algorithm>
#include <ctime>
#include <stdexcept>
#include <utility>

#include "Platform/Linux/StandInEngine/Access.h"
#include "Platform/Linux/StandInEngine/BrowserName.h"
#include "Platform/Linux/StandInEngine/Server.h"

namespace tapdeck::standin {

namespace {

constexpr size_t kMaxNameCharacters = 64;
// close codes of our own, of the range that RFC 6455 leaves to applications
constexpr uint16_t kForgotten = 4001;
constexpr uint16_t kDisconnected = 4002;

/// What the page calls its device, on one line and not too long; empty when it says nothing.
std::string nameIn(const MethodCall& call) {
  const auto* map = call.arguments.getIf<Value::Map>();
  const Value* value = map != nullptr ? map->find("name") : nullptr;
  const auto* text = value != nullptr ? value->getIf<std::string>() : nullptr;
  if (text == nullptr) return "";
  std::string name;
  size_t characters = 0;
  for (const char byte : *text) {
    const bool isFirst = (byte & 0xc0) != 0x80;
    if (isFirst && ++characters > kMaxNameCharacters) break;
    if (static_cast<unsigned char>(byte) >= ' ' && byte != '\x7f') name += byte;
  }
  return name;
}

const char* queryValue(GHashTable* query, const char* key) {
  return static_cast<const char*>(query != nullptr ? g_hash_table_lookup(query, key) : nullptr);
}

}  // namespace

Server::Access Server::accessBy(GHashTable* query) const {
  const char* token = queryValue(query, "token");
  if (token != nullptr && equalInConstantTime(token, _token)) {
    return {Access::Kind::granted, std::nullopt};
  }
  const char* secret = queryValue(query, "device");
  if (secret == nullptr) return {Access::Kind::wrongToken, std::nullopt};
  auto device = _devices.withSecret(secret);
  return {device ? Access::Kind::granted : Access::Kind::forgotten, std::move(device)};
}

void Server::answerAboutDevices(const std::shared_ptr<Connection>& connection,
                                const MethodCall& call, Reply reply) {
  Clients::Client* client = _clients.find(connection->number());
  if (client == nullptr) {
    reply.notImplemented();
  } else if (call.method == "pair") {
    pair(*connection, *client, call, std::move(reply));
  } else if (call.method == "watch") {
    client->watches = true;
    const auto count = static_cast<int64_t>(_clients.count());
    reply.success(
        Value(ValueMap{{"count", Value(count)},
                       {"paired", Value(client->device.has_value())},
                       {"name", client->device ? Value(client->device->name) : Value()}}));
    sendCount();
  } else {
    reply.notImplemented();
  }
}

void Server::pair(const Connection& connection, Clients::Client& client, const MethodCall& call,
                  Reply reply) {
  if (client.device) {
    reply.error("ALREADY_PAIRED", "This device is paired already.");
    return;
  }
  std::string name = nameIn(call);
  if (name.empty()) name = browserName(connection.peer().userAgent);
  try {
    const auto paired = _devices.pair(name);
    if (!paired) {
      reply.error("TOO_MANY_DEVICES", "Too many devices are paired; forget one at the computer.");
      return;
    }
    client.device = paired->device;
    reply.success(Value(ValueMap{{"secret", Value(paired->secret)}, {"name", Value(name)}}));
  } catch (const std::runtime_error& error) {
    reply.error("NOT_SAVED", error.what());
    return;
  }
  sendCount();
  notifyObserver();
}

void Server::sendCount() {
  const size_t count = _clients.count();
  if (std::exchange(_sentCount, count) == count) return;
  const codec::Message message = encodeHostCall(
      kDevicesChannel,
      {"countChanged", Value(ValueMap{{"count", Value(static_cast<int64_t>(count))}})});
  for (const ConnectionNumber number : _clients.watching()) {
    // one that fails while it is sent to takes itself off the list
    if (const auto connection = connectionOf(number)) connection->send(message);
  }
}

std::vector<EngineDevice> Server::devices() const {
  std::vector<EngineDevice> devices;
  for (auto& each : _devices.list()) {
    const bool isConnected = !_clients.of(each.id).empty();
    devices.push_back(
        {each.id, each.name, isConnected ? std::time(nullptr) : each.seen, isConnected});
  }
  return devices;
}

void Server::endConnections(const std::vector<ConnectionNumber>& numbers, uint16_t code,
                            const char* reason) {
  for (const ConnectionNumber number : numbers) {
    if (const auto connection = connectionOf(number)) connection->close(code, reason);
  }
}

void Server::disconnect(ConnectionNumber connection) {
  endConnections({connection}, kDisconnected, "disconnected at the computer");
}

void Server::disconnectDevice(const std::string& device) {
  endConnections(_clients.of(device), kDisconnected, "disconnected at the computer");
}

void Server::forgetDevice(const std::string& device) {
  _devices.forget(device);
  endConnections(_clients.of(device), kForgotten, "forgotten at the computer");
  notifyObserver();
}

}  // namespace tapdeck::standin
