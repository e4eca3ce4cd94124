#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/StandInEngine/Devices.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"

namespace tapdeck::standin {

/// The open connections as clients: the device that each belongs to, and whether it is to be told
/// how many devices are connected. Main thread only.
class Clients {
 public:
  struct Client {
    /// Absent for one that came with the run's token.
    std::optional<Device> device;
    /// Whether it has asked to be told the count.
    bool watches = false;
  };

  void add(ConnectionNumber connection, std::optional<Device> device);
  void remove(ConnectionNumber connection) { _clients.erase(connection); }
  /// Null when there is no such connection.
  Client* find(ConnectionNumber connection);
  const Client* find(ConnectionNumber connection) const;
  /// The connections of a device.
  std::vector<ConnectionNumber> of(const std::string& device) const;
  std::vector<ConnectionNumber> watching() const;
  /// How many devices those are that watch; several connections of a paired device count as one.
  size_t count() const;

 private:
  std::map<ConnectionNumber, Client> _clients;
};

}  // namespace tapdeck::standin
