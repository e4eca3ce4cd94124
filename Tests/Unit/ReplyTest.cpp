#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Engine/Reply.h"

namespace tapdeck {
namespace {

class ReplyTest : public testing::Test {
 protected:
  ReplyTest() {
    Reply::setMisuseHandler([this](const char* what) { _misuses.emplace_back(what); });
  }
  ~ReplyTest() override { Reply::setMisuseHandler(nullptr); }

  Reply reply() {
    return Reply([this](Outcome outcome) { _outcomes.push_back(std::move(outcome)); });
  }

  std::vector<Outcome> _outcomes;
  std::vector<std::string> _misuses;
};

TEST_F(ReplyTest, CarriesEachKindOfOutcome) {
  reply().success(Value(1));
  reply().error("CODE", "message", Value("details"));
  reply().notImplemented();
  EXPECT_EQ(_outcomes,
            (std::vector<Outcome>{Value(1), MethodError{"CODE", "message", Value("details")},
                                  NotImplemented{}}));
  EXPECT_TRUE(_misuses.empty());
}

TEST_F(ReplyTest, DiscardsSecondAnswer) {
  {
    Reply once = reply();
    once.success(Value("first"));
    once.error("LATE", "second");
  }
  EXPECT_EQ(_outcomes, (std::vector<Outcome>{Value("first")}));
  EXPECT_EQ(_misuses.size(), 1u);
}

TEST_F(ReplyTest, AnswersNullWhenDropped) {
  { Reply dropped = reply(); }
  EXPECT_EQ(_outcomes, (std::vector<Outcome>{Value()}));
  EXPECT_EQ(_misuses.size(), 1u);

  Reply overwritten = reply();
  overwritten = reply();
  EXPECT_EQ(_outcomes.size(), 2u) << "assigning over an open reply drops it";
  overwritten.success();
  EXPECT_EQ(_misuses.size(), 2u);
}

TEST_F(ReplyTest, MovesTheRightToAnswer) {
  std::optional<Reply> first = reply();
  Reply second = std::move(*first);
  first->success(Value("stale"));
  EXPECT_TRUE(_outcomes.empty());
  EXPECT_EQ(_misuses.size(), 1u);
  first.reset();
  EXPECT_EQ(_misuses.size(), 1u) << "what moved on may be destroyed";
  second.success(Value("fresh"));
  EXPECT_EQ(_outcomes, (std::vector<Outcome>{Value("fresh")}));
}

}  // namespace
}  // namespace tapdeck
