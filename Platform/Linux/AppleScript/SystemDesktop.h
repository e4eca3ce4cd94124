#pragma once

#include <map>
#include <memory>
#include <optional>

#include "Platform/Linux/AppleScript/Bus.h"
#include "Platform/Linux/AppleScript/Desktop.h"

namespace tapdeck::applescript {

/// This machine's desktop. A player stays the same one for as long as this lives.
class SystemDesktop : public Desktop {
 public:
  Player* player(Application application) override;
  Volume volume() override;
  void setVolume(const Volume& volume) override;
  void power(Command command) override;
  std::string picture(const std::string& url) override;

 private:
  std::optional<std::optional<Bus>> _bus;
  std::map<Application, std::unique_ptr<Player>> _players;
};

}  // namespace tapdeck::applescript
