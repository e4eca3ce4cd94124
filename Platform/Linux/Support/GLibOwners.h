#pragma once

#include <gio/gio.h>

#include <memory>

/// Owners of what GLib hands out "transfer full": each gives its one reference, or its memory, back
/// when it ends. Null owns nothing.
namespace tapdeck::glib {

struct ObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
/// One reference to a GObject.
template <typename T>
using Object = std::unique_ptr<T, ObjectUnref>;

struct MemoryFree {
  void operator()(gconstpointer memory) const { g_free(const_cast<gpointer>(memory)); }
};
/// Memory of g_malloc.
template <typename T>
using Memory = std::unique_ptr<T, MemoryFree>;
using Text = Memory<char>;

/// What each other type has to end with.
struct Release {
  void operator()(char** texts) const { g_strfreev(texts); }
  void operator()(GByteArray* bytes) const { g_byte_array_unref(bytes); }
  void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
  void operator()(GError* error) const { g_error_free(error); }
  void operator()(GKeyFile* file) const { g_key_file_unref(file); }
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
  void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
  void operator()(GOptionContext* context) const { g_option_context_free(context); }
  void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
  void operator()(GUri* uri) const { g_uri_unref(uri); }
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
  void operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
  }
};
/// A list of texts, ended by null (a GStrv).
using Texts = std::unique_ptr<char*, Release>;
using ByteArray = std::unique_ptr<GByteArray, Release>;
using Bytes = std::unique_ptr<GBytes, Release>;
using Error = std::unique_ptr<GError, Release>;
using KeyFile = std::unique_ptr<GKeyFile, Release>;
using MainContext = std::unique_ptr<GMainContext, Release>;
using MainLoop = std::unique_ptr<GMainLoop, Release>;
using OptionContext = std::unique_ptr<GOptionContext, Release>;
using SettingsSchema = std::unique_ptr<GSettingsSchema, Release>;
using Uri = std::unique_ptr<GUri, Release>;
/// A reference that is not floating.
using Variant = std::unique_ptr<GVariant, Release>;
/// Takes the source off its main context as well.
using Source = std::unique_ptr<GSource, Release>;

}  // namespace tapdeck::glib
