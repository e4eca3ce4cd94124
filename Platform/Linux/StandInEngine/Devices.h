#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tapdeck::standin {

/// A browser that was paired with this computer.
struct Device {
  std::string id;
  std::string name;
  /// Seconds since 1970.
  int64_t added = 0;
  int64_t seen = 0;
};

/// The paired devices, in a file that only its owner can read. Of a device's secret it has a salted
/// hash. Read afresh at each call, since a host on another display may have changed it. Main thread
/// only.
class Devices {
 public:
  static constexpr size_t kMaxCount = 32;
  static constexpr size_t kMaxNameBytes = 256;

  /// Without a path: devices.ini in the user's data folder for Tapdeck.
  explicit Devices(std::string path);

  /// In the order of pairing.
  std::vector<Device> list() const;
  /// The device whose secret this is.
  std::optional<Device> withSecret(std::string_view secret) const;

  struct Paired {
    Device device;
    /// 256 random bits and the device's id, of [0-9a-f.]; not kept here.
    std::string secret;
  };
  /// Absent when there are kMaxCount. Throws std::runtime_error, with a message for people, when
  /// the file cannot be written.
  std::optional<Paired> pair(const std::string& name);
  /// Both do nothing for a device that is not known. What cannot be written is said on standard
  /// error; forget() throws std::runtime_error then.
  void noteSeen(const std::string& id);
  void forget(const std::string& id);

 private:
  std::string _path;
};

}  // namespace tapdeck::standin
