#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <variant>

namespace tapdeck::applescript {

/// The applications that a `tell` can address.
enum class Application { music, spotify, vlc, systemEvents };

enum class Property {
  album,
  artist,
  artworkUrl,
  currentItem,
  currentTime,
  currentTrack,
  duration,
  id,
  isPlaying,
  name,
  outputMuted,
  outputVolume,
  path,
  persistentId,
  playerPosition,
  playerState,
  rawData
};

enum class Command { next, playPause, previous, restart, shutDown, sleep };

enum class Constant { paused, playing, stopped };

/// `artwork 1`.
enum class Element { artwork };

using Meaning = std::variant<Property, Command, Constant, Element>;

/// A word, or several that are one term together, in lower case with one space between them.
struct Term {
  std::string_view words;
  Meaning meaning;
};

/// The most words that a term has.
constexpr size_t kMaxWords = 3;

/// Case is ignored; absent for an application that is unknown here.
std::optional<Application> applicationNamed(std::string_view name);
std::string_view nameOf(Application application);
std::string_view wordsOf(Property property);
std::string_view wordsOf(Constant constant);

/// The term that these words are for the application, or in every script when it is absent; null
/// when they are none.
const Term* findTerm(std::optional<Application> application, std::string_view words);

}  // namespace tapdeck::applescript
