#include "Platform/Linux/Interpreter/SystemDesktop.h"

#include "Platform/Linux/Media/Pictures.h"
#include "Platform/Linux/Media/Players.h"
#include "Platform/Linux/Media/Power.h"
#include "Platform/Linux/Media/SoundOutput.h"

namespace tapdeck::applescript {

Player* SystemDesktop::player(Application application) {
  if (!_bus) _bus = Bus::connect(G_BUS_TYPE_SESSION);
  if (!*_bus) return nullptr;
  auto [place, isNew] = _players.try_emplace(application);
  if (isNew) place->second = findPlayer(**_bus, application);
  return place->second.get();
}

Volume SystemDesktop::volume() {
  return soundOutputVolume();
}

void SystemDesktop::setVolume(const Volume& volume) {
  setSoundOutputVolume(volume);
}

void SystemDesktop::power(Command command) {
  requestPower(command);
}

std::string SystemDesktop::picture(const std::string& url) {
  return readPicture(url);
}

Result runOnThisMachine(const std::string& source) {
  SystemDesktop desktop;
  return run(source, desktop);
}

}  // namespace tapdeck::applescript
