#include <limits>

#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

const Value kUnchanged(mapOf("unchanged", true));

Value frame(int width, int height) {
  return Value(
      mapOf("jpeg", std::vector<uint8_t>{0xff, 0xd8, 0xff, 0xd9}, "w", width, "h", height));
}

Value failure(const char* code) {
  return Value(mapOf("error", code));
}

class ScreenCaptureTest : public HostTest {
 protected:
  ScreenCaptureTest() {
    attach({screen(1, {{0, 0}, {1440, 900}}, 2.0), screen(2, {{1440, 0}, {1024, 768}})});
    script().images.displays = {{1, {2880, 1800, {}}}, {2, {1024, 768, {}}}};
    script().images.rowPadding = 64;
  }
  ~ScreenCaptureTest() override { reply("resetScreenCapture"); }

  Value capture(const auto&... arguments) { return reply("captureScreen", arguments...); }
  static std::vector<uint8_t>& drawn() { return script().images.displays.at(1).drawn; }
};

TEST_F(ScreenCaptureTest, TakesTheStepsInOrder) {
  const Value answer = capture();
  EXPECT_EQ(answer, frame(1280, 800));
  EXPECT_EQ(answer.getIf<ValueMap>()->find("jpeg")->getIf<Value::Bytes>()->data(),
            script().images.encoded)
      << "a copy of the encoder's file";
  EXPECT_THAT(trace(),
              ElementsAre("image of display 1", "context 1280x800 of 8 bits, row 0, format 0x2006",
                          "interpolation 2", "draw into (0,0) 1280x800", "image of context",
                          "JPEG of 1", "add 1280x800 at quality 0.6", "finalise"));
  EXPECT_EQ(reinterpret_cast<uintptr_t>(window->_prevFrame) % 64, 0u);
  EXPECT_EQ(window->_prevFrameStride, 1280 * 4 + 64);
  EXPECT_EQ(window->_prevFrameHeight, 800);
  EXPECT_EQ(window->_prevFrameBytes, (1280 * 4 + 64) * 800);

  EXPECT_EQ(capture(), kUnchanged);
  EXPECT_THAT(trace(),
              ElementsAre("image of display 1", "context 1280x800 of 8 bits, row 0, format 0x2006",
                          "interpolation 2", "draw into (0,0) 1280x800"));
}

TEST_F(ScreenCaptureTest, LimitsWidthAndNeverScalesUp) {
  const int64_t most = std::numeric_limits<int64_t>::max();
  const std::tuple<size_t, size_t, Value, int, int> rows[] = {
      {2880, 1800, Value(100), 320, 200},   {2880, 1800, Value(5000), 1920, 1200},
      {2880, 1800, Value(-most), 320, 200}, {2880, 1800, Value(most), 1920, 1200},
      {2880, 1800, Value(640.0), 640, 400}, {2880, 1800, Value("640"), 1280, 800},
      {1024, 768, Value(1280), 1024, 768},  {200, 100, Value(100), 200, 100},
      {320, 7, Value(320), 320, 7},         {640, 3, Value(320), 320, 2},  // 1.5
      {640, 5, Value(320), 320, 3},         {641, 5, Value(320), 320, 2},  // 2.5, 2.496
      {9000, 10, Value(320), 320, 1},                                      // 0.36
  };
  for (const auto& [width, height, maxWidth, outWidth, outHeight] : rows) {
    script().images.displays[1] = {width, height, {}};
    EXPECT_EQ(capture("maxWidth", maxWidth, "force", true), frame(outWidth, outHeight))
        << width << "x" << height;
  }
}

TEST_F(ScreenCaptureTest, LimitsQuality) {
  const std::pair<Value, const char*> rows[] = {
      {Value(0), "0.2"},    {Value(20), "0.2"}, {Value(21), "0.21"},    {Value(95), "0.95"},
      {Value(100), "0.95"}, {Value(), "0.6"},   {Value("high"), "0.6"}, {Value(70.5), "0.6"},
  };
  for (const auto& [quality, factor] : rows) {
    capture("quality", quality, "force", 1);
    EXPECT_THAT(trace(), Contains("add 1280x800 at quality " + std::string(factor)));
  }
}

TEST_F(ScreenCaptureTest, TakesTheDisplayThatIsNamed) {
  EXPECT_EQ(capture("display", ""), frame(1280, 800));
  EXPECT_EQ(capture("display", 2, "force", "yes"), kUnchanged) << "wrong types";
  EXPECT_EQ(capture("display", "2"), frame(1024, 768));
  EXPECT_EQ(capture(), frame(1280, 800)) << "one last frame for all displays";
  trace();
  EXPECT_EQ(capture("display", "3"), failure("no_display"));
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(ScreenCaptureTest, EachStepThatFailsIsAnswered) {
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"CGBitmapContextCreate", "capture_failed", false},
      {"CGBitmapContextGetData", "capture_failed", false},
      {"CGBitmapContextCreateImage", "capture_failed", true},
      {"CGImageDestinationCreateWithData", "encode_failed", true},
      {"CGImageDestinationFinalize", "encode_failed", true},
  };
  for (const auto& [failing, code, isKept] : rows) {
    reply("resetScreenCapture");
    script().images.failing = failing;
    EXPECT_EQ(capture(), failure(code)) << failing;
    script().images.failing.clear();
    EXPECT_EQ(capture(), isKept ? kUnchanged : frame(1280, 800)) << failing;
  }
  script().images.jpeg.clear();
  EXPECT_EQ(capture("force", true), failure("encode_failed"));
  for (const auto& [width, height] : {std::pair{0, 1800}, {2880, 0}}) {
    script().images.displays[1] = {static_cast<size_t>(width), static_cast<size_t>(height), {}};
    EXPECT_EQ(capture(), failure("capture_failed"));
  }
  script().images.displays.clear();
  EXPECT_EQ(capture(), failure("capture_failed"));
  EXPECT_NE(window->_prevFrame, nullptr);
}

TEST_F(ScreenCaptureTest, MeasuresDriftAgainstTheLastFrameSent) {
  constexpr size_t kFourthByteOfTheLastPixel = 1280 * 800 * 4 - 1;
  drawn().assign(kFourthByteOfTheLastPixel + 1, 100);
  capture();
  uint8_t& byte = drawn()[kFourthByteOfTheLastPixel];
  for (const auto& [value, isSent] :
       {std::pair{104, false}, {96, false}, {105, true}, {101, false}, {100, true}, {95, true}}) {
    byte = static_cast<uint8_t>(value);
    EXPECT_EQ(capture(), isSent ? frame(1280, 800) : kUnchanged) << value;
  }
  EXPECT_EQ(capture("force", true), frame(1280, 800));
}

TEST_F(ScreenCaptureTest, PixelsOfTheSameVersionAreNotComparedAgain) {
  drawn().assign(1280 * 800 * 4, 100);
  script().images.version = 1;
  capture();
  drawn()[0] = 200;  // as no platform may do: to see that nobody looks
  EXPECT_EQ(capture(), kUnchanged);
  script().images.version = 2;
  EXPECT_EQ(capture(), frame(1280, 800));
  reply("resetScreenCapture");
  EXPECT_EQ(capture(), frame(1280, 800));
}

TEST_F(ScreenCaptureTest, ANewGeometryOrAResetSendsTheFrame) {
  const ValueMap narrow = mapOf("maxWidth", 640);
  EXPECT_EQ(capture(), frame(1280, 800));
  EXPECT_EQ(capture(narrow), frame(640, 400));
  EXPECT_EQ(capture(narrow), kUnchanged);
  EXPECT_EQ(window->_prevFrameHeight, 400);
  script().images.rowPadding = 0;
  EXPECT_EQ(capture(narrow), frame(640, 400)) << "another stride";

  EXPECT_EQ(reply("resetScreenCapture"), Value());
  EXPECT_EQ(window->_prevFrame, nullptr);
  EXPECT_EQ(window->_prevFrameBytes + window->_prevFrameStride + window->_prevFrameHeight, 0);
  EXPECT_EQ(capture(narrow), frame(640, 400));
}

}  // namespace
}  // namespace tapdeck
