#include "Platform/Linux/EngineProtocol/Protocol.h"

#include <optional>
#include <utility>

namespace tapdeck::standin {
namespace {

codec::Bytes encode(int64_t id, const std::string& channel, std::optional<codec::Bytes> payload) {
  Value::List message;
  message.reserve(3);
  message.emplace_back(id);
  message.emplace_back(channel);
  message.push_back(payload ? Value(*std::move(payload)) : Value());
  return codec::encodeMessage(Value(std::move(message)));
}

}  // namespace

std::variant<Request, Refusal> parseRequest(std::span<const uint8_t> message) {
  const std::optional<Value> value = codec::decodeMessage(message);
  if (!value) return Refusal::badData;
  const auto* list = value->getIf<Value::List>();
  if (list == nullptr || list->size() != 3) return Refusal::protocolError;
  const auto* id = (*list)[0].getIf<int64_t>();
  const auto* channel = (*list)[1].getIf<std::string>();
  const auto* payload = (*list)[2].getIf<Value::Bytes>();
  if (id == nullptr || *id <= 0 || channel == nullptr || payload == nullptr) {
    return Refusal::protocolError;
  }
  std::optional<MethodCall> call = codec::decodeMethodCall(*payload);
  if (!call) return Refusal::badData;
  return Request{*id, *channel, *std::move(call)};
}

codec::Bytes encodeReply(int64_t id, const std::string& channel, const Outcome& outcome) {
  return encode(id, channel, codec::encodeEnvelope(outcome));
}

codec::Bytes encodeHostCall(const std::string& channel, const MethodCall& call) {
  return encode(0, channel, codec::encodeMethodCall(call));
}

}  // namespace tapdeck::standin
