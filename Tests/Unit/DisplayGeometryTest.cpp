#include "Runner/Display/DisplayGeometry.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

using ::testing::Optional;

MATCHER_P2(IsPoint, x, y, "") {
  return arg.x == x && arg.y == y;
}

class DisplayGeometryTest : public HostTest {};

TEST_F(DisplayGeometryTest, RecordsHoldTenKeysInTopLeftPoints) {
  auto unnumbered = screen(0, {{1440, 100.9}, {800.75, 600}}, 1.5);
  unnumbered.number.reset();
  script().screens = {screen(69733248, {{0, 0}, {1440, 900}}, 2.0),
                      screen(2, {{0, 900}, {1920, 1080}}), unnumbered,
                      screen(4, {{-1280.5, 0}, {1280.5, 1024}})};
  const auto record = [](const char* id, const char* name, int x, int y, int w, int h, double scale,
                         int pxW, int pxH, bool primary) {
    return Value(mapOf("id", id, "name", name, "x", x, "y", y, "w", w, "h", h, "scale", scale,
                       "pxW", pxW, "pxH", pxH, "primary", primary));
  };
  EXPECT_EQ(reply("getDisplays"),
            Value(Value::List{
                record("69733248", "Display 69733248", 0, 0, 1440, 900, 2.0, 2880, 1800, true),
                record("2", "Display 2", 0, -1080, 1920, 1080, 1.0, 1920, 1080, false),
                record("screen-2", "Display 0", 1440, 199, 800, 600, 1.5, 1201, 900, false),
                record("4", "Display 4", -1280, -124, 1280, 1024, 1.0, 1280, 1024, false)}));
}

TEST_F(DisplayGeometryTest, IdentifiersResolveToAttachedDisplaysOnly) {
  script().screens = {screen(1, {{0, 0}, {1440, 900}}), screen(42, {{1440, 0}, {1440, 900}})};
  script().mainDisplay = 77;  // the main display is taken unchecked
  EXPECT_THAT(resolveDisplayId(std::nullopt), Optional(77u));
  EXPECT_THAT(resolveDisplayId(""), Optional(77u));
  EXPECT_THAT(resolveDisplayId("+42"), Optional(42u));
  for (const char* id : {"43", "4294967338", "-42", "++42", " 42", "42 ", "+", "screen-2"}) {
    EXPECT_EQ(resolveDisplayId(id), std::nullopt) << id;
  }
  EXPECT_TRUE(screenForDisplayId("42"));
  for (const char* id : {"+42", "042", "", "screen-2"}) {
    EXPECT_FALSE(screenForDisplayId(id)) << id;
  }
}

TEST_F(DisplayGeometryTest, PointsOffEveryDisplayGoToTheNearest) {
  EXPECT_THAT(clampToDisplays({-7, 9000.5}), IsPoint(-7, 9000.5)) << "no screens";

  script().screens = {screen(1, {{0, 0}, {1440, 900}})};
  EXPECT_THAT(clampToDisplays({1439.75, 899.75}), IsPoint(1439.75, 899.75));
  EXPECT_THAT(clampToDisplays({-5, 900}), IsPoint(0, 899));
  EXPECT_THAT(clampToDisplays({1440, 10}), IsPoint(1439, 10));

  script().screens.push_back(screen(2, {{-1920, 0}, {1920, 1080}}));
  script().screens.push_back(screen(3, {{0, 1000}, {1440, 900}}));
  EXPECT_THAT(clampToDisplays({-0.5, 10}), IsPoint(-0.5, 10));
  EXPECT_THAT(clampToDisplays({-100, -200}), IsPoint(-100, -180));
  EXPECT_THAT(clampToDisplays({-900, -1200}), IsPoint(0, -1000)) << "as the crow flies";
  EXPECT_THAT(clampToDisplays({700, -60}), IsPoint(700, -101));
  EXPECT_THAT(clampToDisplays({700, -40}), IsPoint(700, 0));
  EXPECT_THAT(clampToDisplays({700, -50.5}), IsPoint(700, 0)) << "the earlier of two as near";
}

TEST_F(DisplayGeometryTest, FractionsSpanADisplayOrTheDesktop) {
  script().screens = {screen(1, {{0, 0}, {1440, 900}}), screen(2, {{-1920, -180}, {1920, 1080}})};
  EXPECT_THAT(mapNormalizedPoint("1", 0.5, 0.5), Optional(IsPoint(720, 450)));
  EXPECT_THAT(mapNormalizedPoint("2", 0, 0), Optional(IsPoint(-1920, 0)));
  EXPECT_THAT(mapNormalizedPoint("2", 7, 1), Optional(IsPoint(-1, 1079)));
  EXPECT_THAT(mapNormalizedPoint({}, 0, -3), Optional(IsPoint(-1920, 0)));
  EXPECT_THAT(mapNormalizedPoint("99", 1, 1), Optional(IsPoint(1439, 1079)));
  script().screens.clear();
  EXPECT_EQ(mapNormalizedPoint("1", 0.5, 0.5).has_value(), false);
  EXPECT_EQ(pivotHeight(), 1080.0);
}

}  // namespace
}  // namespace tapdeck
