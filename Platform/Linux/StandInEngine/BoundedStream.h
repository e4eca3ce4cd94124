#pragma once

#include <gio/gio.h>

#include <functional>
#include <span>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// How much of a connection may be kept in memory.
struct StreamBounds {
  /// Bytes received since the last complete message; more fail with G_IO_ERROR_MESSAGE_TOO_LARGE.
  size_t unfinished;
  /// Bytes sent that the peer's side has not taken yet; more fail with G_IO_ERROR_NO_SPACE.
  size_t unsent;
};

/// A stream over `base` for a SoupWebsocketConnection, which bounds neither a message in fragments
/// nor what waits to be sent, and reads for as long as something comes: here each turn of the main
/// loop has a bounded share. Writing never blocks: what the base does not take at once waits here
/// and is written from the default main context. Closing is immediate and discards what waits.
/// Both directions are pollable, as those of `base` must be. Main thread only.
glib::Object<GIOStream> newBoundedStream(GIOStream* base, const StreamBounds& bounds);

/// Writes one piece after the other to a stream made by newBoundedStream(), where possible with one
/// call of the system. False when that fails; what is written later fails too.
bool sendPieces(GIOStream* boundedStream, std::span<const GOutputVector> pieces);

/// Tells a stream made by newBoundedStream() that a complete message has been read: none of what
/// was received so far counts as unfinished any more.
void messageEnded(GIOStream* boundedStream);

/// Tells it that `size` bytes of what was received were a control frame (RFC 6455, 5.5), which may
/// come between the fragments of a message and does not count as unfinished.
void discountControlFrame(GIOStream* boundedStream, size_t size);

/// From now on the stream is read from only while `mayRead`; else it looks as if nothing had come.
void readOnlyWhile(GIOStream* boundedStream, std::function<bool()> mayRead);

}  // namespace tapdeck::standin
