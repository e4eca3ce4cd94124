#pragma once

#include <gio/gio.h>

#include <memory>

namespace tapdeck::applications {

struct ObjectRelease {
  void operator()(gpointer object) const { g_object_unref(object); }
};
/// The owner of one reference to a GObject.
template <typename T>
using Object = std::unique_ptr<T, ObjectRelease>;

struct ErrorRelease {
  void operator()(GError* error) const { g_error_free(error); }
};
using Error = std::unique_ptr<GError, ErrorRelease>;

}  // namespace tapdeck::applications
