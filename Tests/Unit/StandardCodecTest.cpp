#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Engine/StandardCodec.h"

namespace tapdeck::codec {
namespace {

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Bytes text(const std::string& content) {
  return Bytes(content.begin(), content.end());
}

void expectBytes(const Value& value, const Bytes& bytes) {
  SCOPED_TRACE(testing::PrintToString(bytes));
  EXPECT_EQ(encodeMessage(value), bytes);
  EXPECT_EQ(decodeMessage(bytes), value);
}

void expectMalformed(const Bytes& bytes) {
  EXPECT_EQ(decodeMessage(bytes), std::nullopt) << testing::PrintToString(bytes);
}

Value list(Value::List elements) {
  return Value(std::move(elements));
}

Value nested(int depth, const Value& innermost = Value()) {
  Value value = innermost;
  for (int n = 0; n < depth; ++n) value = list({std::move(value)});
  return value;
}

TEST(StandardCodecTest, ScalarsHaveTheirExactBytes) {
  expectBytes(Value(), {0});
  expectBytes(Value(true), {1});
  expectBytes(Value(false), {2});
  expectBytes(Value(0x12345678), {3, 0x78, 0x56, 0x34, 0x12});
  expectBytes(Value(-2), {3, 0xFE, 0xFF, 0xFF, 0xFF});
  expectBytes(Value(int64_t{INT32_MAX}), {3, 0xFF, 0xFF, 0xFF, 0x7F});
  expectBytes(Value(int64_t{INT32_MAX} + 1), {4, 0, 0, 0, 0x80, 0, 0, 0, 0});
  expectBytes(Value(int64_t{INT32_MIN}), {3, 0, 0, 0, 0x80});
  expectBytes(Value(int64_t{INT32_MIN} - 1), {4, 0xFF, 0xFF, 0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF});
  expectBytes(Value(1.5), {6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F});
  expectBytes(Value("aé€😀"), Bytes{7, 10} + text("aé€😀"));
  EXPECT_EQ(decodeMessage(Bytes{5, 2, 'f', '0'}), Value("f0")) << "a large integer's digits";

  const Bytes nan{6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x7F};
  EXPECT_EQ(encodeMessage(decodeMessage(nan).value()), nan);
}

TEST(StandardCodecTest, ListsAndMapsHaveTheirExactBytes) {
  expectBytes(Value(Bytes{1, 254, 255}), {8, 3, 1, 254, 255});
  expectBytes(Value(Value::Int32List{1, -1}), {9, 2, 0, 0, 1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
  expectBytes(Value(Value::Int64List{-2}),
              {10, 1, 0, 0, 0, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
  expectBytes(Value(Value::Float64List{1}),
              {11, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F});
  expectBytes(Value(Value::Float32List{1.5f}), {14, 1, 0, 0, 0, 0, 0xC0, 0x3F});
  expectBytes(list({Value(), list({Value(true)}), Value("x")}), {12, 3, 0, 12, 1, 1, 7, 1, 'x'});
  expectBytes(Value(ValueMap{{"b", Value(1)}, {"a", Value(ValueMap{{"c", Value()}})}}),
              {13, 2, 7, 1, 'b', 3, 1, 0, 0, 0, 7, 1, 'a', 13, 1, 7, 1, 'c', 0});
  // Alignment counts from the message's start wherever the value stands.
  expectBytes(list({Value("xyz"), Value(Value::Int32List{1}), Value(true)}),
              {12, 3, 7, 3, 'x', 'y', 'z', 9, 1, 0, 0, 0, 1, 0, 0, 0, 1});
}

TEST(StandardCodecTest, SizesTakeOneTwoOrFourBytes) {
  const auto expectPrefix = [](size_t size, const Bytes& prefix) {
    expectBytes(Value(std::string(size, 'a')), Bytes{7} + prefix + Bytes(size, 'a'));
    expectBytes(Value(Bytes(size, 9)), Bytes{8} + prefix + Bytes(size, 9));
    expectBytes(Value(Value::List(size, Value(true))), Bytes{12} + prefix + Bytes(size, 1));
  };
  expectPrefix(253, {253});
  expectPrefix(254, {254, 254, 0});
  expectPrefix(65535, {254, 255, 255});
  expectPrefix(65536, {255, 0, 0, 1, 0});
  EXPECT_EQ(decodeMessage(Bytes{7, 255, 1, 0, 0, 0, 'a'}), Value("a")) << "longer than need be";
}

TEST(StandardCodecTest, MethodCallsRoundTrip) {
  const MethodCall call{"move", Value(0.5)};
  // The padding is what aligns the number to the whole call, not to the arguments.
  const Bytes bytes{7, 4, 'm', 'o', 'v', 'e', 6, 0, 0, 0, 0, 0, 0, 0, 0xE0, 0x3F};
  EXPECT_EQ(encodeMethodCall(call), bytes);
  const MethodCall back = decodeMethodCall(bytes).value();
  EXPECT_EQ(back.method, call.method);
  EXPECT_EQ(back.arguments, call.arguments);

  EXPECT_FALSE(decodeMethodCall(Bytes{3, 0, 0, 0, 0, 0})) << "a name that is no string";
  EXPECT_FALSE(decodeMethodCall(Bytes{7, 1, 'm', 0, 0})) << "a value too many";
}

TEST(StandardCodecTest, EnvelopesRoundTrip) {
  const auto expectEnvelope = [](const Outcome& outcome, const Bytes& bytes) {
    EXPECT_EQ(encodeEnvelope(outcome), bytes);
    EXPECT_EQ(decodeEnvelope(bytes), outcome);
  };
  expectEnvelope(Value(), {0, 0});
  expectEnvelope(Value(Value::Int32List{1}), {0, 9, 1, 0, 1, 0, 0, 0});
  expectEnvelope(MethodError{"E", "m", Value(true)}, {1, 7, 1, 'E', 7, 1, 'm', 1});
  EXPECT_EQ(encodeEnvelope(NotImplemented{}), std::nullopt);
  EXPECT_EQ(decodeEnvelope(std::nullopt), Outcome(NotImplemented{}));

  const Outcome bare = MethodError{"E", "", Value()};
  EXPECT_EQ(decodeEnvelope(Bytes{1, 7, 1, 'E', 0, 0}), bare) << "a null message";
  EXPECT_EQ(decodeEnvelope(Bytes{1, 7, 1, 'E', 0, 0, 7, 2, 'a', 't'}), bare) << "a stack trace";
  for (const Bytes& bytes : {Bytes{}, Bytes{0}, Bytes{2, 0}, Bytes{0, 0, 0}, Bytes{1, 0, 0, 0},
                             Bytes{1, 7, 1, 'E', 1, 0}, Bytes{1, 7, 1, 'E', 0},
                             Bytes{1, 7, 1, 'E', 0, 0, 0, 0}, Bytes{1, 7, 1, 'E', 0, 0, 7, 9}}) {
    EXPECT_EQ(decodeEnvelope(bytes), std::nullopt) << testing::PrintToString(bytes);
  }
}

TEST(StandardCodecTest, RefusesWhatIsCutShortOrGoesOn) {
  const Value everything = list(
      {Value(), Value(true), Value(1), Value(INT64_MAX), Value(2.5), Value(std::string(300, 'x')),
       Value(Bytes{1, 2, 3}), Value(Value::Int32List{1, 2}), Value(Value::Int64List{1, 2}),
       Value(Value::Float32List{1, 2}), Value(ValueMap{{"a", Value(Value::Float64List{1, 2})}})});
  const Bytes bytes = encodeMessage(everything);
  ASSERT_EQ(decodeMessage(bytes), everything);
  for (size_t length = 0; length < bytes.size(); ++length) {
    // A copy of its own, so that the address sanitizer sees a read past the end.
    EXPECT_FALSE(decodeMessage(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(length))))
        << length;
  }
  expectMalformed(bytes + Bytes{0});
}

TEST(StandardCodecTest, RefusesSizesBeyondWhatIsLeft) {
  const Bytes huge{255, 0xFF, 0xFF, 0xFF, 0xFF};
  for (uint8_t tag = 5; tag <= 14; ++tag) {
    if (tag != 6) expectMalformed(Bytes{tag} + huge + Bytes(32, 0));
  }
  // Each list alone would fit into the rest, but what stands around it needs its share too.
  expectMalformed({12, 2, 12, 2, 0, 0});
  expectMalformed(Bytes{15});
}

TEST(StandardCodecTest, LimitsDepthOfWhatItDecodesOnly) {
  const Value deepest = nested(kDepthLimit, Value(7));
  EXPECT_EQ(decodeMessage(encodeMessage(deepest)), deepest);
  expectMalformed(encodeMessage(nested(kDepthLimit + 1)));
  EXPECT_EQ(encodeMessage(nested(1000)).size(), 2001u);

  Bytes maps;
  for (int n = 0; n <= kDepthLimit; ++n) maps = maps + Bytes{13, 1};
  expectMalformed(maps + Bytes(kDepthLimit + 2, 0));
}

TEST(StandardCodecTest, RefusesTextThatIsNotUtf8) {
  for (const char* bad :
       {"\x80", "\xC3", "\xC0\xAF", "\xC1\xBF", "\xE0\x9F\xBF", "\xE2\x82", "\xED\xA0\x80",
        "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80", "\xFF", "\xC3(", "\xF0\x9F\x98("}) {
    const std::string content = std::string("a") + bad;
    expectMalformed(Bytes{7, static_cast<uint8_t>(content.size())} + text(content));
  }
  const std::string good(
      "\x7F\0\xC2\x80\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
      "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
      24);
  expectBytes(Value(good), Bytes{7, 24} + text(good));
}

using Entries = std::vector<ValueMap::Entry>;

Bytes mapOf(const Entries& entries) {
  Bytes bytes{13, static_cast<uint8_t>(entries.size())};
  for (const auto& [key, value] : entries) {
    bytes = bytes + encodeMessage(key) + encodeMessage(value);
  }
  return bytes;
}

Entries entriesOf(const Bytes& bytes) {
  const Value value = decodeMessage(bytes).value();
  const ValueMap map = *value.getIf<ValueMap>();
  return {map.begin(), map.end()};
}

TEST(StandardCodecTest, LastOfEqualKeysCounts) {
  const ValueMap ab{{"a", Value(1)}, {"b", Value(2)}};
  const ValueMap ba{{"b", Value(2)}, {"a", Value(1)}};
  const std::pair<Value, Value> equalKeys[] = {
      {Value("k"), Value("k")},
      {Value(), Value()},
      {list({Value(ab)}), list({Value(ba)})},
  };
  for (const auto& [first, second] : equalKeys) {
    EXPECT_EQ(
        entriesOf(mapOf({{first, Value("old")}, {Value(9), Value()}, {second, Value("new")}})),
        (Entries{{first, Value("new")}, {Value(9), Value()}}));
  }
  EXPECT_EQ(entriesOf({13, 2, 3, 5, 0, 0, 0, 1, 4, 5, 0, 0, 0, 0, 0, 0, 0, 2}),
            (Entries{{Value(5), Value(false)}}));
  const Bytes zeros = Bytes{13, 2, 6} + Bytes(13, 0) + Bytes{1, 6} + Bytes(13, 0) + Bytes{0x80, 2};
  EXPECT_EQ(entriesOf(zeros), (Entries{{Value(0.0), Value(false)}}));
}

TEST(StandardCodecTest, KeepsKeysThatDiffer) {
  ValueMap oneTwo, twoThree;
  oneTwo.set(Value(1), Value(2));
  twoThree.set(Value(2), Value(3));
  Entries entries;
  for (const Value& key : {Value("1"), Value(1), Value(true), Value(false), Value(Bytes{1}),
                           list({Value(1)}), Value(ValueMap{{"1", Value(1)}}),
                           list({Value("a"), Value("b")}), list({Value("ab"), Value("")}),
                           list({Value(oneTwo), Value(3)}), list({Value(1), Value(twoThree)})}) {
    entries.emplace_back(key, Value());
  }
  EXPECT_EQ(entriesOf(mapOf(entries)), entries) << "in their order";

  ValueMap numbers;
  for (const double key : {1.5, 2.5}) numbers.set(Value(key), Value());
  EXPECT_EQ(decodeMessage(encodeMessage(Value(numbers))), Value(numbers));

  // Two keys [NaN], each aligned where it stands: a NaN equals nothing.
  const Bytes nans{13, 2, 14, 1, 0, 0, 0xC0, 0x7F, 0, 14, 1, 0, 0, 0, 0xC0, 0x7F, 0};
  EXPECT_EQ(entriesOf(nans).size(), 2u);
}

// Were keys compared one with all others, or containers in keys looked at anew on every level,
// these two would take from minutes to years.
TEST(StandardCodecTest, HostileMapsCostNoMoreThanSorting) {
  constexpr uint32_t kKeys = 180000;
  Bytes many{13, 255, kKeys & 0xFF, kKeys >> 8 & 0xFF, kKeys >> 16, 0};
  for (uint32_t key = 0; key < kKeys; ++key) {
    many.insert(many.end(), {3, static_cast<uint8_t>(key), static_cast<uint8_t>(key >> 8),
                             static_cast<uint8_t>(key >> 16), 0, 1});
  }
  EXPECT_EQ(entriesOf(many).size(), kKeys);

  // Each level's two keys are copies of the whole level below, but for the last byte of one.
  Bytes level{3, 0, 0, 0, 0};
  while (level.size() < 500000) {
    Bytes other = level;
    other.back() ^= 1;
    level = Bytes{13, 2} + level + Bytes{1} + other + Bytes{1};
  }
  EXPECT_TRUE(decodeMessage(level));
}

}  // namespace
}  // namespace tapdeck::codec
