#pragma once

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <string>
#include <string_view>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::platform {

/// Decodes a picture. Null when the bytes are none, or one of more than 40 million pixels, which no
/// icon or cover needs. Any thread.
glib::Object<GdkPixbuf> decodePicture(std::string_view bytes);

/// Decodes the picture in a file of up to 10 MB; one made of vectors comes as large as it fits into
/// a square of `side` pixels. Null as above, for what is no regular file, and when it takes longer
/// than a second: the thread that decodes it is left to itself then, and this state of the file is
/// not tried again. Main thread only.
glib::Object<GdkPixbuf> decodeIconFile(const std::string& path, int side);

}  // namespace tapdeck::platform
