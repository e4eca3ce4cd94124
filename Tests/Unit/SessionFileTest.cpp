#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "Platform/Linux/SessionFile.h"

namespace tapdeck {
namespace {

namespace fs = std::filesystem;

/// A runtime directory of its own; the variables come back afterwards.
class SessionFileTest : public testing::Test {
 protected:
  SessionFileTest() {
    std::string pattern = (fs::temp_directory_path() / "session-test-XXXXXX").string();
    _directory = ::mkdtemp(pattern.data());
    ::setenv("XDG_RUNTIME_DIR", _directory.c_str(), 1);
  }
  ~SessionFileTest() override {
    fs::remove_all(_directory);
    restore("XDG_RUNTIME_DIR", _runtime);
    restore("TMPDIR", _temporary);
  }

  static std::optional<std::string> variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
  }
  static void restore(const char* name, const std::optional<std::string>& value) {
    value ? ::setenv(name, value->c_str(), 1) : ::unsetenv(name);
  }
  static mode_t modeOf(const fs::path& path) {
    struct stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  const std::optional<std::string> _runtime = variable("XDG_RUNTIME_DIR");
  const std::optional<std::string> _temporary = variable("TMPDIR");
  fs::path _directory;
  const Session _session{"http://127.0.0.1:8420/#00ff", 8420, "00ff", 4711};
};

TEST_F(SessionFileTest, RoundTripsPrivately) {
  EXPECT_FALSE(readSession());
  writeSession({"http://127.0.0.1:1/#0", 1, "0", 1});
  writeSession(_session);
  const auto back = readSession();
  ASSERT_TRUE(back);
  EXPECT_EQ(back->url, _session.url);
  EXPECT_EQ(back->port, _session.port);
  EXPECT_EQ(back->token, _session.token);
  EXPECT_EQ(back->pid, _session.pid);
  EXPECT_EQ(sessionFilePath(), _directory / "tapdeck" / "session.json");
  EXPECT_EQ(modeOf(sessionFilePath()), 0600u);
  EXPECT_EQ(modeOf(_directory / "tapdeck"), 0700u);
  EXPECT_EQ(std::distance(fs::directory_iterator(_directory / "tapdeck"), {}), 1)
      << "no temporary file stays behind";

  removeSession(_session.pid + 1);
  EXPECT_TRUE(readSession()) << "another process's session stays";
  removeSession(_session.pid);
  EXPECT_FALSE(fs::exists(sessionFilePath()));
}

TEST_F(SessionFileTest, RefusesFolderThatIsNotItsOwn) {
  fs::create_directory(_directory / "elsewhere");
  fs::create_directory_symlink(_directory / "elsewhere", _directory / "tapdeck");
  EXPECT_THROW(writeSession(_session), std::runtime_error);
  EXPECT_TRUE(fs::is_empty(_directory / "elsewhere"));

  fs::remove(_directory / "tapdeck");
  std::ofstream(_directory / "tapdeck") << "a file";
  EXPECT_THROW(writeSession(_session), std::runtime_error);

  fs::remove(_directory / "tapdeck");
  fs::create_directory(_directory / "tapdeck");
  fs::permissions(_directory / "tapdeck", fs::perms::all);
  writeSession(_session);
  EXPECT_EQ(modeOf(_directory / "tapdeck"), 0700u);
}

TEST_F(SessionFileTest, ReadsNothingFromWhatIsNoSession) {
  writeSession(_session);
  for (const char* bad :
       {"", "{", "[]", "{}", R"({"url":"u","port":0,"token":"t","pid":1})",
        R"({"url":"u","port":65536,"token":"t","pid":1})", R"({"url":"u","port":1,"token":"t"})",
        R"({"url":1,"port":1,"token":"t","pid":1})"}) {
    std::ofstream(sessionFilePath(), std::ios::trunc) << bad;
    EXPECT_FALSE(readSession()) << bad;
  }
}

TEST_F(SessionFileTest, FallsBackToTemporaryDirectory) {
  ::unsetenv("XDG_RUNTIME_DIR");
  ::setenv("TMPDIR", _directory.c_str(), 1);
  const auto folder = "tapdeck-" + std::to_string(::geteuid());
  EXPECT_EQ(sessionFilePath(), _directory / folder / "session.json");
  ::unsetenv("TMPDIR");
  EXPECT_EQ(sessionFilePath(), fs::path("/tmp") / folder / "session.json");
}

}  // namespace
}  // namespace tapdeck
