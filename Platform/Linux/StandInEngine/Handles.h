#pragma once

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

// The owners of what GLib hands out, by their names here.
using glib::Object;
using glib::Source;
using glib::Text;
using BytesHandle = glib::Bytes;
using ErrorHandle = glib::Error;
using UriHandle = glib::Uri;

}  // namespace tapdeck::standin
