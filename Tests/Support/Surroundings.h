#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace tapdeck {

/// A folder that goes with its contents.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tapdeck-test.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path = name;
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path path;
};

inline std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Of this process.
inline std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Sets a variable of the environment (or takes it away, for nullptr) and puts it back.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : _name(name) {
    if (const char* before = std::getenv(name)) _before = before;
    set(value);
  }
  ~EnvironmentVariable() { set(_before ? _before->c_str() : nullptr); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  void set(const char* value) const {
    value == nullptr ? unsetenv(_name) : setenv(_name, value, 1);
  }

  const char* _name;
  std::optional<std::string> _before;
};

}  // namespace tapdeck
