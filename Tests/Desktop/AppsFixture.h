#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tapdeck::testing {

/// Applications folders of the test's own: nothing else is installed.
class AppsTest : public ::testing::Test {
 protected:
  AppsTest();

  static void write(const std::filesystem::path& path, const std::string& text);
  /// A desktop entry that starts a program which ends at once.
  static std::string entry(const std::string& name, const std::string& more = "");
  /// The catalogue as "name = id", with a star before what is running.
  static std::vector<std::string> catalogue();

  static const std::filesystem::path& userData();
  static const std::filesystem::path& systemData();
  const std::filesystem::path users = userData() / "applications";
  const std::filesystem::path systems = systemData() / "applications";
};

}  // namespace tapdeck::testing
