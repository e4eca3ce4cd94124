// What a call costs, from a client over the socket to the reply: the round trips to the X server
// that it waits for, and its time beside a bare echo of the same bytes; once as it is, once with
// replies of the X server 2 ms late.

#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Benchmarks/DelayingDisplay.h"
#include "Benchmarks/EchoServer.h"
#include "Benchmarks/Measuring.h"
#include "Engine/Channels.h"
#include "Platform/Linux/Call/HostConnection.h"
#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/Observer.h"

namespace {

using namespace tapdeck;
using namespace tapdeck::benchmarks;

constexpr int kWarmUp = 20;
constexpr int kRounds = 300;
constexpr std::chrono::milliseconds kDelay{2};
constexpr std::chrono::milliseconds kPressPause{25};

struct Row {
  const char* name;
  /// How many each call may wait for.
  int maxRoundTrips;
  /// The calls that are one round of this row; each is measured.
  std::vector<MethodCall> calls;
};

std::vector<Row> rows() {
  const Value left = Value(ValueMap{{"button", Value("left")}});
  const Value key = Value(ValueMap{{"key", Value("shift")}});
  return {
      {"moveMouseAbs",
       0,
       {{"moveMouseAbs", Value(ValueMap{{"x", Value(0.97)}, {"y", Value(0.97)}})},
        {"moveMouseAbs", Value(ValueMap{{"x", Value(0.98)}, {"y", Value(0.97)}})}}},
      {"moveMouse",
       1,
       {{"moveMouse", Value(ValueMap{{"dx", Value(3.0)}, {"dy", Value(0.0)}})},
        {"moveMouse", Value(ValueMap{{"dx", Value(-3.0)}, {"dy", Value(0.0)}})}}},
      {"click", 1, {{"click", left}}},
      {"mouseDown, mouseUp", 1, {{"mouseDown", left}, {"mouseUp", left}}},
      {"scroll", 0, {{"scroll", Value(ValueMap{{"direction", Value(1)}, {"amount", Value(50)}})}}},
      {"keyDown, keyUp", 0, {{"keyDown", key}, {"keyUp", key}}},
      {"screenCursor", 1, {{"screenCursor", Value()}}},
      {"getDisplays", 0, {{"getDisplays", Value()}}},
      {"captureScreen, still", 1, {{"captureScreen", Value()}}},
  };
}

struct Result {
  Samples samples;
  double roundTrips = 0;
};

/// One client of a server that takes the engine's messages.
class Client {
 public:
  explicit Client(const Session& session) : _connection(session, inTime()) {}

  double call(const MethodCall& call) {
    const auto message = standin::encodeCall(++_lastId, kControlChannel, call);
    return millisecondsOf([&] {
      _connection.send(message);
      if (!_connection.receive(inTime())) throw std::runtime_error("no answer");
    });
  }
  /// Counts the round trips between each call and its reply: the host's journal learns of a release
  /// later, which delays no call.
  Result repeat(const Row& row, int rounds, const DelayingDisplay* display) {
    const auto tripsSoFar = [display] { return display != nullptr ? display->roundTrips() : 0; };
    Result result;
    uint64_t trips = 0;
    for (int i = 0; i < rounds; ++i) {
      // presses of a button that follow each other sooner wait for it
      if (row.calls.front().method == "click" || row.calls.front().method == "mouseDown") {
        std::this_thread::sleep_for(kPressPause);
      }
      for (const MethodCall& each : row.calls) {
        const uint64_t before = tripsSoFar();
        result.samples.add(call(each));
        trips += tripsSoFar() - before;
      }
    }
    result.roundTrips = static_cast<double>(trips) /
                        static_cast<double>(row.calls.size() * static_cast<size_t>(rounds));
    return result;
  }

 private:
  static HostConnection::Deadline inTime() {
    return std::chrono::steady_clock::now() + std::chrono::seconds(30);
  }

  HostConnection _connection;
  int64_t _lastId = 0;
};

/// The host on this display, each row in turn (the first puts the pointer into a corner). Where the
/// pointer is and what has the focus is none of the host's own windows, whose toolkit would ask the
/// X server too.
std::vector<Result> measure(const std::string& host, const DelayingDisplay* display) {
  const std::string name = display != nullptr ? display->name() : std::getenv("DISPLAY");
  const EnvironmentVariable variable("DISPLAY", name.c_str());
  testing::ChildProcess process({host, "--port", "0"});
  if (!process.awaitLine()) throw std::runtime_error("the host did not start: " + process.errors());
  testing::Observer observer;
  const xcb_window_t window = observer.openManagedWindow(20, 20);
  if (!eventually([&] { return observer.activeWindow() == window; })) {
    throw std::runtime_error("the window manager gives no window the focus");
  }
  Client client(readSession().value());
  std::vector<Result> results;
  for (const Row& row : rows()) {
    client.repeat(row, kWarmUp, display);
    results.push_back(client.repeat(row, kRounds, display));
  }
  return results;
}

void print(const std::vector<Result>& direct, const std::vector<Result>& late,
           const std::vector<Samples>& echoed) {
  std::printf("%-22s %6s | %9s %9s %9s %7s | %9s %9s\n", "", "round", "median", "p99", "echo",
              "x echo", "2 ms late", "");
  std::printf("%-22s %6s | %9s %9s %9s %7s | %9s %9s\n", "method", "trips", "ms", "ms", "ms", "",
              "median", "p99");
  for (size_t i = 0; i < direct.size(); ++i) {
    const Samples& samples = direct[i].samples;
    std::printf("%-22s %6.2f | %9.3f %9.3f %9.3f %7.2f | %9.3f %9.3f\n", rows()[i].name,
                late[i].roundTrips, samples.median(), samples.percentile(0.99), echoed[i].median(),
                samples.median() / echoed[i].median(), late[i].samples.median(),
                late[i].samples.percentile(0.99));
    const double bound = rows()[i].maxRoundTrips + 0.1;
    addToTable({std::string("call: ") + rows()[i].name,
                shown(samples.median(), 3, "ms, ") + shown(late[i].roundTrips, 2, "round trips"),
                shown(echoed[i].median(), 3, "ms, a bare echo"),
                shown(samples.median() / echoed[i].median(), 2),
                "round trips: " + std::to_string(rows()[i].maxRoundTrips),
                late[i].roundTrips <= bound});
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: bench_input HOST_EXECUTABLE\n");
    return 64;
  }
  try {
    const auto direct = measure(argv[1], nullptr);
    const DelayingDisplay delaying(std::getenv("DISPLAY"), kDelay);
    const auto late = measure(argv[1], &delaying);
    EchoServer server;
    Client echo(server.session());
    std::vector<Samples> echoed;
    for (const Row& row : rows()) {
      echo.repeat(row, kWarmUp, nullptr);
      echoed.push_back(echo.repeat(row, kRounds, nullptr).samples);
    }
    print(direct, late, echoed);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_input: %s\n", error.what());
    return 1;
  }
}
