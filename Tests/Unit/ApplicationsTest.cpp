#include <string>
#include <vector>

#include "Runner/Base64.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

using platform::ActivationPolicy;

constexpr const char* kDock = "/Users/me/Library/Preferences/com.apple.dock.plist";

Value entry(const char* bundleId, const char* name, bool isRunning = false) {
  return Value(ValueMap{
      {"bundleId", Value(bundleId)}, {"name", Value(name)}, {"isRunning", Value(isRunning)}});
}

ValueMap withTileData(Value data) {
  return ValueMap{{"tile-data", std::move(data)}};
}

Value tile(const char* bundleId, const char* label) {
  return Value(withTileData(
      Value(ValueMap{{"bundle-identifier", Value(bundleId)}, {"file-label", Value(label)}})));
}

ValueMap named(const char* bundleId) {
  return ValueMap{{"bundleId", Value(bundleId)}};
}

class ApplicationsTest : public HostTest {
 protected:
  static recording::Applications& applications() { return script().applications; }
  static void keepInDock(Value::List tiles) {
    applications().propertyLists[kDock] = ValueMap{{"persistent-apps", Value(std::move(tiles))}};
  }
  static void install(const std::string& folder, const std::string& name,
                      const std::string& bundleId) {
    applications().folders[folder].push_back(name);
    applications().bundles[folder + "/" + name] = bundleId;
  }
  Value::List catalogue() {
    const Value list = reply("getRunningApps");
    return list.getIf<Value::List>() != nullptr ? *list.getIf<Value::List>() : Value::List();
  }
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
  const auto tileOf = [](const ValueMap& data) { return Value(withTileData(Value(data))); };
  const Value text("text");
  keepInDock({text, Value(ValueMap()), Value(withTileData(text)), tileOf({{"file-label", text}}),
              tileOf({{"bundle-identifier", text}}),
              tileOf({{"bundle-identifier", text}, {"file-label", Value(5)}}),
              tile("kept", "Kept")});
  EXPECT_THAT(catalogue(), ElementsAre(entry("kept", "Kept")));
  applications().propertyLists[kDock] = ValueMap{{"persistent-apps", text}};
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
  EXPECT_EQ(reply("getAppIcon", named("safari")), Value("iVBORw=="));
  EXPECT_EQ(reply("getAppIcon", named("mail")), Value("iVBORw=="));
  EXPECT_THAT(trace(), ElementsAre("copy icon of process 7 onto 64x64 bitmap",
                                   "PNG of 64x64 bitmap compressed by 0.500000",
                                   "copy icon of /Applications/Mail.app onto 64x64 bitmap",
                                   "PNG of 64x64 bitmap compressed by 0.500000"));

  // one that runs may have no icon at hand, or just have ended
  install("/Applications", "Safari.app", "safari");
  applications().runningIconFails = true;
  EXPECT_EQ(reply("getAppIcon", named("safari")), Value("iVBORw=="));
  EXPECT_THAT(trace(), ElementsAre("copy icon of /Applications/Safari.app onto 64x64 bitmap",
                                   "PNG of 64x64 bitmap compressed by 0.500000"));

  EXPECT_EQ(reply("getAppIcon", named("unknown")), Value(""));
  applications().iconFails = true;
  EXPECT_EQ(reply("getAppIcon", named("mail")), Value(""));
  applications().iconFails = false;
  applications().bitmapFails = true;
  EXPECT_EQ(reply("getAppIcon", named("mail")), Value(""));
  EXPECT_THAT(trace(), IsEmpty());
  applications().bitmapFails = false;
  applications().png.reset();
  EXPECT_EQ(reply("getAppIcon", named("mail")), Value(""));
}

TEST_F(ApplicationsTest, LaunchesWhatIsInstalledAndSaysNothing) {
  install("/Applications", "Mail.app", "mail");
  EXPECT_EQ(reply("launchApp", named("mail")), Value());
  EXPECT_THAT(trace(), ElementsAre("open application /Applications/Mail.app"));
  EXPECT_EQ(reply("launchApp", named("unknown")), Value());
  EXPECT_EQ(reply("launchApp", named("Mail")), Value());
  EXPECT_THAT(trace(), IsEmpty());
}

TEST(Base64Test, PadsAndBreaksNoLines) {
  EXPECT_EQ(base64(std::vector<uint8_t>{0xFB, 0xFF, 0xBE, 0x00}), "+/++AA==");
  EXPECT_EQ(base64(std::vector<uint8_t>{'f', 'o'}), "Zm8=");
  EXPECT_EQ(base64(std::vector<uint8_t>(300)), std::string(400, 'A'));
}

}  // namespace
}  // namespace tapdeck
