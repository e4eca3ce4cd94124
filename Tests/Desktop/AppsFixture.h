#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Runner/Apps/Catalogue.h"

namespace tapdeck::testing {

/// Applications folders of the test's own: nothing else is installed.
class AppsTest : public ::testing::Test {
 protected:
  AppsTest() {
    for (const auto& folder : {users, systems}) {
      std::filesystem::remove_all(folder);
      std::filesystem::create_directories(folder);
    }
  }

  static void write(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
  }
  /// A desktop entry that starts a program which ends at once.
  static std::string entry(const std::string& name, const std::string& more = "") {
    return "[Desktop Entry]\nType=Application\nExec=true\nName=" + name + "\n" + more + "\n";
  }
  /// The catalogue as "name = id", with a star before what is running.
  static std::vector<std::string> catalogue() {
    std::vector<std::string> lines;
    for (const Value& value : applicationCatalogue()) {
      const auto& map = *value.getIf<ValueMap>();
      lines.push_back((*map.find("isRunning") == Value(true) ? "*" : "") +
                      *map.find("name")->getIf<std::string>() + " = " +
                      *map.find("bundleId")->getIf<std::string>());
    }
    return lines;
  }

  static inline const std::filesystem::path userData = std::getenv("XDG_DATA_HOME");
  static inline const std::filesystem::path systemData = userData.parent_path() / "share";
  const std::filesystem::path users = userData / "applications";
  const std::filesystem::path systems = systemData / "applications";
};

}  // namespace tapdeck::testing
