#include <gtest/gtest.h>

#include "Engine/Value.h"

namespace tapdeck {
namespace {

TEST(ValueTest, KindsStayApart) {
  EXPECT_NE(Value(1), Value(1.0));
  EXPECT_NE(Value(1), Value(true));
  EXPECT_NE(Value(), Value(false));
  EXPECT_NE(Value(Value::Int32List{1}), Value(Value::Int64List{1}));
  EXPECT_NE(Value("a").getIf<std::string>(), nullptr) << "a literal must not become a boolean";
  EXPECT_EQ(Value(7).getIf<double>(), nullptr);
}

TEST(ValueTest, MapKeepsOrderAndReplacesInPlace) {
  ValueMap map{{"a", Value(1)}, {"b", Value(2)}, {"a", Value(3)}};
  ASSERT_EQ(map.size(), 2u);
  EXPECT_EQ(*map.begin(), ValueMap::Entry(Value("a"), Value(3)));
  EXPECT_EQ(*map.find("b"), Value(2));
  EXPECT_EQ(map.find("c"), nullptr);
  EXPECT_EQ(map, (ValueMap{{"b", Value(2)}, {"a", Value(3)}}));
  EXPECT_NE(map, (ValueMap{{"b", Value(2)}, {"a", Value(4)}}));
  EXPECT_NE(map, (ValueMap{{"b", Value(2)}}));

  EXPECT_TRUE(map.hasOnlyStringKeys());
  map.set(Value(1), Value("one"));
  EXPECT_FALSE(map.hasOnlyStringKeys());
  EXPECT_EQ(map.find("1"), nullptr);
}

}  // namespace
}  // namespace tapdeck
