#include "Platform/Linux/StandInEngine/RequestLine.h"

#include <new>
#include <utility>

namespace tapdeck::standin {
namespace {

/// More than the longest line that is answered.
constexpr size_t kMaxLine = 1024;

using Line = std::shared_ptr<RequestLine>;

// GObject makes and frees instances as plain memory: the C++ members in them are constructed and
// destroyed by hand.
struct NotingInput {
  GFilterInputStream parent;
  Line line;
  glib::Object<GIOStream> base;
};
struct NotingInputClass {
  GFilterInputStreamClass parent;
};

GPollableInputStream* baseOf(GPollableInputStream* self) {
  return G_POLLABLE_INPUT_STREAM(
      g_filter_input_stream_get_base_stream(G_FILTER_INPUT_STREAM(self)));
}

void noting_input_pollable(GPollableInputStreamInterface* interface) {
  interface->is_readable = [](GPollableInputStream* self) noexcept {
    return g_pollable_input_stream_is_readable(baseOf(self));
  };
  interface->create_source = [](GPollableInputStream* self, GCancellable* cancellable) noexcept {
    GSource* ready = g_pollable_input_stream_create_source(baseOf(self), nullptr);
    GSource* source = g_pollable_source_new_full(self, ready, cancellable);
    g_source_unref(ready);
    return source;
  };
  interface->read_nonblocking = [](GPollableInputStream* self, void* buffer, gsize size,
                                   GError** error) noexcept {
    const gssize count =
        g_pollable_input_stream_read_nonblocking(baseOf(self), buffer, size, nullptr, error);
    if (count > 0) {
      reinterpret_cast<NotingInput*>(self)->line->add(
          {static_cast<const char*>(buffer), static_cast<size_t>(count)});
    }
    return count;
  };
}

// The macro's functions of type_name() must have C-like names.
G_DEFINE_TYPE_WITH_CODE(NotingInput, noting_input, G_TYPE_FILTER_INPUT_STREAM,
                        G_IMPLEMENT_INTERFACE(G_TYPE_POLLABLE_INPUT_STREAM, noting_input_pollable))

void noting_input_init(NotingInput* self) {
  new (&self->line) Line();
  new (&self->base) glib::Object<GIOStream>();
}

void noting_input_class_init(NotingInputClass* type) {
  G_OBJECT_CLASS(type)->finalize = [](GObject* object) noexcept {
    auto* self = reinterpret_cast<NotingInput*>(object);
    self->line.~Line();
    self->base.~unique_ptr();
    G_OBJECT_CLASS(noting_input_parent_class)->finalize(object);
  };
  // the two directions of a socket are closed by the stream of both only
  G_INPUT_STREAM_CLASS(type)->close_fn = [](GInputStream* self, GCancellable* cancellable,
                                            GError** error) noexcept {
    return g_io_stream_close(reinterpret_cast<NotingInput*>(self)->base.get(), cancellable, error);
  };
}

}  // namespace

void RequestLine::add(std::string_view bytes) {
  if (_line.ends_with('\n') || _line.size() >= kMaxLine) return;
  const size_t end = bytes.find('\n');
  _line += bytes.substr(0, end == std::string_view::npos ? kMaxLine - _line.size() : end + 1);
}

std::string_view RequestLine::target() const {
  std::string_view line = _line;
  if (!line.ends_with('\n')) return {};
  line.remove_suffix(line.ends_with("\r\n") ? 2 : 1);
  const size_t start = line.find(' ');
  const size_t end = line.rfind(' ');
  if (start == end || !line.substr(end).starts_with(" HTTP/1.")) return {};
  return line.substr(start + 1, end - start - 1);
}

glib::Object<GIOStream> newNotingStream(GIOStream* base, std::shared_ptr<RequestLine> line) {
  const glib::Object<GInputStream> input(G_INPUT_STREAM(g_object_new(
      noting_input_get_type(), "base-stream", g_io_stream_get_input_stream(base), nullptr)));
  auto* noting = reinterpret_cast<NotingInput*>(input.get());
  noting->line = std::move(line);
  noting->base.reset(G_IO_STREAM(g_object_ref(base)));
  return glib::Object<GIOStream>(
      g_simple_io_stream_new(input.get(), g_io_stream_get_output_stream(base)));
}

}  // namespace tapdeck::standin
