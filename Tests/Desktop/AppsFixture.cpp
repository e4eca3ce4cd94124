#include "Tests/Desktop/AppsFixture.h"

#include <gtkmm/main.h>

#include <cstdlib>
#include <fstream>

#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Apps/Catalogue.h"

namespace tapdeck::testing {

namespace fs = std::filesystem;

AppsTest::AppsTest() {
  for (const auto& folder : {users, systems}) {
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
}

void AppsTest::write(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

std::string AppsTest::entry(const std::string& name, const std::string& more) {
  return "[Desktop Entry]\nType=Application\nExec=true\nName=" + name + "\n" + more + "\n";
}

std::vector<std::string> AppsTest::catalogue() {
  std::vector<std::string> lines;
  for (const Value& value : applicationCatalogue()) {
    const auto& map = *value.getIf<ValueMap>();
    lines.push_back((*map.find("isRunning") == Value(true) ? "*" : "") +
                    *map.find("name")->getIf<std::string>() + " = " +
                    *map.find("bundleId")->getIf<std::string>());
  }
  return lines;
}

const fs::path& AppsTest::userData() {
  static const fs::path path = std::getenv("XDG_DATA_HOME");
  return path;
}

const fs::path& AppsTest::systemData() {
  static const fs::path path = userData().parent_path() / "share";
  return path;
}

namespace {

constexpr const char* kSchema = R"(<schemalist>
  <schema id="org.gnome.shell" path="/org/gnome/shell/">
    <key name="favorite-apps" type="as">
      <default>['favourite.desktop', 'gone.desktop']</default>
    </key>
  </schema>
</schemalist>)";

/// GNOME with favourites, the system's icons, and no system folder but the test's own.
class Environment : public ::testing::Environment, AppsTest {
 public:
  void SetUp() override {
    fs::create_directories(systemData());
    for (const char* name : {"icons", "mime"}) {
      fs::create_directory_symlink(fs::path("/usr/share") / name, systemData() / name);
    }
    const fs::path schemas = systemData() / "schemas";
    write(schemas / "shell.gschema.xml", kSchema);
    ASSERT_EQ(std::system(("glib-compile-schemas " + schemas.string()).c_str()), 0);
    setenv("XDG_DATA_DIRS", systemData().c_str(), 1);
    setenv("GSETTINGS_SCHEMA_DIR", schemas.c_str(), 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    Gtk::Main::init_gtkmm_internals();
    x11::connectToWindowServer();
  }

 private:
  void TestBody() override {}
};

}  // namespace
}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new tapdeck::testing::Environment);
  return RUN_ALL_TESTS();
}
