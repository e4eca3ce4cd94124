#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

using namespace ::testing;

constexpr const char* kDevices = "tapdeck.engine/devices";

class StandInDevices : public StandInTest {
 protected:
  Outcome ask(Page& page, const std::string& method, Value arguments = Value()) {
    return page.ask(kDevices, {method, std::move(arguments)});
  }
  std::string pair(Page& page, const std::string& name) {
    const Outcome outcome = ask(page, "pair", Value(ValueMap{{"name", Value(name)}}));
    return *std::get<Value>(outcome).getIf<Value::Map>()->find("secret")->getIf<std::string>();
  }
  std::string access(const std::string& query) {
    return exchange("GET /access?" + query, "Host: " + host() + "\r\n");
  }
  static Value countChanged(int64_t count) {
    return requestMessage(0, kDevices, {"countChanged", Value(ValueMap{{"count", Value(count)}})});
  }
};

TEST_F(StandInDevices, PairsOnceAndComesBackAfterARestart) {
  auto page = openPage();
  const std::string secret = pair(*page, "Phone\n");
  EXPECT_THAT(secret, SizeIs(16 + 1 + 64));
  EXPECT_EQ(std::get<MethodError>(ask(*page, "pair")).code, "ALREADY_PAIRED");
  struct stat status {};
  ASSERT_EQ(stat(devicesFile().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_THAT(contentsOf(devicesFile()),
              AllOf(HasSubstr("Phone\n"), Not(HasSubstr(secret.substr(17)))));

  startEngine();
  page = openPage("/engine?device=" + secret);
  ASSERT_TRUE(page->isOpen());
  ASSERT_THAT(engine->devices(), SizeIs(1));
  EXPECT_EQ(engine->devices()[0].name, "Phone");
  EXPECT_TRUE(engine->devices()[0].isConnected);
  EXPECT_TRUE(engine->peers()[0].isPaired);

  const auto id = engine->devices()[0].id;
  engine->disconnectDevice(id);
  EXPECT_EQ(page->waitForClose(), 4002);
  page = openPage("/engine?device=" + secret);
  engine->forgetDevice(id);
  EXPECT_EQ(page->waitForClose(), 4001);
  EXPECT_THAT(engine->devices(), IsEmpty());
  EXPECT_THAT(access("device=" + secret),
              AllOf(StartsWith("HTTP/1.1 403"), HasSubstr(R"({"access":"forgotten"})")));
}

TEST_F(StandInDevices, SaysWhyAPageIsRefused) {
  const auto page = openPage();
  const std::string secret = pair(*page, "");
  EXPECT_THAT(engine->devices()[0].name, Not(IsEmpty()));
  std::string wrong = secret;
  wrong.back() = wrong.back() == '0' ? '1' : '0';
  EXPECT_THAT(access("device=" + secret), HasSubstr(R"(200)"));
  EXPECT_THAT(access("device=" + wrong), HasSubstr(R"({"access":"forgotten"})"));
  EXPECT_THAT(access("token=" + secret), HasSubstr(R"({"access":"wrong-token"})"));
  EXPECT_THAT(
      exchange("GET /engine?device=" + wrong, "Host: " + host() + "\r\n" + kUpgrade + kProtocol),
      StartsWith("HTTP/1.1 403"));
  EXPECT_EQ(engine->failedLogins(), 3u);
}

TEST_F(StandInDevices, PagesHearHowManyDevicesThereAre) {
  auto first = openPage();
  const std::string secret = pair(*first, "Phone");
  ask(*first, "watch");
  // a second page of the same device, one of another, and one that does not ask
  const auto same = openPage("/engine?device=" + secret);
  ask(*same, "watch");
  const auto silent = openPage();
  auto other = openPage();
  EXPECT_EQ(
      std::get<Value>(ask(*other, "watch")),
      Value(ValueMap{{"count", Value(int64_t{2})}, {"paired", Value(false)}, {"name", Value()}}));
  ASSERT_TRUE(same->waitForMessages(2));
  EXPECT_EQ(same->messages().back(), countChanged(2));
  other->close();
  ASSERT_TRUE(same->waitForMessages(3));
  EXPECT_EQ(same->messages().back(), countChanged(1));
  EXPECT_THAT(silent->messages(), IsEmpty());
}

}  // namespace
}  // namespace tapdeck
