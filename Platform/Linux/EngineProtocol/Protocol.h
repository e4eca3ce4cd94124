#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "Engine/Message.h"
#include "Engine/MethodCall.h"
#include "Engine/Reply.h"
#include "Engine/StandardCodec.h"

namespace tapdeck::standin {

/// The messages of the WebSocket subprotocol: each is one standard-codec list [id, channel,
/// payload]. A call from the page has an id above 0, which its reply bears too; a call from the
/// host has id 0.
inline constexpr const char* kSubprotocol = "tapdeck.engine.v1";
/// The channel on which this engine itself answers about devices.
inline constexpr const char* kDevicesChannel = "tapdeck.engine/devices";

struct Request {
  int64_t id;
  std::string channel;
  MethodCall call;
};

/// Why a message is no request, as a WebSocket close code (RFC 6455, 7.4.1).
enum class Refusal : uint16_t { protocolError = 1002, badData = 1007 };

/// A message's three parts; the payload is absent for the not-implemented reply.
struct Frame {
  int64_t id;
  std::string channel;
  std::optional<Value::Bytes> payload;
};

/// The id of a call from the host.
inline constexpr int64_t kHostCallId = 0;

// The server's side.
std::variant<Request, Refusal> parseRequest(std::span<const uint8_t> message);
codec::Message encodeReply(int64_t id, const std::string& channel, const Outcome& outcome);
codec::Message encodeHostCall(const std::string& channel, const MethodCall& call);

// A client's side.
codec::Bytes encodeCall(int64_t id, const std::string& channel, const MethodCall& call);
/// Absent for bytes that are no such message.
std::optional<Frame> decodeFrame(std::span<const uint8_t> message);

}  // namespace tapdeck::standin
