#include <gtest/gtest.h>

#include "Engine/Value.h"

namespace tapdeck {
namespace {

TEST(ValueTest, KindsStayApart) {
  EXPECT_NE(Value(1), Value(1.0));
  EXPECT_NE(Value("a").getIf<std::string>(), nullptr) << "a literal must not become a boolean";
}

TEST(ValueTest, MapKeepsOrderAndReplacesInPlace) {
  ValueMap map{{"a", Value(1)}, {"b", Value(2)}, {"a", Value(3)}};
  ASSERT_EQ(map.size(), 2u);
  EXPECT_EQ(*map.begin(), ValueMap::Entry(Value("a"), Value(3)));
  EXPECT_EQ(map, (ValueMap{{"b", Value(2)}, {"a", Value(3)}}));
  EXPECT_NE(map, (ValueMap{{"b", Value(2)}, {"a", Value(4)}}));
  EXPECT_NE(map, (ValueMap{{"b", Value(2)}}));
}

}  // namespace
}  // namespace tapdeck
