#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtkmm/main.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "Platform/Linux/Applications/ApplicationWindows.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Apps/Launching.h"
#include "Tests/Desktop/AppsFixture.h"
#include "Tests/Support/Desktop/Observer.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck::testing {
namespace {

using namespace ::testing;

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
    std::filesystem::create_directories(systemData);
    for (const char* name : {"icons", "mime"}) {
      std::filesystem::create_directory_symlink(std::filesystem::path("/usr/share") / name,
                                                systemData / name);
    }
    const std::filesystem::path schemas = systemData / "schemas";
    write(schemas / "shell.gschema.xml", kSchema);
    ASSERT_EQ(std::system(("glib-compile-schemas " + schemas.string()).c_str()), 0);
    setenv("XDG_DATA_DIRS", systemData.c_str(), 1);
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

TEST_F(AppsTest, ListsWhatMenusShowAndTheFavourites) {
  EXPECT_THAT(catalogue(), IsEmpty());
  write(systems / "favourite.desktop", entry("Favourite", "NoDisplay=true"));
  write(systems / "sub/folder/deep.desktop", entry("Deep"));
  write(users / "odd name.desktop", entry("A/B – 🎵 \"odd\".app"));
  write(users / "same.desktop", entry("Same"));
  write(systems / "same2.desktop", entry("Same"));
  write(systems / "same3.desktop", entry("Same (same2)"));
  write(systems / "here.desktop", entry("Here", "OnlyShowIn=KDE;GNOME;"));
  write(systems / "try.desktop", entry("Try", "TryExec=true"));

  write(systems / "nodisplay.desktop", entry("x", "NoDisplay=true"));
  write(systems / "hidden.desktop", entry("x"));
  write(users / "hidden.desktop", entry("x", "Hidden=true"));
  write(systems / "masked.desktop", entry("x"));
  write(users / "masked.desktop", "[Desktop Ent");
  write(systems / "elsewhere.desktop", entry("x", "OnlyShowIn=KDE;"));
  write(systems / "notry.desktop", entry("x", "TryExec=/nowhere/program"));
  write(systems / "bytes.desktop", std::string("\0\xFF\xFE[", 4));
  write(systems / "text.txt", entry("x"));
  std::filesystem::create_symlink("/nowhere", systems / "dangling.desktop");
  std::filesystem::create_directory(systems / "folder.desktop");
  std::filesystem::create_directory_symlink(systems, systems / "circle");
  EXPECT_THAT(
      catalogue(),
      ElementsAre("A/B – 🎵 \"odd\".app = odd name.desktop", "Deep = sub-folder-deep.desktop",
                  "Favourite = favourite.desktop", "Here = here.desktop", "Same = same.desktop",
                  "Same (same2) = same2.desktop", "Same (same2) (same3) = same3.desktop",
                  "Try = try.desktop"));
}

TEST_F(AppsTest, SeesEveryChangeAtOnce) {
  write(users / "app.desktop", entry("One"));
  write(users / "program.desktop", entry("Two", "TryExec=" + (users / "program").string()));
  EXPECT_THAT(catalogue(), ElementsAre("One = app.desktop"));
  write(users / "app.desktop", entry("Uno"));
  setenv("PATH", (users.string() + ":" + getenv("PATH")).c_str(), 1);
  write(users / "program", "#!/bin/sh\n");
  std::filesystem::permissions(users / "program", std::filesystem::perms::owner_all);
  EXPECT_THAT(catalogue(), ElementsAre("Two = program.desktop", "Uno = app.desktop"));
  std::filesystem::remove(users / "app.desktop");
  EXPECT_THAT(catalogue(), ElementsAre("Two = program.desktop"));
}

class AppsWindowsTest : public AppsTest {
 protected:
  xcb_window_t openWindow(const std::string& property, const std::string& text) {
    const xcb_window_t window = observer.openManagedWindow(300, 300);
    set(window, property, "STRING", 8, text.data(), text.size());
    return window;
  }
  void set(xcb_window_t window, const std::string& property, const std::string& type,
           uint8_t format, const void* data, size_t count) {
    xcb_change_property(observer.get(), XCB_PROP_MODE_REPLACE, window, observer.atom(property),
                        observer.atom(type), format, static_cast<uint32_t>(count), data);
    observer.sync();
  }
  static std::vector<xcb_window_t> windowsOfClass(const std::string& name) {
    std::vector<xcb_window_t> found;
    for (const auto& window : applications::applicationWindows()) {
      if (window.className == name) found.push_back(window.window);
    }
    return found;
  }
  Observer observer;
};

TEST_F(AppsWindowsTest, KnowsRunningApplicationsByTheirWindows) {
  write(systems / "browser.desktop", entry("Browser", "StartupWMClass=Browser"));
  write(systems / "page.desktop", entry("Page", "StartupWMClass=crx_page"));
  write(systems / "other.desktop", entry("Not shown", "NoDisplay=true\nStartupWMClass=crx_page"));
  write(systems / "org.Reader.desktop", entry("Reader"));
  write(systems / "Editor.desktop", entry("Editor"));
  write(systems / "hinted.desktop", entry("Hinted"));
  write(systems / "panel.desktop", entry("Panel"));
  // what is empty names nobody
  write(systems / "empty.desktop", entry("Empty", "StartupWMClass="));
  write(systems / ".desktop", entry("Dot"));
  openWindow("WM_CLASS", std::string("crx_page\0Browser\0", 17));
  openWindow("WM_CLASS", std::string("x\0EDITOR\0", 9));
  openWindow("WM_CLASS", std::string("y\0Editor\0", 9));
  openWindow("WM_CLASS", "unended");
  openWindow("_GTK_APPLICATION_ID", "org.Reader");
  openWindow("_BAMF_DESKTOP_FILE", systems / "hinted.desktop");
  const auto panel = openWindow("WM_CLASS", std::string("panel\0Panel\0", 12));
  const xcb_atom_t dock = observer.atom("_NET_WM_WINDOW_TYPE_DOCK");
  set(panel, "_NET_WM_WINDOW_TYPE", "ATOM", 32, &dock, 1);
  EXPECT_TRUE(eventually([&] { return windowsOfClass("Panel").size() == 1; }));
  EXPECT_THAT(catalogue(), ElementsAre("Browser = browser.desktop", "Dot = .desktop",
                                       "*Editor = Editor.desktop", "Empty = empty.desktop",
                                       "*Hinted = hinted.desktop", "*Page = page.desktop",
                                       "Panel = panel.desktop", "*Reader = org.Reader.desktop"));
}

TEST_F(AppsWindowsTest, StartsAProgramThenBringsItForward) {
  const std::string program = systems / "program";
  write(program,
        "#!/bin/sh\nprintenv DESKTOP_STARTUP_ID > \"$0.id\"\n"
        "ps -o sid= -p $$ > \"$0.session\"\n"
        "exec xterm -class OddTerm -geometry 20x5+350+350 -e cat\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  write(systems / "term.desktop",
        "[Desktop Entry]\nType=Application\nName=Term\nStartupWMClass=OddTerm\n"
        "StartupNotify=true\nExec=" +
            program + "\n");
  EXPECT_THAT(catalogue(), ElementsAre("Term = term.desktop"));
  observer.openManagedWindow(350, 350);
  launchApplication("unknown.desktop");
  launchApplication("term.desktop");
  ASSERT_TRUE(eventually([] { return windowsOfClass("OddTerm").size() == 1; }));
  const xcb_window_t term = windowsOfClass("OddTerm").front();
  EXPECT_TRUE(eventually([&] { return observer.activeWindow() == term; }));
  EXPECT_THAT(catalogue(), ElementsAre("*Term = term.desktop"));
  std::string startupId;
  std::ifstream(program + ".id") >> startupId;
  EXPECT_THAT(startupId, ::testing::ContainsRegex("_TIME[1-9][0-9]*$"));
  // Control-C in the host's terminal is for the host
  EXPECT_NE(std::stoi(contentsOf(program + ".session")), getsid(0));

  const xcb_window_t cover = observer.openManagedWindow(350, 350);
  EXPECT_TRUE(eventually([&] { return observer.activeWindow() == cover; }));
  launchApplication("term.desktop");
  EXPECT_TRUE(eventually([&] { return observer.activeWindow() == term; }));
  EXPECT_EQ(applications::applicationWindows().back().window, term);
  EXPECT_THAT(windowsOfClass("OddTerm"), SizeIs(1));

  xcb_kill_client(observer.get(), term);
  observer.sync();
  EXPECT_TRUE(eventually([] { return windowsOfClass("OddTerm").empty(); }));
  EXPECT_THAT(catalogue(), ElementsAre("Term = term.desktop"));
}

TEST_F(AppsWindowsTest, SaysWhatCannotBeStarted) {
  write(systems / "org.example.Bus.desktop", entry("Bus", "DBusActivatable=true"));
  write(systems / "path.desktop", entry("Path", "Path=/nowhere"));
  for (const std::string id : {"org.example.Bus.desktop", "path.desktop"}) {
    const TemporaryFolder folder;
    const auto said = [&] { return contentsOf(folder.path / "said"); };
    const int standardError = dup(STDERR_FILENO);
    const int file = open((folder.path / "said").c_str(), O_WRONLY | O_CREAT, S_IRUSR | S_IWUSR);
    dup2(file, STDERR_FILENO);
    launchApplication(id);
    EXPECT_TRUE(eventually([&] { return said().ends_with('\n'); }));
    dup2(standardError, STDERR_FILENO);
    close(file);
    close(standardError);
    EXPECT_THAT(said(), ::testing::StartsWith("tapdeck: " + id + " cannot be started: "));
  }
}

}  // namespace
}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new tapdeck::testing::Environment);
  return RUN_ALL_TESTS();
}
