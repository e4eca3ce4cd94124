// What phones send, from their bytes to the posted events: parser, holds and dispatcher on the
// recording platform.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <variant>

#include "Engine/Channels.h"
#include "Fuzz/Require.h"
#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Platform/Linux/StandInEngine/Holds.h"
#include "Runner/MethodTable.h"
#include "Runner/Waking.h"
#include "Tests/Support/Recording/Recording.h"
#include "Tests/Support/Recording/RecordingEngine.h"

namespace tapdeck {
namespace {

using standin::ConnectionNumber;
using standin::Holds;

constexpr const char* kLogin = "launch_at_startup";
constexpr ConnectionNumber kConnections = 4;

/// The buttons and keys that are down after these events, told by their trace.
std::set<std::string> heldAfter(const std::vector<std::string>& trace) {
  std::set<std::string> held;
  for (const std::string& line : trace) {
    int type = 0;
    double x = 0, y = 0;
    int number = 0;
    char direction = 0;
    const char* mouse = "post mouse %d at (%lf,%lf) button %d";
    if (std::sscanf(line.c_str(), mouse, &type, &x, &y, &number) == 4) {
      const auto button = "button " + std::to_string(number);
      const bool presses = type == kCGEventLeftMouseDown || type == kCGEventRightMouseDown ||
                           type == kCGEventOtherMouseDown;
      const bool releases = type == kCGEventLeftMouseUp || type == kCGEventRightMouseUp ||
                            type == kCGEventOtherMouseUp;
      if (presses) held.insert(button);
      if (releases) held.erase(button);
    } else if (std::sscanf(line.c_str(), "post key %d %c", &number, &direction) == 2) {
      const auto key = "key " + std::to_string(number);
      direction == 'd' ? void(held.insert(key)) : void(held.erase(key));
    }
  }
  return held;
}

/// Numbers that a method has no room for end the process, as they must.
struct ProcessStopped {};

/// The host with a few phones, which send what the input says.
class Phones {
 public:
  Phones() {
    recording::reset();
    Reply::setMisuseHandler(
        [](const char* what) { require(std::uncaught_exceptions() > 0, what); });
    recording::script().onStop = [] { throw ProcessStopped(); };
    recording::script().screens = {{1U, CGRectMake(0, 0, 1440, 900), 2.0}};
    recording::script().bounds[1] = CGRectMake(0, 0, 1440, 900);
    wakeMainWindow(_window, _engine);
  }

  void send(ConnectionNumber connection, std::span<const uint8_t> message) {
    const auto parsed = standin::parseRequest(message);
    if (const auto* request = std::get_if<standin::Request>(&parsed)) {
      take(connection, *request);
    } else {
      end(connection);
    }
  }

  /// What the host made of its own parts must be read back as it was.
  void call(ConnectionNumber connection, const MethodCall& call) {
    const auto message = standin::encodeCall(1, kControlChannel, call);
    const auto parsed = standin::parseRequest(message);
    const auto* request = std::get_if<standin::Request>(&parsed);
    require(request != nullptr && request->call.method == call.method, "a call reads back");
    take(connection, *request);
  }

  void end(ConnectionNumber connection) {
    for (const MethodCall& call : _holds.end(connection)) dispatch(kControlChannel, call);
  }

  /// All phones leave: every call has been answered, nothing is held.
  void finish() {
    for (ConnectionNumber connection = 0; connection < kConnections; ++connection) {
      end(connection);
    }
    for (int turn = 0; turn < 8; ++turn) {
      recording::runGlobalQueues();
      recording::runMainQueue();
      recording::completeDownloads();
    }
    require(_engine->laterReplies.size() == _unanswered, "each call is answered once");
    for (const Outcome& outcome : _engine->laterReplies) checkReply(outcome);
    require(heldAfter(recording::takeTrace()).empty(), "nothing stays pressed");
    Reply::setMisuseHandler(nullptr);
  }

 private:
  void take(ConnectionNumber connection, const standin::Request& request) {
    if (request.channel != kControlChannel && request.channel != kLogin) return;
    if (request.channel == kControlChannel && !_holds.note(connection, request.call)) {
      end(connection);
      return;
    }
    dispatch(request.channel, request.call);
  }

  void dispatch(const std::string& channel, const MethodCall& call) {
    if (const auto outcome = _engine->call(channel, call.method, call.arguments)) {
      checkReply(*outcome);
    } else {
      ++_unanswered;
    }
  }

  static void checkReply(const Outcome& outcome) {
    const auto message = standin::encodeReply(1, kControlChannel, outcome).joined();
    require(standin::decodeFrame(message).has_value(), "a reply reads back");
  }

  std::shared_ptr<recording::RecordingEngine> _engine =
      std::make_shared<recording::RecordingEngine>();
  std::shared_ptr<MainFlutterWindow> _window = std::make_shared<MainFlutterWindow>();
  Holds _holds;
  size_t _unanswered = 0;
};

/// One step: what happens, and with which bytes.
struct Step {
  enum Kind : uint8_t { message, call, end, screens };
  Kind kind;
  ConnectionNumber connection;
  std::span<const uint8_t> bytes;
};

/// A byte of kind and connection, two of length, and the bytes.
Step takeStep(std::span<const uint8_t>& input) {
  const uint8_t head = input[0];
  const size_t length = input.size() < 3 ? 0 : input[1] | size_t{input[2]} << 8;
  input = input.subspan(std::min<size_t>(input.size(), 3));
  const auto bytes = input.first(std::min(length, input.size()));
  input = input.subspan(bytes.size());
  return {static_cast<Step::Kind>(head % 4), head / 4 % kConnections, bytes};
}

/// The number of the method, and its arguments as the codec writes them.
void callMethod(Phones& phones, const Step& step) {
  if (step.bytes.empty()) return;
  const auto methods = controlMethods();
  const std::string name(methods[step.bytes[0] % methods.size()].name);
  const auto arguments = codec::decodeMessage(step.bytes.subspan(1));
  phones.call(step.connection, {name, arguments.value_or(Value())});
}

void run(std::span<const uint8_t> input) {
  Phones phones;
  while (!input.empty()) {
    const Step step = takeStep(input);
    if (step.kind == Step::message) phones.send(step.connection, step.bytes);
    if (step.kind == Step::call) callMethod(phones, step);
    if (step.kind == Step::end) phones.end(step.connection);
    if (step.kind == Step::screens) recording::notifyScreenParameters();
  }
  phones.finish();
}

}  // namespace
}  // namespace tapdeck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    tapdeck::run(std::span(data, size));
  } catch (const tapdeck::ProcessStopped&) {
  }
  return 0;
}
