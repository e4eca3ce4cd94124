#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

#include "Engine/Channels.h"
#include "Engine/StandardCodec.h"
#include "Platform/Linux/Call/CallJson.h"
#include "Platform/Linux/Call/CommandLine.h"

namespace tapdeck {
namespace {

std::string line(const Outcome& outcome) {
  return lineOf(jsonFromOutcome(outcome));
}

TEST(CallJsonTest, ReadsArguments) {
  EXPECT_EQ(valueFromJson("3"), Value(3));
  EXPECT_EQ(valueFromJson("3.0"), Value(3.0));
  EXPECT_EQ(valueFromJson("9223372036854775807"), Value(INT64_MAX));
  EXPECT_EQ(valueFromJson("9223372036854775808"), Value(9223372036854775808.0));
  EXPECT_EQ(valueFromJson(R"(["é", true, {"b": 1, "a": []}])"),
            Value(Value::List{Value("é"), Value(true),
                              Value(ValueMap{{"b", Value(1)}, {"a", Value(Value::List{})}})}));
  const int limit = codec::kDepthLimit;
  EXPECT_TRUE(codec::decodeMessage(
      codec::encodeMessage(valueFromJson(std::string(limit, '[') + std::string(limit, ']')))));
  const std::string tooDeep = std::string(limit + 1, '[') + std::string(limit + 1, ']');
  for (const char* bad : {"", "1 2", "\"\xFF\"", tooDeep.c_str()}) {
    EXPECT_THROW(valueFromJson(bad), std::invalid_argument) << bad;
  }
}

TEST(CallJsonTest, PrintsReplies) {
  EXPECT_EQ(line(Value(Value::List{Value(), Value(true), Value(3), Value(3.0), Value("é\n")})),
            R"([null,true,3,3.0,"é\n"])");
  EXPECT_EQ(line(Value(std::numeric_limits<double>::infinity())), "null");
  EXPECT_EQ(line(Value(std::vector<uint8_t>{0, 255, 62})), R"({"base64":"AP8+"})");
  EXPECT_EQ(line(Value(Value::Int32List{1, -2})), "[1,-2]");
  EXPECT_EQ(line(Value(Value::Float32List{1.5f, std::numeric_limits<float>::quiet_NaN()})),
            "[1.5,null]");

  ValueMap map{{"z", Value(1)}, {"a", Value(2)}};
  map.set(Value(7), Value());
  map.set(Value(), Value(Value::List{}));
  EXPECT_EQ(line(Value(map)), R"({"z":1,"a":2,"7":null,"null":[]})");

  EXPECT_EQ(line(MethodError{"C", "m", Value(std::vector<uint8_t>{0})}),
            R"({"error":{"code":"C","message":"m","details":{"base64":"AA=="}}})");
  EXPECT_EQ(line(NotImplemented{}), R"({"notImplemented":true})");
}

TEST(CallJsonTest, ReadsCommandLine) {
  const auto plain = parseCommandLine({"scroll", "-3"});
  EXPECT_EQ(plain.channel, kControlChannel);
  EXPECT_EQ(plain.method, "scroll");
  EXPECT_EQ(plain.arguments, Value(-3));
  EXPECT_EQ(parseCommandLine({"--channel=other", "--", "--m"}).method, "--m");
  EXPECT_TRUE(parseCommandLine({"m"}).arguments.isNull());
  EXPECT_TRUE(parseCommandLine({"--listen"}).listen);

  using Words = std::vector<std::string>;
  for (const Words& bad : {Words{}, Words{"--channel", "c"}, Words{"--what"}, Words{"m", "{"},
                           Words{"m", "1", "2"}, Words{"--listen", "m"}, Words{"\xFF"}}) {
    EXPECT_THROW(parseCommandLine(bad), std::invalid_argument) << testing::PrintToString(bad);
  }
}

}  // namespace
}  // namespace tapdeck
