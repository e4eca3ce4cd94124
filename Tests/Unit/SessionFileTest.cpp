#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <tuple>

#include "Platform/Linux/EngineProtocol/SessionFile.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck {
namespace {

namespace fs = std::filesystem;

mode_t modeOf(const fs::path& path) {
  struct stat status = {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

class SessionFileTest : public testing::Test {
 protected:
  const TemporaryFolder _runtime;
  const EnvironmentVariable _variable{"XDG_RUNTIME_DIR", _runtime.path.c_str()};
  const fs::path _folder = _runtime.path / "tapdeck";
  const Session _session{"http://127.0.0.1:8420/#00ff", 8420, "00ff", 4711};
};

TEST_F(SessionFileTest, RoundTripsPrivately) {
  EXPECT_FALSE(readSession());
  writeSession({"http://127.0.0.1:1/#0", 1, "0", 1});
  writeSession(_session);
  const Session back = readSession().value();
  EXPECT_EQ(std::tie(back.url, back.port, back.token, back.pid),
            std::tie(_session.url, _session.port, _session.token, _session.pid));
  EXPECT_EQ(modeOf(sessionFilePath()), 0600u);
  EXPECT_EQ(modeOf(_folder), 0700u);
  EXPECT_EQ(std::distance(fs::directory_iterator(_folder), {}), 1)
      << "no temporary file stays behind";

  removeSession(_session.pid + 1);
  EXPECT_TRUE(readSession()) << "another process's session stays";
  removeSession(_session.pid);
  EXPECT_FALSE(fs::exists(sessionFilePath()));
}

TEST_F(SessionFileTest, RefusesFolderThatIsNotItsOwn) {
  const TemporaryFolder elsewhere;
  fs::create_directory_symlink(elsewhere.path, _folder);
  EXPECT_THROW(writeSession(_session), std::runtime_error);
  EXPECT_TRUE(fs::is_empty(elsewhere.path));

  fs::remove(_folder);
  std::ofstream(_folder) << "a file";
  EXPECT_THROW(writeSession(_session), std::runtime_error);

  fs::remove(_folder);
  fs::create_directory(_folder);
  fs::permissions(_folder, fs::perms::all);
  writeSession(_session);
  EXPECT_EQ(modeOf(_folder), 0700u);
}

TEST_F(SessionFileTest, ReadsNothingFromWhatIsNoSession) {
  writeSession(_session);
  for (const char* bad :
       {"{", "[]", R"({"url":"u","port":65536,"token":"t","pid":1})",
        R"({"url":"u","port":1,"token":"t"})", R"({"url":1,"port":1,"token":"t","pid":1})"}) {
    std::ofstream(sessionFilePath(), std::ios::trunc) << bad;
    EXPECT_FALSE(readSession()) << bad;
  }
}

TEST_F(SessionFileTest, FallsBackToTemporaryDirectory) {
  const EnvironmentVariable none("XDG_RUNTIME_DIR", nullptr);
  const auto file = fs::path("tapdeck-" + std::to_string(::geteuid())) / "session.json";
  for (const char* folder : {_runtime.path.c_str(), static_cast<const char*>(nullptr)}) {
    const EnvironmentVariable temporary("TMPDIR", folder);
    EXPECT_EQ(sessionFilePath(), (folder == nullptr ? "/tmp" : folder) / file);
  }
}

}  // namespace
}  // namespace tapdeck
