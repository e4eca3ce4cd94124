#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Engine/MethodCall.h"

namespace tapdeck::standin {

/// What the connections hold on the host: mouse buttons, keys, the hidden cursor, the laser. It is
/// fed the calls on the control channel as they are forwarded, and says how to let go of what a
/// connection leaves behind. Not safe on several threads.
class Holds {
 public:
  using Connection = uint64_t;
  static constexpr size_t kMostPerConnection = 256;
  static constexpr size_t kLongestName = 256;

  /// Takes note of a call by the connection. False, with nothing noted, when the connection would
  /// hold more than any keyboard has or names something that can be no key or button.
  bool note(Connection connection, const MethodCall& call);

  /// Whether the connection holds anything.
  bool holdsAny(Connection connection) const;

  /// The connection is gone: the calls that let go of what it still holds and no other connection
  /// does. Buttons come first, then keys, in each case the last pressed first.
  std::vector<MethodCall> end(Connection connection);

 private:
  enum class Kind { button, key, cursor, laser };
  struct Hold {
    Connection connection;
    Kind kind;
    std::string name;
  };
  struct Change;
  static Change changeOf(const MethodCall& call);
  static MethodCall releaseOf(const Hold& hold);
  bool isHeld(Kind kind, const std::string& name) const;

  /// In the order of pressing.
  std::vector<Hold> _holds;
};

}  // namespace tapdeck::standin
