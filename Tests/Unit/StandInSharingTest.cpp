#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "Platform/Linux/StandInEngine/FailedLogins.h"
#include "Platform/Linux/Support/FileDescriptor.h"
#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

using namespace ::testing;

constexpr size_t kMiB = 1024 * 1024;

/// What one connection does must not be felt by the others.
class StandInSharing : public StandInTest {
 protected:
  static constexpr int kBusyCalls = 300;

  void takeTimeForCalls() {
    engine->setMethodCallHandler(kControl, [this](const MethodCall& call, Reply reply) {
      g_usleep(5000);
      calls.push_back(call.method);
      reply.success();
    });
  }
  /// A page that has many calls waiting, the first of them carried out.
  std::unique_ptr<Page> openBusyPage() {
    auto busy = openPage();
    for (int i = 1; i <= kBusyCalls; ++i) busy->call(i, kControl, {"doubleClick", Value()});
    EXPECT_TRUE(eventually([&] { return !calls.empty(); }));
    return busy;
  }
  std::string codeOf(const Value& message) {
    const Outcome outcome = outcomeOf(message);
    const auto* error = std::get_if<MethodError>(&outcome);
    return error != nullptr ? error->code : "";
  }
};

TEST_F(StandInSharing, VisitsLeaveNothingOpen) {
  const auto before = openDescriptors();
  for (int i = 0; i < 100; ++i) {
    RawClient client(port());
    ASSERT_TRUE(client.write("GET / HTTP/1.1\r\nHost: " + host() + "\r\n\r\n"));
    ASSERT_TRUE(eventually([&] { return !client.read() || !client.received().empty(); }));
  }
  EXPECT_TRUE(eventually([&] { return openDescriptors() < before + 10; }, std::chrono::seconds(5)))
      << openDescriptors() - before;
}

TEST_F(StandInSharing, HalfOpenConnectionsEnd) {
  startEngine(std::chrono::seconds(25), std::chrono::seconds(1));
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 200; ++i) {
    clients.push_back(std::make_unique<RawClient>(port()));
    ASSERT_TRUE(clients.back()->write("GET / HTTP/1.1\r\n"));
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
  }
  const auto page = openPage();
  for (const auto& client : clients) {
    EXPECT_TRUE(eventually([&] { return !client->read(); }));
  }
  EXPECT_TRUE(page->isOpen());
}

TEST_F(StandInSharing, ListensAgainWhenDescriptorsAreFreeAgain) {
  // a sanitizer needs descriptors where it sees a type for the first time
  openPage();
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 4; ++i) clients.push_back(std::make_unique<RawClient>(port()));
  rlimit usual{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
  testing::internal::CaptureStderr();
  // no more than are open; poll() takes no more than the limit either
  const FileDescriptor last(dup(STDERR_FILENO));
  const rlimit none{static_cast<rlim_t>(last.get()), usual.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  runFor(std::chrono::milliseconds(200));
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
  const auto page = openPage();
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              AllOf(HasSubstr("no connection can be taken in"), HasSubstr("taken in again")));
}

TEST_F(StandInSharing, ABusyPageDoesNotHoldUpAnother) {
  takeTimeForCalls();
  const auto other = openPage();
  const auto busy = openBusyPage();
  other->call(1, kControl, {"moveMouse", Value()});
  ASSERT_TRUE(other->waitForMessages(1));
  EXPECT_THAT(calls, SizeIs(Lt(kBusyCalls / 10)));
  EXPECT_TRUE(busy->waitForMessages(kBusyCalls));

  // nor does one that was idle meanwhile make up for it
  calls.clear();
  for (int i = 1; i <= kBusyCalls; ++i) other->call(i, kControl, {"doubleClick", Value()});
  busy->call(1, kControl, {"moveMouse", Value()});
  ASSERT_TRUE(busy->waitForMessages(kBusyCalls + 1));
  EXPECT_THAT(calls, SizeIs(Lt(kBusyCalls / 10)));
}

TEST_F(StandInSharing, APressThatMustWaitHoldsUpNoOther) {
  bool isPressWaiting = true;
  engine.reset();
  engine = StandInEngine::start(
      {.port = 0, .devicesFile = devicesFile(), .isPressWaiting = [&] { return isPressWaiting; }});
  recordCalls();
  const auto busy = openPage();
  const auto other = openPage();
  busy->call(1, kControl, {"doubleClick", Value()});
  busy->call(2, kControl, {"scroll", Value()});
  other->call(1, kControl, {"moveMouse", Value()});
  ASSERT_TRUE(other->waitForMessages(1));
  EXPECT_THAT(calls, ElementsAre("moveMouse"));
  isPressWaiting = false;
  ASSERT_TRUE(busy->waitForMessages(2));
  EXPECT_THAT(calls, ElementsAre("moveMouse", "doubleClick", "scroll"));
}

TEST_F(StandInSharing, WhatHasNotStartedGoesWithItsPage) {
  takeTimeForCalls();
  const auto busy = openBusyPage();
  busy->vanish();
  ASSERT_TRUE(waitForPeers(0));
  EXPECT_THAT(calls, SizeIs(Lt(kBusyCalls / 2)));
}

TEST_F(StandInSharing, BackgroundCallsAreBounded) {
  std::vector<Reply> kept;
  engine->setMethodCallHandler(
      kControl, [&](const MethodCall&, Reply reply) { kept.push_back(std::move(reply)); });
  const auto page = openPage();
  for (int i = 1; i <= 36; ++i) page->call(i, kControl, {"getNowPlaying", Value()});
  // two under way, 32 waiting
  ASSERT_TRUE(page->waitForMessages(2));
  EXPECT_EQ(codeOf(page->messages().back()), "BUSY");
  EXPECT_THAT(kept, SizeIs(2));
  kept[0].success();
  EXPECT_THAT(kept, SizeIs(3));
  page->vanish();
  ASSERT_TRUE(waitForPeers(0));
  kept[1].success();
  EXPECT_THAT(kept, SizeIs(3));
  kept[2].success();
}

TEST_F(StandInSharing, TextsAndRepliesAreBounded) {
  engine->setMethodCallHandler(kControl, [&](const MethodCall& call, Reply reply) {
    calls.push_back(call.method);
    const bool isLarge = call.method == "large";
    reply.success(Value(std::string((isLarge ? 17 : 16) * kMiB, 'x')));
  });
  const auto page = openPage();
  const auto type = [&](size_t characters) {
    std::string text;
    for (size_t i = 0; i < characters; ++i) text += "é";
    page->call(1, kControl, {"typeText", Value(ValueMap{{"text", Value(text)}})});
  };
  type(6000);
  ASSERT_TRUE(page->waitForMessages(1));
  type(6001);
  page->call(2, kControl, {"large", Value()});
  ASSERT_TRUE(page->waitForMessages(3));
  EXPECT_EQ(codeOf(page->messages()[0]), "");
  EXPECT_EQ(codeOf(page->messages()[1]), "TEXT_TOO_LONG");
  EXPECT_EQ(codeOf(page->messages()[2]), "TOO_LARGE");
  EXPECT_THAT(calls, testing::ElementsAre("typeText", "large"));
}

TEST_F(StandInSharing, WrongTokensAreCountedAndSlowed) {
  const std::string headers = "Connection: close\r\nHost: " + host() + "\r\n";
  for (int i = 0; i < 4; ++i) {
    EXPECT_THAT(exchange("GET /engine?token=0", headers), StartsWith("HTTP/1.1 403"));
  }
  EXPECT_EQ(engine->failedLogins(), 4u);
  {
    // who does not wait for the answer
    RawClient client(port());
    ASSERT_TRUE(client.write("GET /engine?token=1 HTTP/1.1\r\n" + headers + "\r\n"));
    ASSERT_TRUE(eventually([&] { return engine->failedLogins() == 5; }));
  }
  const auto page = openPage();
  EXPECT_TRUE(page->isOpen());

  standin::FailedLogins secrets;
  const auto now = standin::FailedLogins::Clock::now();
  const auto note = [&] { return secrets.note("a", now); };
  for (int i = 0; i < 3; ++i) EXPECT_EQ(note()->count(), 0);
  for (int i = 0; i < 4; ++i) EXPECT_THAT(note()->count(), Gt(0));
  EXPECT_FALSE(note()) << "many at once from one address";
  EXPECT_EQ(secrets.note("b", now)->count(), 0);
  for (int i = 0; i < 4; ++i) secrets.answered("a");
  EXPECT_THAT(note()->count(), Gt(1000));
  secrets.answered("a");
  EXPECT_EQ(secrets.note("a", now + std::chrono::minutes(2))->count(), 0);
}

using StandInSharingDeathTest = StandInSharing;

TEST_F(StandInSharingDeathTest, AnExceptionEndsTheProcessWhereItIsThrown) {
  GTEST_FLAG_SET(death_test_style, "fast");
  engine->setMethodCallHandler(kControl,
                               [](const MethodCall&, Reply) { throw std::runtime_error("why"); });
  const auto page = openPage();
  EXPECT_EXIT(
      {
        page->call(1, kControl, {"click", Value()});
        page->waitForMessages(1);
      },
      testing::KilledBySignal(SIGABRT), "why");
}

}  // namespace
}  // namespace tapdeck
