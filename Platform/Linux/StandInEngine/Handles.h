#pragma once

#include <gio/gio.h>

#include <memory>

namespace tapdeck::standin {

struct GLibRelease {
  void operator()(char* text) const { g_free(text); }
  void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
  void operator()(GError* error) const { g_error_free(error); }
  void operator()(GUri* uri) const { g_uri_unref(uri); }
};
/// Owners of what GLib hands out.
using Text = std::unique_ptr<char, GLibRelease>;
using BytesHandle = std::unique_ptr<GBytes, GLibRelease>;
using ErrorHandle = std::unique_ptr<GError, GLibRelease>;
using UriHandle = std::unique_ptr<GUri, GLibRelease>;

struct ObjectRelease {
  void operator()(gpointer object) const { g_object_unref(object); }
};
/// The owner of one reference to a GObject.
template <typename T>
using Object = std::unique_ptr<T, ObjectRelease>;

/// A source that is attached to the default main context; destroying this takes it off.
struct SourceRelease {
  void operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
  }
};
using Source = std::unique_ptr<GSource, SourceRelease>;

}  // namespace tapdeck::standin
