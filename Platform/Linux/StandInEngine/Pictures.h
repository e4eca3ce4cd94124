#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "Engine/MethodCall.h"
#include "Engine/Reply.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"

namespace tapdeck::standin {

/// What each connection has been sent of the screen. The host knows one last picture, whoever it
/// was for: at one size the second of two pages would be told "unchanged" of a picture that only
/// the first one has, and at two sizes each would be sent a still screen over and over. Main
/// thread only.
class Pictures {
 public:
  static bool isCapture(const MethodCall& call) { return call.method == "captureScreen"; }
  /// The same call with "force".
  static MethodCall forced(const MethodCall& call);

  /// What the connection is sent for what the host answered to its call. Absent where the host is
  /// to be asked the forced call first; what that gives is to be settled then.
  std::optional<Outcome> settle(ConnectionNumber connection, const MethodCall& call,
                                Outcome outcome);
  /// The connection gets a whole picture next.
  void reset(ConnectionNumber connection);

 private:
  /// The arguments that choose a picture: display, width and quality, as they came.
  using View = Value;
  struct Picture {
    View view;
    Value reply;
    uint64_t number;
  };
  static View viewOf(const MethodCall& call);
  Picture* pictureOf(const View& view);
  const Picture& keep(const View& view, Value reply);
  /// Forgets the pictures that no connection shows.
  void prune();

  std::vector<Picture> _pictures;
  /// The number of the picture that each connection was sent last.
  std::map<ConnectionNumber, uint64_t> _shown;
  /// The host's last picture.
  uint64_t _last = 0;
  uint64_t _count = 0;
};

}  // namespace tapdeck::standin
