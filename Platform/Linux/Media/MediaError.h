#pragma once

#include <stdexcept>
#include <string>

namespace tapdeck::media {

/// Why a player, the sound output or the machine did not do as it was told; the text is for people.
class MediaError : public std::runtime_error {
 public:
  enum class Kind {
    /// Nobody bears the name on the bus (any more), or the bus has gone.
    notRunning,
    /// The reply did not come in time.
    timedOut,
    /// There is no track, or no picture, where one was looked for.
    notFound,
    /// The answer was an error.
    failed
  };

  MediaError(Kind kind, const std::string& message) : std::runtime_error(message), _kind(kind) {}

  Kind kind() const { return _kind; }

 private:
  Kind _kind;
};

}  // namespace tapdeck::media
