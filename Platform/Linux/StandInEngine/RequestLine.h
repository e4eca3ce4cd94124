#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>
#include <string_view>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// The first line that a client sends (RFC 9112, 3). libsoup gives its target only in a normal
/// form, without dots and with letters that were escaped decoded.
class RequestLine {
 public:
  /// The next bytes that have come, in pieces of any size; all but the first line is left out.
  void add(std::string_view bytes);
  /// The request target as it was sent; empty when this is no line of HTTP/1, or not all of it.
  std::string_view target() const;

 private:
  std::string _line;
};

/// A stream over `base`, which is closed with it; what is read from it is added to the line.
/// Pollable, as `base` must be. Main thread only.
glib::Object<GIOStream> newNotingStream(GIOStream* base, std::shared_ptr<RequestLine> line);

}  // namespace tapdeck::standin
