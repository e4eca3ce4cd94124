#include <string>
#include <vector>

#include "Runner/Base64.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

using platform::ActivationPolicy;

constexpr const char* kDock = "/Users/me/Library/Preferences/com.apple.dock.plist";

Value entry(const char* bundleId, const char* name, bool isRunning = false) {
  return Value(mapOf("bundleId", bundleId, "name", name, "isRunning", isRunning));
}

/// A tile of the Dock with these keys and values in turn.
Value tileOf(const auto&... content) {
  return Value(mapOf("tile-data", mapOf(content...)));
}

Value tile(const char* bundleId, const char* label) {
  return tileOf("bundle-identifier", bundleId, "file-label", label);
}

class ApplicationsTest : public HostTest {
 protected:
  static recording::Applications& applications() { return script().applications; }
  static void keepInDock(const Value::List& tiles) {
    applications().propertyLists[kDock] = mapOf("persistent-apps", tiles);
  }
  static void install(const std::string& folder, const std::string& name,
                      const std::string& bundleId) {
    applications().folders[folder].push_back(name);
    applications().bundles[folder + "/" + name] = bundleId;
  }
  Value::List catalogue() { return *reply("getRunningApps").getIf<Value::List>(); }
  Value icon(const char* bundleId) { return reply("getAppIcon", "bundleId", bundleId); }
};

TEST_F(ApplicationsTest, TheFirstSourceOfAnIdentifierNamesIt) {
  applications().running = {{ActivationPolicy::regular, "run", "Running", 1},
                            {ActivationPolicy::regular, "twice", "A first", 2},
                            {ActivationPolicy::regular, "twice", "Z second", 3}};
  keepInDock({tile("run", "In the Dock"), tile("dock", "Dock"), tile("dock", "Dock again")});
  for (const char* folder : {"/Applications", "/Users/me/Applications", "/System/Applications"}) {
    for (const char* id : {"run", "dock", "everywhere"}) {
      install(folder, std::string(folder).substr(1, 3) + " " + id + ".app", id);
    }
  }
  install("/Users/me/Applications", "Mine.app", "mine");
  install("/Applications", "Shout.APP", "shout");
  applications().folders["/Applications"].insert(applications().folders["/Applications"].begin(),
                                                 "Nobody.app");
  install("/System/Applications", "Mine too.app", "mine");
  install("/System/Applications", "System.app.app", "system");
  EXPECT_THAT(catalogue(),
              ElementsAre(entry("everywhere", "App everywhere"), entry("dock", "Dock"),
                          entry("mine", "Mine"), entry("run", "Running", true),
                          entry("system", "System.app"), entry("twice", "Z second", true)));
}

TEST_F(ApplicationsTest, OnlyOrdinaryApplicationsCountAsRunning) {
  applications().running = {{ActivationPolicy::accessory, "menu", "Menu", 1},
                            {ActivationPolicy::regular, std::nullopt, "Nameless", 3},
                            {ActivationPolicy::regular, "unnamed", std::nullopt, 4},
                            {ActivationPolicy::regular, "empty", "", 5}};
  install("/Applications", "Menu bar.app", "menu");
  EXPECT_THAT(catalogue(), ElementsAre(entry("empty", "", true), entry("menu", "Menu bar")));
}

TEST_F(ApplicationsTest, SkipsTilesThatAreNoApplications) {
  const Value text("text");
  keepInDock({text, Value(mapOf()), Value(mapOf("tile-data", text)), tileOf("file-label", text),
              tileOf("bundle-identifier", text), tileOf("bundle-identifier", text, "file-label", 5),
              tile("kept", "Kept")});
  EXPECT_THAT(catalogue(), ElementsAre(entry("kept", "Kept")));
  applications().propertyLists[kDock] = mapOf("persistent-apps", text);
  EXPECT_THAT(catalogue(), IsEmpty());
}

TEST_F(ApplicationsTest, SortsByCodePointsAndLeavesEqualNamesInTheirOrder) {
  for (const char* name : {"calc", "Zoo", "\xEF\xBF\xBD", "\xF0\x9F\x8E\xB5", "Same"}) {
    install("/Applications", std::string(name) + ".app", std::string("z ") + name);
  }
  install("/Users/me/Applications", "Same.app", "a");
  EXPECT_THAT(catalogue(),
              ElementsAre(entry("z Same", "Same"), entry("a", "Same"), entry("z Zoo", "Zoo"),
                          entry("z calc", "calc"), entry("z \xEF\xBF\xBD", "\xEF\xBF\xBD"),
                          entry("z \xF0\x9F\x8E\xB5", "\xF0\x9F\x8E\xB5")));
}

TEST_F(ApplicationsTest, DrawsTheIconOfTheRunningApplicationElseOfTheFile) {
  applications().running = {{ActivationPolicy::regular, "Safari", "Safari", 6},
                            {ActivationPolicy::accessory, "safari", std::nullopt, 7},
                            {ActivationPolicy::regular, "safari", "Safari", 8}};
  install("/Applications", "Mail.app", "mail");
  EXPECT_EQ(icon("safari"), Value("iVBORw=="));
  EXPECT_EQ(icon("mail"), Value("iVBORw=="));
  EXPECT_THAT(trace(), ElementsAre("copy icon of process 7 onto 64x64 bitmap",
                                   "PNG of 64x64 bitmap compressed by 0.500000",
                                   "copy icon of /Applications/Mail.app onto 64x64 bitmap",
                                   "PNG of 64x64 bitmap compressed by 0.500000"));

  // one that runs may have no icon at hand, or just have ended
  install("/Applications", "Safari.app", "safari");
  applications().runningIconFails = true;
  EXPECT_EQ(icon("safari"), Value("iVBORw=="));
  EXPECT_THAT(trace(), ElementsAre("copy icon of /Applications/Safari.app onto 64x64 bitmap",
                                   "PNG of 64x64 bitmap compressed by 0.500000"));

  EXPECT_EQ(icon("unknown"), Value(""));
  applications().iconFails = true;
  EXPECT_EQ(icon("mail"), Value(""));
  applications().iconFails = false;
  applications().bitmapFails = true;
  EXPECT_EQ(icon("mail"), Value(""));
  EXPECT_THAT(trace(), IsEmpty());
  applications().bitmapFails = false;
  applications().png.reset();
  EXPECT_EQ(icon("mail"), Value(""));
}

TEST_F(ApplicationsTest, LaunchesWhatIsInstalledAndSaysNothing) {
  install("/Applications", "Mail.app", "mail");
  EXPECT_EQ(reply("launchApp", "bundleId", "mail"), Value());
  EXPECT_THAT(trace(), ElementsAre("open application /Applications/Mail.app"));
  EXPECT_EQ(reply("launchApp", "bundleId", "unknown"), Value());
  EXPECT_EQ(reply("launchApp", "bundleId", "Mail"), Value());
  EXPECT_THAT(trace(), IsEmpty());
}

TEST(Base64Test, PadsAndBreaksNoLines) {
  EXPECT_EQ(base64(std::vector<uint8_t>{0xFB, 0xFF, 0xBE, 0x00}), "+/++AA==");
  EXPECT_EQ(base64(std::vector<uint8_t>{'f', 'o'}), "Zm8=");
  EXPECT_EQ(base64(std::vector<uint8_t>(300)), std::string(400, 'A'));
}

}  // namespace
}  // namespace tapdeck
