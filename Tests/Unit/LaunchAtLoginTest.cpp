#include "LaunchAtLogin/LaunchAtLogin.h"
#include "Tests/Unit/HostTest.h"

namespace tapdeck {
namespace {

using platform::LaunchdJob;
using platform::LoginItemStatus;
using recording::record;

constexpr const char* kHelper = "com.example.app-LaunchAtLoginHelper";
constexpr const char* kDisable = "set login item com.example.app-LaunchAtLoginHelper to false";
constexpr const char* kUnregisterHelper =
    "unregister login item com.example.app-LaunchAtLoginHelper";
constexpr const char* kRegister = "register main app";
constexpr const char* kUnregister = "unregister main app";
constexpr const char* kFlag = "set default LaunchAtLogin__hasMigrated to true";

class LaunchAtLoginTest : public HostTest {
 protected:
  static recording::LoginItems& system() { return script().loginItems; }

  std::optional<Outcome> call(const std::string& method, Value arguments = Value()) {
    return engine->call("launch_at_startup", method, std::move(arguments));
  }
  std::optional<Outcome> set(Value arguments) {
    return call("launchAtStartupSetEnabled", std::move(arguments));
  }
  static std::string log(const std::string& verb, const std::string& reason) {
    return "log error com.quarrow.LaunchAtLogin main: Failed to " + verb +
           " launch at login: " + reason;
  }

  LaunchAtLogin login;
};

TEST_F(LaunchAtLoginTest, TellsEachObserverAtItsMoment) {
  system().status = LoginItemStatus::enabled;
  const auto willChange = login.objectWillChange().observe([] { record("object will change"); });
  const auto brackets = login.keyValueNotices().observe([](LaunchAtLogin::KeyValueNotice notice) {
    const bool will = notice == LaunchAtLogin::KeyValueNotice::willChange;
    record(will ? "key will change" : "key did change");
  });
  auto published =
      login.publisher().observe([](bool value) { record(value ? "sent true" : "sent false"); });
  EXPECT_THAT(trace(), ElementsAre("sent true"));

  login.setEnabled(false);
  EXPECT_THAT(trace(), ElementsAre("object will change", "key will change", kUnregister,
                                   "key did change", "sent false"));
  system().hasServices = false;
  // what the setting came to is no matter, and an observer may leave while it is told
  const auto leaving = login.objectWillChange().observe([&published] { published.reset(); });
  login.setEnabled(false);
  EXPECT_THAT(trace(),
              ElementsAre("object will change", "key will change", kDisable, "key did change"));
}

TEST_F(LaunchAtLoginTest, OperatesTheService) {
  using enum LoginItemStatus;
  using Failure = std::optional<std::string>;
  const Failure none, busy = "busy";
  const std::vector<std::tuple<LoginItemStatus, bool, Failure, Failure, Trace, LoginItemStatus>>
      cases = {
          {notRegistered, true, none, busy, {kRegister}, enabled},
          {enabled, true, none, busy, {kUnregister, kRegister}, enabled},
          {notFound, true, busy, none, {kRegister, log("enable", "busy")}, notFound},
          {enabled, false, busy, none, {kUnregister}, notRegistered},
          {enabled, false, none, busy, {kUnregister, log("disable", "busy")}, enabled},
      };
  for (const auto& [before, value, registrationError, unregistrationError, calls, after] : cases) {
    system().status = before;
    system().registrationError = registrationError;
    system().unregistrationError = unregistrationError;
    EXPECT_EQ(set(Value(mapOf("setEnabledValue", value))), Outcome(Value()));
    EXPECT_EQ(trace(), calls);
    EXPECT_EQ(call("launchAtStartupIsEnabled"), Outcome(Value(after == enabled)));
  }
}

TEST_F(LaunchAtLoginTest, KnowsTheHelperByTheFirstJobOfItsLabel) {
  system().hasServices = false;
  system().status = LoginItemStatus::enabled;
  const LaunchdJob other{"com.example.app", true}, nameless{std::nullopt, true};
  const LaunchdJob on{kHelper, true}, off{kHelper, false}, unsaid{kHelper, std::nullopt};
  const std::vector<std::pair<std::vector<LaunchdJob>, bool>> cases = {
      {{other, on, off}, true}, {{nameless, off, on}, false}, {{unsaid}, false}};
  for (const auto& [jobs, isEnabled] : cases) {
    system().jobs = jobs;
    EXPECT_EQ(login.isEnabled(), isEnabled);
  }
  system().bundleIdentifier = "com.example.renamed";
  login.setEnabled(false);
  EXPECT_THAT(trace(), ElementsAre(kDisable));
}

TEST_F(LaunchAtLoginTest, MigratesOnceAndRemovesTheHelper) {
  const auto forget = [] { system().userDefaults.clear(); };
  system().jobs = {{kHelper, true}};
  login.migrateIfNeeded();
  EXPECT_THAT(trace(), IsEmpty()) << "the user default says that it is done";

  forget();
  system().hasServices = false;
  login.migrateIfNeeded();
  EXPECT_THAT(trace(), IsEmpty());
  system().hasServices = true;
  login.migrateIfNeeded();
  login.migrateIfNeeded();
  EXPECT_THAT(trace(), ElementsAre(kFlag, kRegister, kDisable, kUnregisterHelper));

  forget();
  system().jobs.reset();
  wakeMainWindow(window, engine);
  const Trace waking = trace();
  EXPECT_EQ(Trace(waking.begin(), waking.begin() + 4),
            (Trace{kFlag, kDisable, kUnregisterHelper, "handle launch_at_startup"}));
}

TEST_F(LaunchAtLoginTest, TheChannelInsistsOnItsKey) {
  for (const Value& noMap : {Value(true), Value(mapOf("setEnabledValue", true, 1, true))}) {
    EXPECT_EQ(set(noMap), Outcome(Value()));
  }
  EXPECT_EQ(call("launchAtStartupToggle"), Outcome(NotImplemented{}));
  EXPECT_THAT(trace(), IsEmpty());

  const auto setTo = [this](const Value& value) {
    return set(Value(mapOf("setEnabledValue", value)));
  };
  for (const Value& on : {Value(true), Value(1), Value(1.0)}) {
    EXPECT_EQ(setTo(on), Outcome(Value()));
    EXPECT_THAT(trace(), Contains(kRegister));
  }
  for (const Value& off : {Value(false), Value(0), Value(-0.0)}) {
    EXPECT_EQ(setTo(off), Outcome(Value()));
    EXPECT_THAT(trace(), ElementsAre(kUnregister));
  }
  EXPECT_DEATH(set(Value(mapOf())), "❌ .*setEnabledValue");
  for (const Value& none : {Value(), Value(2), Value(0.5), Value("true")}) {
    EXPECT_DEATH(setTo(none), "❌ .*setEnabledValue");
  }
}

}  // namespace
}  // namespace tapdeck
