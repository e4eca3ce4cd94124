#include <gtest/gtest.h>

#include <limits>

#include "Engine/Value.h"

namespace tapdeck {
namespace {

TEST(ValueTest, EqualsByKindAndContent) {
  EXPECT_EQ(Value(7), Value(int64_t{7}));
  EXPECT_NE(Value(1), Value(1.0));
  EXPECT_NE(Value(1), Value(true));
  EXPECT_NE(Value(), Value(false));
  EXPECT_NE(Value(Value::Int32List{1}), Value(Value::Int64List{1}));
  EXPECT_EQ(Value(0.0), Value(-0.0));
  EXPECT_NE(Value(std::numeric_limits<double>::quiet_NaN()),
            Value(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(Value(Value::List{Value("a"), Value()}), Value(Value::List{Value("a"), Value()}));
  EXPECT_NE(Value(Value::List{Value("a")}), Value(Value::List{Value("a"), Value()}));
}

TEST(ValueTest, GivesContentOfExactlyItsKind) {
  const Value text("a");
  ASSERT_NE(text.getIf<std::string>(), nullptr) << "a literal must not become a boolean";
  EXPECT_EQ(text.getIf<bool>(), nullptr);
  EXPECT_EQ(Value(7).getIf<double>(), nullptr);
  EXPECT_TRUE(Value(nullptr).isNull());
}

TEST(ValueTest, MapKeepsOrderAndReplacesInPlace) {
  ValueMap map{{"a", Value(1)}, {"b", Value(2)}, {"a", Value(3)}};
  ASSERT_EQ(map.size(), 2u);
  EXPECT_EQ(*map.begin(), ValueMap::Entry(Value("a"), Value(3)));
  EXPECT_EQ(*map.find("b"), Value(2));
  EXPECT_EQ(map.find("c"), nullptr);
  EXPECT_TRUE(map.hasOnlyStringKeys());

  EXPECT_EQ(map, (ValueMap{{"b", Value(2)}, {"a", Value(3)}}));
  EXPECT_NE(map, (ValueMap{{"b", Value(2)}, {"a", Value(4)}}));
  EXPECT_NE(map, (ValueMap{{"b", Value(2)}}));

  map.set(Value(1), Value("one"));
  EXPECT_FALSE(map.hasOnlyStringKeys());
  EXPECT_EQ(map.find("1"), nullptr);
}

}  // namespace
}  // namespace tapdeck
