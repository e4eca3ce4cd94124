#include <chrono>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Engine/StandardCodec.h"
#include "Platform/Linux/Call/CallJson.h"
#include "Platform/Linux/Call/CommandLine.h"
#include "Platform/Linux/Call/HostConnection.h"
#include "Platform/Linux/EngineProtocol/Protocol.h"
#include "Platform/Linux/Support/Diagnostics.h"

namespace tapdeck {
namespace {

constexpr int kErrorReply = 1;
constexpr int kNotImplemented = 2;
constexpr int kNoAnswer = 3;
constexpr int kWrongUsage = 64;
constexpr std::chrono::seconds kTimeout{30};
/// Any number above 0 will do: this connection makes one call.
constexpr int64_t kCallId = 1;

void printLine(const nlohmann::ordered_json& json) {
  std::printf("%s\n", lineOf(json).c_str());
  std::fflush(stdout);
}

Session currentSession() {
  if (auto session = readSession()) return *std::move(session);
  throw ConnectionError("No host is running (there is no session in " + sessionFilePath().string() +
                        "). Start it with ./tapdeck run.");
}

Outcome awaitReply(HostConnection& host, HostConnection::Deadline deadline) {
  while (const auto message = host.receive(deadline)) {
    const auto frame = standin::decodeFrame(*message);
    if (!frame || frame->id != kCallId) continue;
    const auto outcome = codec::decodeEnvelope(frame->payload);
    if (!outcome) throw ConnectionError("The host's reply cannot be read.");
    return *outcome;
  }
  throw ConnectionError("No answer within " + std::to_string(kTimeout.count()) +
                        " seconds. The host is busy or hangs; try again, or start it anew with "
                        "./tapdeck run.");
}

int call(const CommandLine& line) {
  const auto deadline = std::chrono::steady_clock::now() + kTimeout;
  HostConnection host(currentSession(), deadline);
  host.send(standin::encodeCall(kCallId, line.channel, {line.method, line.arguments}));
  const Outcome outcome = awaitReply(host, deadline);
  printLine(jsonFromOutcome(outcome));
  if (std::holds_alternative<MethodError>(outcome)) return kErrorReply;
  return std::holds_alternative<NotImplemented>(outcome) ? kNotImplemented : 0;
}

int listen() {
  HostConnection host(currentSession(), std::chrono::steady_clock::now() + kTimeout);
  std::fputs("Listening; Ctrl-C ends it.\n", stderr);
  while (const auto message = host.receive(std::nullopt)) {
    const auto frame = standin::decodeFrame(*message);
    if (!frame || frame->id != standin::kHostCallId || !frame->payload) continue;
    const auto sent = codec::decodeMethodCall(*frame->payload);
    if (!sent) continue;
    printLine({{"channel", frame->channel},
               {"method", sent->method},
               {"arguments", jsonFromValue(sent->arguments)}});
  }
  return 0;
}

int run(const std::vector<std::string>& words) {
  CommandLine line;
  try {
    line = parseCommandLine(words);
  } catch (const std::invalid_argument& error) {
    warn(error.what());
    std::fputs(kUsage, stderr);
    return kWrongUsage;
  }
  if (line.help) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  try {
    return line.listen ? listen() : call(line);
  } catch (const std::exception& error) {
    warn(error.what());
    return kNoAnswer;
  }
}

}  // namespace
}  // namespace tapdeck

int main(int argc, char** argv) {
  return tapdeck::run(std::vector<std::string>(argv + 1, argv + argc));
}
