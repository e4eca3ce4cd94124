#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

#include "Engine/Reply.h"

namespace tapdeck {
namespace {

class ReplyTest : public testing::Test {
 protected:
  ReplyTest() {
    Reply::setMisuseHandler([this](const char*) { ++_misuses; });
  }
  ~ReplyTest() override { Reply::setMisuseHandler(nullptr); }

  Reply reply() {
    return Reply([this](Outcome outcome) { _outcomes.push_back(std::move(outcome)); });
  }
  void expect(const std::vector<Outcome>& outcomes, int misuses) {
    EXPECT_EQ(_outcomes, outcomes);
    EXPECT_EQ(_misuses, misuses);
  }

  std::vector<Outcome> _outcomes;
  int _misuses = 0;
};

TEST_F(ReplyTest, DiscardsSecondAnswer) {
  Reply once = reply();
  once.success(Value("first"));
  once.error("LATE", "second");
  expect({Value("first")}, 1);
}

TEST_F(ReplyTest, AnswersNullWhenDropped) {
  { Reply dropped = reply(); }
  expect({Value()}, 1);
  Reply overwritten = reply();
  overwritten = reply();
  expect({Value(), Value()}, 2);
  overwritten.success(Value("new"));
  expect({Value(), Value(), Value("new")}, 2);
}

TEST_F(ReplyTest, MovesTheRightToAnswer) {
  std::optional<Reply> first = reply();
  Reply second = std::move(*first);
  first->success(Value("stale"));
  expect({}, 1);
  // what moved on may be destroyed
  first.reset();
  second.success(Value("fresh"));
  expect({Value("fresh")}, 1);
}

}  // namespace
}  // namespace tapdeck
