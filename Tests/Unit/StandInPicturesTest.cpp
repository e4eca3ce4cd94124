#include <gmock/gmock.h>

#include <optional>

#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

/// A host that gives pictures by the rule of the real one: one last picture, whoever it was for.
class StandInPictures : public StandInTest {
 protected:
  StandInPictures() {
    engine->setMethodCallHandler(kControl, [this](const MethodCall& call, Reply reply) {
      if (call.method == "captureScreen") {
        reply.success(capture(*call.arguments.getIf<Value::Map>()));
      } else {
        reply.success();
      }
    });
  }

  Value capture(const ValueMap& arguments) {
    const auto width = *arguments.find("maxWidth")->getIf<int64_t>();
    const Value* quality = arguments.find("quality");
    const std::pair frame(width, screen);
    if (arguments.find("force") == nullptr && last == frame) {
      return Value(ValueMap{{"unchanged", Value(true)}});
    }
    last = frame;
    const auto level = static_cast<uint8_t>(quality != nullptr ? *quality->getIf<int64_t>() : 60);
    return Value(ValueMap{{"jpeg", Value(codec::Bytes{level, screen})}, {"w", Value(width)}});
  }

  /// What the page gets: "unchanged", or what the picture shows and at which quality.
  std::string poll(Page& page, int64_t width, std::optional<int64_t> quality = {},
                   bool force = false) {
    ValueMap arguments{{"maxWidth", Value(width)}};
    if (quality) arguments.set(Value("quality"), Value(*quality));
    if (force) arguments.set(Value("force"), Value(true));
    const Outcome outcome = page.ask(kControl, {"captureScreen", Value(arguments)});
    const auto& reply = *std::get<Value>(outcome).getIf<Value::Map>();
    if (reply.find("unchanged") != nullptr) return "unchanged";
    const auto& jpeg = *reply.find("jpeg")->getIf<Value::Bytes>();
    return std::string(1, static_cast<char>(jpeg.data()[1])) + "@" + std::to_string(jpeg.data()[0]);
  }

  uint8_t screen = 'a';
  std::optional<std::pair<int64_t, uint8_t>> last;
};

TEST_F(StandInPictures, EveryPageIsRightWithinOnePollAndAStillScreenIsSentOnce) {
  struct View {
    int64_t width;
    std::optional<int64_t> quality;
  };
  for (const View second : {View{800, {}}, View{400, {}}, View{800, 90}}) {
    ASSERT_TRUE(waitForPeers(0));
    const auto one = openPage(), two = openPage();
    const std::string quality = "@" + std::to_string(second.quality.value_or(60));
    for (const char shown : {'a', 'b', 'c'}) {
      screen = static_cast<uint8_t>(shown);
      const std::string picture(1, shown);
      EXPECT_EQ(poll(*one, 800), picture + "@60");
      EXPECT_EQ(poll(*two, second.width, second.quality), picture + quality);
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(poll(*one, 800), "unchanged");
        EXPECT_EQ(poll(*two, second.width, second.quality), "unchanged");
      }
    }
  }
}

TEST_F(StandInPictures, AWholePictureWhereThePageAsksForIt) {
  const auto page = openPage();
  EXPECT_EQ(poll(*page, 800), "a@60");
  EXPECT_EQ(poll(*page, 800, {}, true), "a@60");
  page->call(1, kControl, {"resetScreenCapture", Value()});
  EXPECT_EQ((page->waitForMessages(3), poll(*page, 800)), "a@60");
  // the page has forgotten a view that it left
  EXPECT_EQ(poll(*page, 400), "a@60");
  EXPECT_EQ(poll(*page, 800), "a@60");
}

}  // namespace
}  // namespace tapdeck
