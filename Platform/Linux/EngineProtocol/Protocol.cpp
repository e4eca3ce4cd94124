#include "Platform/Linux/EngineProtocol/Protocol.h"

#include <optional>
#include <utility>

#include "Engine/StandardWriter.h"

namespace tapdeck::standin {
namespace {

template <typename WritePayload>
codec::Message encode(int64_t id, const std::string& channel, WritePayload writePayload) {
  codec::Writer writer;
  writer.list(3);
  writer.value(Value(id));
  writer.value(Value(channel));
  writePayload(writer);
  return writer.take();
}

codec::Message encode(int64_t id, const std::string& channel, const MethodCall& call) {
  return encode(id, channel, [&](codec::Writer& writer) {
    writer.message([&](codec::Writer& payload) { payload.methodCall(call); });
  });
}

std::optional<Frame> frameIn(const Value& message) {
  const auto* parts = message.getIf<Value::List>();
  if (parts == nullptr || parts->size() != 3) return std::nullopt;
  const auto* id = (*parts)[0].getIf<int64_t>();
  const auto* channel = (*parts)[1].getIf<std::string>();
  const auto* payload = (*parts)[2].getIf<Value::Bytes>();
  if (id == nullptr || channel == nullptr) return std::nullopt;
  if (payload == nullptr && !(*parts)[2].isNull()) return std::nullopt;
  return Frame{*id, *channel, payload != nullptr ? std::optional(*payload) : std::nullopt};
}

}  // namespace

std::variant<Request, Refusal> parseRequest(std::span<const uint8_t> message) {
  const auto value = codec::decodeMessage(message);
  if (!value) return Refusal::badData;
  const auto frame = frameIn(*value);
  if (!frame || frame->id <= 0 || !frame->payload) return Refusal::protocolError;
  auto call = codec::decodeMethodCall(*frame->payload);
  if (!call) return Refusal::badData;
  return Request{frame->id, frame->channel, *std::move(call)};
}

std::optional<Frame> decodeFrame(std::span<const uint8_t> message) {
  const auto value = codec::decodeMessage(message);
  return value ? frameIn(*value) : std::nullopt;
}

codec::Bytes encodeCall(int64_t id, const std::string& channel, const MethodCall& call) {
  return encode(id, channel, call).joined();
}

codec::Message encodeReply(int64_t id, const std::string& channel, const Outcome& outcome) {
  return encode(id, channel, [&](codec::Writer& writer) {
    if (std::holds_alternative<NotImplemented>(outcome)) {
      writer.value(Value());
    } else {
      writer.message([&](codec::Writer& payload) { payload.envelope(outcome); });
    }
  });
}

codec::Message encodeHostCall(const std::string& channel, const MethodCall& call) {
  return encode(kHostCallId, channel, call);
}

}  // namespace tapdeck::standin
