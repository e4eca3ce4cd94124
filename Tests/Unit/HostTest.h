#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "Engine/Channels.h"
#include "Runner/MainFlutterWindow.h"
#include "Runner/Waking.h"
#include "Tests/Support/Recording/Recording.h"
#include "Tests/Support/Recording/RecordingEngine.h"

namespace tapdeck {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

inline const Value kNull;

inline void PrintTo(const Value& value, std::ostream* out) {
  value.visit([out](const auto& content) { *out << ::testing::PrintToString(content); });
}

/// The map of keys and values in turn: mapOf("x", 1, "on", true).
template <typename... Content>
ValueMap mapOf(const Content&... content) {
  const std::vector<Value> turns{Value(content)...};
  ValueMap map;
  for (size_t i = 0; i < turns.size(); i += 2) map.set(turns[i], turns[i + 1]);
  return map;
}

/// The whole host, awake, on the recording platform. Calls go through the real dispatcher.
class HostTest : public ::testing::Test {
 protected:
  using Trace = std::vector<std::string>;

  HostTest() {
    recording::reset();
    Reply::setMisuseHandler([](const char* what) { ADD_FAILURE() << what; });
    wakeMainWindow(window, engine);
    wakingTrace = recording::takeTrace();
    outcome("the first call");
    firstCallTrace = recording::takeTrace();
  }
  ~HostTest() override {
    Reply::setMisuseHandler(nullptr);
    recording::reset();
  }

  static recording::Script& script() { return recording::script(); }
  static Trace trace() { return recording::takeTrace(); }

  /// A screen whose Quartz bounds follow from its AppKit frame.
  static platform::Screen screen(uint32_t number, CGRect frame, double scale = 1.0) {
    return {number, frame, scale};
  }
  static void attach(std::vector<platform::Screen> screens) {
    script().screens = std::move(screens);
    script().bounds.clear();
    for (const auto& each : script().screens) {
      const double pivot = script().screens.front().frame.size.height;
      script().bounds[*each.number] =
          CGRectMake(each.frame.origin.x, pivot - each.frame.origin.y - each.frame.size.height,
                     each.frame.size.width, each.frame.size.height);
    }
    script().mainDisplay = *script().screens.front().number;
  }

  /// The pointer at a place in global top-left coordinates, on a primary display `height` high.
  static void pointerAt(double x, double y, double height = 900) {
    script().mouseLocation = {x, height - y};
    script().eventLocation = CGPoint{x, y};
  }

  /// The trace's line for a mouse event of this CGEventType.
  static std::string mouse(int type, int x, int y, int button = 0, int clicks = 0,
                           const std::string& source = "0") {
    return "post mouse " + std::to_string(type) + " at (" + std::to_string(x) + "," +
           std::to_string(y) + ") button " + std::to_string(button) + " source " + source +
           (clicks > 0 ? " field 1 = " + std::to_string(clicks) : "");
  }

  /// The arguments are one value, or keys and values in turn.
  template <typename... Arguments>
  std::optional<Outcome> outcome(const std::string& method, const Arguments&... arguments) {
    if constexpr (sizeof...(arguments) < 2)
      return engine->call(kControlChannel, method, Value(arguments...));
    else
      return engine->call(kControlChannel, method, Value(mapOf(arguments...)));
  }
  /// The reply of a call that must succeed at once.
  template <typename... Arguments>
  Value reply(const std::string& method, const Arguments&... arguments) {
    const auto result = outcome(method, arguments...);
    const auto* value = result ? std::get_if<Value>(&*result) : nullptr;
    EXPECT_NE(value, nullptr) << method << " did not succeed";
    return value != nullptr ? *value : Value();
  }

  std::shared_ptr<recording::RecordingEngine> engine =
      std::make_shared<recording::RecordingEngine>();
  std::shared_ptr<MainFlutterWindow> window = std::make_shared<MainFlutterWindow>();
  Trace wakingTrace, firstCallTrace;
};

}  // namespace tapdeck
