#include "Platform/Linux/StandInEngine/Guests.h"

#include <set>
#include <utility>

namespace tapdeck::standin {

void Guests::add(ConnectionNumber connection, std::optional<Device> device) {
  _guests[connection] = {std::move(device), false};
}

Guests::Guest* Guests::find(ConnectionNumber connection) {
  const auto found = _guests.find(connection);
  return found != _guests.end() ? &found->second : nullptr;
}

const Guests::Guest* Guests::find(ConnectionNumber connection) const {
  const auto found = _guests.find(connection);
  return found != _guests.end() ? &found->second : nullptr;
}

std::vector<Guests::ConnectionNumber> Guests::of(const std::string& device) const {
  std::vector<ConnectionNumber> connections;
  for (const auto& [connection, guest] : _guests) {
    if (guest.device && guest.device->id == device) connections.push_back(connection);
  }
  return connections;
}

std::vector<Guests::ConnectionNumber> Guests::watching() const {
  std::vector<ConnectionNumber> connections;
  for (const auto& [connection, guest] : _guests) {
    if (guest.watches) connections.push_back(connection);
  }
  return connections;
}

size_t Guests::count() const {
  std::set<std::string> paired;
  size_t unpaired = 0;
  for (const auto& [connection, guest] : _guests) {
    if (!guest.watches) continue;
    if (guest.device) {
      paired.insert(guest.device->id);
    } else {
      ++unpaired;
    }
  }
  return paired.size() + unpaired;
}

}  // namespace tapdeck::standin
