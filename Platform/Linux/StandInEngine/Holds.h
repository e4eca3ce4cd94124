#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Engine/MethodCall.h"
#include "Platform/Linux/StandInEngine/EngineTypes.h"

namespace tapdeck::standin {

/// What the connections hold on the host: mouse buttons, keys, the hidden cursor, the laser. It is
/// fed the calls on the control channel as they are forwarded, and says how to let go of what a
/// connection leaves behind. The host counts hides of the cursor, so they are counted here too. Not
/// safe on several threads.
class Holds {
 public:
  static constexpr size_t kMaxPerConnection = 256;
  static constexpr size_t kMaxNameBytes = 256;

  /// Takes note of a call by the connection. False, with nothing noted, when the connection would
  /// hold more than any keyboard has or names something that can be no key or button.
  bool note(ConnectionNumber connection, const MethodCall& call);

  /// Whether the connection holds anything.
  bool holdsAny(ConnectionNumber connection) const;

  /// The connection is gone: the calls that let go of what it still holds and no other connection
  /// does, and show the cursor as often as it has hidden it. Buttons come first, then keys, in each
  /// case the last pressed first.
  std::vector<MethodCall> end(ConnectionNumber connection);

 private:
  enum class Kind { button, key, cursor, laser };
  struct Hold {
    ConnectionNumber connection;
    Kind kind;
    std::string name;
  };
  struct Change;
  static Change changeOf(const MethodCall& call);
  static MethodCall releaseOf(const Hold& hold);
  void letGo(ConnectionNumber connection, const Change& change);
  bool isHeld(Kind kind, const std::string& name) const;

  /// In the order of pressing.
  std::vector<Hold> _holds;
};

}  // namespace tapdeck::standin
