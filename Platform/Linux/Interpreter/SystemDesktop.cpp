#include "Platform/Linux/Interpreter/SystemDesktop.h"

#include <utility>

#include "Platform/Linux/AppleScript/Value.h"
#include "Platform/Linux/Media/Pictures.h"
#include "Platform/Linux/Media/Power.h"
#include "Platform/Linux/Media/SoundOutput.h"

namespace tapdeck::applescript {
namespace {

/// In the words that the Mac has for it.
ScriptError scriptError(const media::MediaError& error) {
  using Kind = media::MediaError::Kind;
  switch (error.kind()) {
    case Kind::notRunning:
      return {kNotRunning, "Application isn’t running.", ""};
    case Kind::timedOut:
      return {kTimedOut, "AppleEvent timed out.", ""};
    case Kind::notFound:
      return {kNotFound, error.what(), ""};
    default:
      return {kEventFailed, error.what(), ""};
  }
}

/// Runs what uses the media services, so that their failures come as the language's.
template <typename Use>
auto translatingErrors(Use use) {
  try {
    return use();
  } catch (const media::MediaError& error) {
    throw scriptError(error);
  }
}

media::PlayerCommand playerCommand(Command command) {
  if (command == Command::next) return media::PlayerCommand::next;
  return command == Command::previous ? media::PlayerCommand::previous
                                      : media::PlayerCommand::playPause;
}

media::PowerAction powerAction(Command command) {
  if (command == Command::sleep) return media::PowerAction::sleep;
  return command == Command::shutDown ? media::PowerAction::shutDown : media::PowerAction::restart;
}

class SystemPlayer : public Player {
 public:
  explicit SystemPlayer(std::unique_ptr<media::Player> player) : _player(std::move(player)) {}

  PlayerState read() override {
    return translatingErrors([this] { return _player->read(); });
  }

  void perform(Command command) override {
    translatingErrors([&] { _player->perform(playerCommand(command)); });
  }

  void seek(int64_t position) override {
    translatingErrors([&] { _player->seek(position); });
  }

 private:
  std::unique_ptr<media::Player> _player;
};

/// None for an application that is no player.
std::optional<media::PlayerApplication> playerApplication(Application application) {
  switch (application) {
    case Application::music:
      return media::PlayerApplication::music;
    case Application::spotify:
      return media::PlayerApplication::spotify;
    case Application::vlc:
      return media::PlayerApplication::vlc;
    default:
      return std::nullopt;
  }
}

}  // namespace

Player* SystemDesktop::player(Application application) {
  const auto wanted = playerApplication(application);
  if (!wanted) return nullptr;
  if (!_bus) _bus = media::Bus::connect(G_BUS_TYPE_SESSION);
  if (!*_bus) return nullptr;
  auto [entry, isNew] = _players.try_emplace(application);
  if (isNew) {
    auto player = media::findPlayer(**_bus, *wanted);
    if (player != nullptr) entry->second = std::make_unique<SystemPlayer>(std::move(player));
  }
  return entry->second.get();
}

Volume SystemDesktop::volume() {
  return media::soundOutputVolume();
}

void SystemDesktop::setVolume(const Volume& volume) {
  translatingErrors([&] { media::setSoundOutputVolume(volume); });
}

void SystemDesktop::power(Command command) {
  translatingErrors([&] { media::requestPower(powerAction(command)); });
}

std::string SystemDesktop::picture(const std::string& url) {
  return translatingErrors([&] { return media::readPicture(url); });
}

Result runOnThisMachine(const std::string& source) {
  SystemDesktop desktop;
  return run(source, desktop);
}

}  // namespace tapdeck::applescript
