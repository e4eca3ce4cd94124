#include "Engine/StandardCodec.h"

#include <string>
#include <utility>

#include "Engine/StandardReader.h"
#include "Engine/StandardWriter.h"

namespace tapdeck::codec {
namespace {

/// What `read` makes of the whole message; nothing when the message is malformed.
template <typename Read>
auto readWhole(std::span<const uint8_t> message, Read read)
    -> std::optional<decltype(read(std::declval<Reader&>()))> {
  try {
    Reader reader(message);
    auto result = read(reader);
    reader.expectEnd();
    return result;
  } catch (const Malformed&) {
    return std::nullopt;
  }
}

std::string readString(Reader& reader) {
  const Value value = reader.value();
  const auto* text = value.getIf<std::string>();
  if (text == nullptr) throw Malformed();
  return *text;
}

MethodError readError(Reader& reader) {
  MethodError error;
  error.code = readString(reader);
  const Value message = reader.value();
  if (const auto* text = message.getIf<std::string>()) {
    error.message = *text;
  } else if (!message.isNull()) {
    throw Malformed();
  }
  error.details = reader.value();
  // Some senders add a stack trace, which is of no use on this side.
  if (!reader.isAtEnd()) reader.value();
  return error;
}

Outcome readEnvelope(Reader& reader) {
  switch (reader.byte()) {
    case kSuccess:
      return reader.value();
    case kError:
      return readError(reader);
    default:
      throw Malformed();
  }
}

}  // namespace

Bytes encodeMessage(const Value& value) {
  Writer writer;
  writer.value(value);
  return writer.take().joined();
}

std::optional<Value> decodeMessage(std::span<const uint8_t> message) {
  return readWhole(message, [](Reader& reader) { return reader.value(); });
}

Bytes encodeMethodCall(const MethodCall& call) {
  Writer writer;
  writer.methodCall(call);
  return writer.take().joined();
}

std::optional<MethodCall> decodeMethodCall(std::span<const uint8_t> message) {
  return readWhole(message, [](Reader& reader) {
    std::string method = readString(reader);
    return MethodCall{std::move(method), reader.value()};
  });
}

std::optional<Bytes> encodeEnvelope(const Outcome& outcome) {
  if (std::holds_alternative<NotImplemented>(outcome)) return std::nullopt;
  Writer writer;
  writer.envelope(outcome);
  return writer.take().joined();
}

std::optional<Outcome> decodeEnvelope(std::optional<std::span<const uint8_t>> envelope) {
  if (!envelope) return NotImplemented{};
  return readWhole(*envelope, readEnvelope);
}

}  // namespace tapdeck::codec
