#include "Platform/Linux/StandInEngine/Clients.h"

#include <set>
#include <utility>

namespace tapdeck::standin {

void Clients::add(ConnectionNumber connection, std::optional<Device> device) {
  _clients[connection] = {std::move(device), false};
}

Clients::Client* Clients::find(ConnectionNumber connection) {
  const auto found = _clients.find(connection);
  return found != _clients.end() ? &found->second : nullptr;
}

const Clients::Client* Clients::find(ConnectionNumber connection) const {
  const auto found = _clients.find(connection);
  return found != _clients.end() ? &found->second : nullptr;
}

std::vector<ConnectionNumber> Clients::of(const std::string& device) const {
  std::vector<ConnectionNumber> connections;
  for (const auto& [connection, client] : _clients) {
    if (client.device && client.device->id == device) connections.push_back(connection);
  }
  return connections;
}

std::vector<ConnectionNumber> Clients::watching() const {
  std::vector<ConnectionNumber> connections;
  for (const auto& [connection, client] : _clients) {
    if (client.watches) connections.push_back(connection);
  }
  return connections;
}

size_t Clients::count() const {
  std::set<std::string> paired;
  size_t unpaired = 0;
  for (const auto& [connection, client] : _clients) {
    if (!client.watches) continue;
    if (client.device) {
      paired.insert(client.device->id);
    } else {
      ++unpaired;
    }
  }
  return paired.size() + unpaired;
}

}  // namespace tapdeck::standin
