#include "Platform/Linux/StandInEngine/BoundedStream.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace tapdeck::standin {
namespace {

using glib::Object;

/// How much is read in one turn of the main loop.
constexpr size_t kMaxReadPerTurn = size_t{64} << 10;
constexpr std::chrono::milliseconds kMaxTurn{5};
constexpr size_t kChunk = size_t{64} << 10;
/// The system takes 1,024.
constexpr size_t kMaxPiecesAtOnce = 16;

/// What waits to be sent, in pieces, so that memory is neither doubled to grow nor moved to shrink.
class Unsent {
 public:
  size_t size() const { return _size; }

  void add(const uint8_t* data, size_t size) {
    _size += size;
    while (size > 0) {
      if (_chunks.empty() || _chunks.back().size() == kChunk) {
        _chunks.emplace_back().reserve(std::min(size, kChunk));
      }
      auto& chunk = _chunks.back();
      const size_t count = std::min(size, kChunk - chunk.size());
      chunk.insert(chunk.end(), data, data + count);
      data += count;
      size -= count;
    }
  }

  /// The first bytes that are together; there must be some.
  GOutputVector first() const {
    return {_chunks.front().data() + _taken, _chunks.front().size() - _taken};
  }

  void take(size_t count) {
    _taken += count;
    _size -= count;
    if (_taken < _chunks.front().size()) return;
    _chunks.pop_front();
    _taken = 0;
  }

  void clear() { *this = Unsent(); }

 private:
  std::deque<std::vector<uint8_t>> _chunks;
  /// Of the first chunk.
  size_t _taken = 0;
  size_t _size = 0;
};

/// What the stream and its two directions share. Sources keep a direction alive beyond the stream.
class Flow {
 public:
  Flow(GIOStream* base, const StreamBounds& bounds)
      : _base(G_IO_STREAM(g_object_ref(base))), _bounds(bounds) {}

  GPollableInputStream* input() const {
    return G_POLLABLE_INPUT_STREAM(g_io_stream_get_input_stream(_base.get()));
  }
  GPollableOutputStream* output() const {
    return G_POLLABLE_OUTPUT_STREAM(g_io_stream_get_output_stream(_base.get()));
  }

  gssize read(void* buffer, gsize size, GError** error) {
    if (_unfinished > _bounds.unfinished) {
      g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_MESSAGE_TOO_LARGE, "Message too large");
      return -1;
    }
    if (turnIsOver()) {
      _readInTurn = 0;
      g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK, "The turn is over");
      return -1;
    }
    const gssize count =
        g_pollable_input_stream_read_nonblocking(input(), buffer, size, nullptr, error);
    if (count > 0) {
      _unfinished += static_cast<size_t>(count);
      _readInTurn += static_cast<size_t>(count);
    } else {
      // whoever reads until nothing is left has come to that
      _readInTurn = 0;
    }
    return count;
  }
  void readOnlyWhile(std::function<bool()> mayRead) { _mayRead = std::move(mayRead); }
  void messageEnded() { _unfinished = 0; }
  void discountControlFrame(size_t size) { _unfinished -= std::min(_unfinished, size); }

  /// Sends all of the pieces, one after the other. Once that has failed it fails for good, as a
  /// part of them may be on its way.
  bool write(std::span<const GOutputVector> pieces, GError** error) {
    gsize taken = 0;
    if (!_hasFailed && _unsent.size() == 0 && !writeToBase(pieces, taken, error)) return false;
    size_t size = 0;
    for (const auto& piece : pieces) size += piece.size;
    _hasFailed = _hasFailed || _unsent.size() + size - taken > _bounds.unsent;
    if (_hasFailed) {
      g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_NO_SPACE, "The peer does not read");
      return false;
    }
    for (const auto& piece : pieces) {
      const size_t skipped = std::min(taken, piece.size);
      taken -= skipped;
      _unsent.add(static_cast<const uint8_t*>(piece.buffer) + skipped, piece.size - skipped);
    }
    if (_unsent.size() > 0 && !_flushing) flushLater();
    return true;
  }

  gboolean close(GError** error) {
    _flushing.reset();
    _unsent.clear();
    return g_io_stream_close(_base.get(), nullptr, error);
  }

 private:
  bool turnIsOver() {
    if (_mayRead && !_mayRead()) return true;
    const auto now = std::chrono::steady_clock::now();
    if (_readInTurn == 0) _turnStart = now;
    return _readInTurn >= kMaxReadPerTurn || now - _turnStart > kMaxTurn;
  }

  /// Counts what the base takes without blocking in `taken`.
  bool writeToBase(std::span<const GOutputVector> pieces, gsize& taken, GError** error) {
    const auto first = pieces.first(std::min(pieces.size(), kMaxPiecesAtOnce));
    const auto outcome = g_pollable_output_stream_writev_nonblocking(
        output(), first.data(), first.size(), &taken, nullptr, error);
    if (outcome == G_POLLABLE_RETURN_FAILED) _hasFailed = true;
    return outcome != G_POLLABLE_RETURN_FAILED;
  }

  void flushLater() {
    _flushing.reset(g_pollable_output_stream_create_source(output(), nullptr));
    const GPollableSourceFunc callback = [](GObject*, gpointer flow) noexcept {
      return static_cast<Flow*>(flow)->flush();
    };
    g_source_set_callback(_flushing.get(), G_SOURCE_FUNC(callback), this, nullptr);
    g_source_attach(_flushing.get(), nullptr);
  }

  gboolean flush() {
    const GOutputVector first = _unsent.first();
    gsize taken = 0;
    if (!writeToBase({&first, 1}, taken, nullptr)) {
      // A failing socket says so to the reading side too, which ends the connection.
      _unsent.clear();
    } else if (taken > 0) {
      _unsent.take(taken);
    }
    if (_unsent.size() > 0) return G_SOURCE_CONTINUE;
    _flushing.reset();
    return G_SOURCE_REMOVE;
  }

  Object<GIOStream> _base;
  StreamBounds _bounds;
  size_t _unfinished = 0;
  std::function<bool()> _mayRead;
  size_t _readInTurn = 0;
  std::chrono::steady_clock::time_point _turnStart;
  Unsent _unsent;
  /// A part of what was sent is lost.
  bool _hasFailed = false;
  glib::Source _flushing;
};

using FlowHandle = std::shared_ptr<Flow>;

// GObject makes and frees instances as plain memory: the C++ member in them is constructed and
// destroyed by hand.

struct BoundedInput {
  GInputStream parent;
  FlowHandle flow;
};
struct BoundedInputClass {
  GInputStreamClass parent;
};
struct BoundedOutput {
  GOutputStream parent;
  FlowHandle flow;
};
struct BoundedOutputClass {
  GOutputStreamClass parent;
};
struct BoundedStream {
  GIOStream parent;
  FlowHandle flow;
  GInputStream* input;
  GOutputStream* output;
};
struct BoundedStreamClass {
  GIOStreamClass parent;
};

template <typename Self>
Flow& flowOf(void* self) {
  return *static_cast<Self*>(self)->flow;
}

void bounded_input_pollable(GPollableInputStreamInterface* interface) {
  interface->is_readable = [](GPollableInputStream* self) noexcept {
    return g_pollable_input_stream_is_readable(flowOf<BoundedInput>(self).input());
  };
  interface->create_source = [](GPollableInputStream* self, GCancellable* cancellable) noexcept {
    GSource* ready =
        g_pollable_input_stream_create_source(flowOf<BoundedInput>(self).input(), nullptr);
    GSource* source = g_pollable_source_new_full(self, ready, cancellable);
    g_source_unref(ready);
    return source;
  };
  interface->read_nonblocking = [](GPollableInputStream* self, void* buffer, gsize size,
                                   GError** error) noexcept {
    return flowOf<BoundedInput>(self).read(buffer, size, error);
  };
}

void bounded_output_pollable(GPollableOutputStreamInterface* interface) {
  interface->is_writable = [](GPollableOutputStream*) noexcept -> gboolean { return TRUE; };
  interface->create_source = [](GPollableOutputStream* self, GCancellable* cancellable) noexcept {
    GSource* ready = g_idle_source_new();
    GSource* source = g_pollable_source_new_full(self, ready, cancellable);
    g_source_unref(ready);
    return source;
  };
  interface->write_nonblocking = [](GPollableOutputStream* self, const void* data, gsize size,
                                    GError** error) noexcept {
    const GOutputVector piece{data, size};
    return flowOf<BoundedOutput>(self).write({&piece, 1}, error) ? static_cast<gssize>(size) : -1;
  };
}

// The macro's functions of type_name() must have C-like names.
G_DEFINE_TYPE_WITH_CODE(BoundedInput, bounded_input, G_TYPE_INPUT_STREAM,
                        G_IMPLEMENT_INTERFACE(G_TYPE_POLLABLE_INPUT_STREAM, bounded_input_pollable))
G_DEFINE_TYPE_WITH_CODE(BoundedOutput, bounded_output, G_TYPE_OUTPUT_STREAM,
                        G_IMPLEMENT_INTERFACE(G_TYPE_POLLABLE_OUTPUT_STREAM,
                                              bounded_output_pollable))
G_DEFINE_TYPE(BoundedStream, bounded_stream, G_TYPE_IO_STREAM)

void bounded_input_init(BoundedInput* self) {
  new (&self->flow) FlowHandle();
}

void bounded_input_class_init(BoundedInputClass* type) {
  G_OBJECT_CLASS(type)->finalize = [](GObject* self) noexcept {
    reinterpret_cast<BoundedInput*>(self)->flow.~FlowHandle();
    G_OBJECT_CLASS(bounded_input_parent_class)->finalize(self);
  };
}

void bounded_output_init(BoundedOutput* self) {
  new (&self->flow) FlowHandle();
}

void bounded_output_class_init(BoundedOutputClass* type) {
  G_OBJECT_CLASS(type)->finalize = [](GObject* self) noexcept {
    reinterpret_cast<BoundedOutput*>(self)->flow.~FlowHandle();
    G_OBJECT_CLASS(bounded_output_parent_class)->finalize(self);
  };
}

void bounded_stream_init(BoundedStream* self) {
  new (&self->flow) FlowHandle();
}

gboolean closeBounded(GIOStream* self, GCancellable*, GError** error) noexcept {
  return flowOf<BoundedStream>(self).close(error);
}

/// Closing a socket does not block; the default would do it on a thread of its own.
void closeBoundedAsync(GIOStream* self, int, GCancellable* cancellable,
                       GAsyncReadyCallback callback, gpointer data) noexcept {
  const Object<GTask> task(g_task_new(self, cancellable, callback, data));
  GError* error = nullptr;
  if (closeBounded(self, nullptr, &error)) {
    g_task_return_boolean(task.get(), TRUE);
  } else {
    g_task_return_error(task.get(), error);
  }
}

void bounded_stream_class_init(BoundedStreamClass* type) {
  // Disposal before this has closed the stream.
  G_OBJECT_CLASS(type)->finalize = [](GObject* object) noexcept {
    auto* self = reinterpret_cast<BoundedStream*>(object);
    g_object_unref(self->input);
    g_object_unref(self->output);
    self->flow.~FlowHandle();
    G_OBJECT_CLASS(bounded_stream_parent_class)->finalize(object);
  };
  auto* stream = G_IO_STREAM_CLASS(type);
  stream->get_input_stream = [](GIOStream* self) noexcept {
    return reinterpret_cast<BoundedStream*>(self)->input;
  };
  stream->get_output_stream = [](GIOStream* self) noexcept {
    return reinterpret_cast<BoundedStream*>(self)->output;
  };
  stream->close_fn = closeBounded;
  stream->close_async = closeBoundedAsync;
  stream->close_finish = [](GIOStream*, GAsyncResult* result, GError** error) noexcept {
    return g_task_propagate_boolean(G_TASK(result), error);
  };
}

}  // namespace

Object<GIOStream> newBoundedStream(GIOStream* base, const StreamBounds& bounds) {
  const auto flow = std::make_shared<Flow>(base, bounds);
  auto* stream = static_cast<BoundedStream*>(g_object_new(bounded_stream_get_type(), nullptr));
  auto* input = static_cast<BoundedInput*>(g_object_new(bounded_input_get_type(), nullptr));
  auto* output = static_cast<BoundedOutput*>(g_object_new(bounded_output_get_type(), nullptr));
  stream->flow = input->flow = output->flow = flow;
  stream->input = &input->parent;
  stream->output = &output->parent;
  return Object<GIOStream>(&stream->parent);
}

bool sendPieces(GIOStream* boundedStream, std::span<const GOutputVector> pieces) {
  return flowOf<BoundedStream>(boundedStream).write(pieces, nullptr);
}

void messageEnded(GIOStream* boundedStream) {
  flowOf<BoundedStream>(boundedStream).messageEnded();
}

void discountControlFrame(GIOStream* boundedStream, size_t size) {
  flowOf<BoundedStream>(boundedStream).discountControlFrame(size);
}

void readOnlyWhile(GIOStream* boundedStream, std::function<bool()> mayRead) {
  flowOf<BoundedStream>(boundedStream).readOnlyWhile(std::move(mayRead));
}

}  // namespace tapdeck::standin
