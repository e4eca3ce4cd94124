#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/StandInEngine/Devices.h"

namespace tapdeck::standin {

/// Which device stands behind each open connection, and which connections want to know how many
/// there are. Main thread only.
class Guests {
 public:
  using ConnectionNumber = uint64_t;
  struct Guest {
    /// Absent for one that came with the run's token.
    std::optional<Device> device;
    bool watches = false;
  };

  void add(ConnectionNumber connection, std::optional<Device> device);
  void remove(ConnectionNumber connection) { _guests.erase(connection); }
  /// Null when there is no such connection.
  Guest* find(ConnectionNumber connection);
  const Guest* find(ConnectionNumber connection) const;
  /// The connections of a device.
  std::vector<ConnectionNumber> of(const std::string& device) const;
  std::vector<ConnectionNumber> watching() const;
  /// How many devices watch: several connections of one paired device are one.
  size_t count() const;

 private:
  std::map<ConnectionNumber, Guest> _guests;
};

}  // namespace tapdeck::standin
