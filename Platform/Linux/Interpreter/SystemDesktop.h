#pragma once

#include <map>
#include <memory>
#include <optional>

#include "Platform/Linux/AppleScript/AppleScript.h"
#include "Platform/Linux/AppleScript/Desktop.h"
#include "Platform/Linux/Media/Bus.h"
#include "Platform/Linux/Media/Players.h"

namespace tapdeck::applescript {

/// This machine's desktop: turns what the media services give and throw into what the language
/// knows. A player stays the same one for as long as this lives.
class SystemDesktop : public Desktop {
 public:
  Player* player(Application application) override;
  Volume volume() override;
  void setVolume(const Volume& volume) override;
  void power(Command command) override;
  std::string picture(const std::string& url) override;

 private:
  /// Absent until asked for; then absent within when there is no session bus.
  std::optional<std::optional<media::Bus>> _bus;
  std::map<Application, std::unique_ptr<Player>> _players;
};

/// Compiles and runs the source, UTF-8, on this machine: media players of the session bus, the
/// sound server, the login manager. Waits for them, for about a second each at the most. Any
/// thread; leaves the thread's main loop alone.
Result runOnThisMachine(const std::string& source);

}  // namespace tapdeck::applescript
