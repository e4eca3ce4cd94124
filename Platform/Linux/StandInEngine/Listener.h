#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::standin {

/// A listening TCP socket. Where accepting fails, as it does without free descriptors, it says so
/// on standard error and goes on a second later. Main thread only, on the default main context.
class Listener {
 public:
  using Accepted = std::function<void(glib::Object<GSocketConnection>)>;

  /// Null, with the error set, when nothing can listen there. `accepted` may end the listener.
  static std::unique_ptr<Listener> open(GSocketAddress* address, Accepted accepted, GError** error);
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  uint16_t port() const;

 private:
  Listener(glib::Object<GSocket> socket, Accepted accepted);
  void watch();
  void watchAgainLater();
  void acceptSome();

  glib::Object<GSocket> _socket;
  std::shared_ptr<const Accepted> _accepted;
  glib::Source _source;
  bool _hasFailed = false;
};

}  // namespace tapdeck::standin
