#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Linux/AppleScript/AppleScript.h"
#include "Platform/Linux/AppleScript/Value.h"

namespace tapdeck::applescript {

/// A desktop that is as the test says and writes down what is done to it.
class ScriptedDesktop : public Desktop {
 public:
  struct ScriptedPlayer : Player {
    explicit ScriptedPlayer(std::vector<std::string>& all) : trace(all) {}
    PlayerState read() override {
      if (failure) throw ScriptError(*failure);
      return state;
    }
    void perform(Command command) override {
      trace.push_back("command " + std::to_string(static_cast<int>(command)));
    }
    void seek(int64_t position) override { trace.push_back("seek " + std::to_string(position)); }

    std::vector<std::string>& trace;
    PlayerState state;
    std::optional<ScriptError> failure;
  };

  Player* player(Application application) override {
    const auto found = players.find(application);
    return found != players.end() ? &found->second : nullptr;
  }
  Volume volume() override { return sound; }
  void setVolume(const Volume& volume) override {
    if (volume.level) sound.level = volume.level;
    if (volume.muted) sound.muted = volume.muted;
  }
  void power(Command command) override {
    trace.push_back("power " + std::to_string(static_cast<int>(command)));
  }
  std::string picture(const std::string& url) override {
    if (url != "file:///cover.jpg") throw ScriptError{kNotFound, "No picture.", ""};
    return {"\xFF\xD8\0\xFF", 4};
  }

  ScriptedPlayer& run(Application application, PlayerState state = {}) {
    auto& player = players.try_emplace(application, trace).first->second;
    player.state = std::move(state);
    return player;
  }

  std::map<Application, ScriptedPlayer> players;
  Volume sound;
  std::vector<std::string> trace;
};

/// A player with a track that has everything.
inline PlayerState playing(media::PlaybackStatus status = media::PlaybackStatus::playing) {
  return {.status = status,
          .track = media::Track{.title = "Song",
                                .artist = "Artist",
                                .album = "Album",
                                .id = "/com/spotify/track/4uLU6",
                                .url = "file:///music/a%20song.ogg",
                                .artUrl = "file:///cover.jpg",
                                .length = 215000000},
          .position = 12500000};
}

}  // namespace tapdeck::applescript
