#include "Platform/Linux/AppleScript/Objects.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::applescript {
namespace {

using media::PlaybackStatus;
using media::Track;

constexpr double kMicroseconds = 1000000;
/// In characters; a script writes several texts into one pipe, which holds 64 KiB.
constexpr glong kMaxTextLength = 2000;
constexpr gunichar kLineSeparator = 0x2028;
constexpr gunichar kParagraphSeparator = 0x2029;

/// The text cut to kMaxTextLength, with spaces for control characters and line breaks.
std::string singleLine(const std::string& text) {
  std::string clean;
  glong length = 0;
  for (const char* at = text.c_str(); *at != '\0' && length < kMaxTextLength; ++length) {
    const gunichar character = g_utf8_get_char(at);
    const char* next = g_utf8_next_char(at);
    const bool breaks = g_unichar_iscntrl(character) != FALSE || character == kLineSeparator ||
                        character == kParagraphSeparator;
    clean += breaks ? " " : std::string(at, next);
    at = next;
  }
  return clean;
}

std::string checksum(const std::string& text) {
  constexpr size_t kDigits = 16;
  const glib::Text sum(g_compute_checksum_for_string(G_CHECKSUM_SHA256, text.c_str(), -1));
  std::string digits(sum.get(), kDigits);
  std::ranges::transform(digits, digits.begin(), g_ascii_toupper);
  return digits;
}

/// Of all that is known of a track, because many players have one id for all tracks.
std::string persistentId(const Track& track) {
  return checksum(track.id + "\n" + track.url + "\n" + track.title + "\n" + track.artist + "\n" +
                  track.album);
}

/// Such as "spotify:track:4uLU6hMCjMI75M1A2tKUQC", which the player turns into a D-Bus path.
std::string spotifyId(const Track& track) {
  constexpr std::string_view kPath = "/com/spotify/";
  if (!track.id.starts_with(kPath)) return track.id;
  std::string id = "spotify:" + track.id.substr(kPath.size());
  std::ranges::replace(id, '/', ':');
  return id;
}

/// The path where the address is a file's, else the address itself.
std::string pathOf(const Track& track) {
  const glib::Text path(g_filename_from_uri(track.url.c_str(), nullptr, nullptr));
  const bool isText = path != nullptr && g_utf8_validate(path.get(), -1, nullptr) != FALSE;
  return isText ? path.get() : track.url;
}

/// Returns the text unchanged when it does not decode to UTF-8.
std::string percentDecoded(const std::string& text) {
  const glib::Text decoded(g_uri_unescape_string(text.c_str(), nullptr));
  const bool isText = decoded != nullptr && g_utf8_validate(decoded.get(), -1, nullptr) != FALSE;
  return isText ? decoded.get() : text;
}

std::string titleOf(const Track& track) {
  if (!track.title.empty()) return track.title;
  const std::string path = pathOf(track);
  const std::string last = path.substr(path.rfind('/') + 1);
  return path == track.url ? percentDecoded(last) : last;
}

Value durationOf(Application application, const Track& track) {
  constexpr int64_t kUnknown = -1;
  const int64_t length = std::max<int64_t>(track.length.value_or(0), 0);
  switch (application) {
    case Application::spotify:
      return length / 1000;
    case Application::vlc:
      return track.length ? length / static_cast<int64_t>(kMicroseconds) : kUnknown;
    default:
      return static_cast<double>(length) / kMicroseconds;
  }
}

Constant constantOf(PlaybackStatus status) {
  if (status == PlaybackStatus::playing) return Constant::playing;
  return status == PlaybackStatus::paused ? Constant::paused : Constant::stopped;
}

Object trackOf(Application application, const PlayerState& state) {
  return {application, Object::Kind::track, std::make_shared<const Track>(*state.track)};
}

/// Absent when the object has no such property, or the property no value at present.
using Found = std::optional<Value>;

Found trackProperty(const Object& object, Property property) {
  const Track& track = *object.track;
  switch (property) {
    case Property::name:
      return singleLine(titleOf(track));
    case Property::artist:
      return singleLine(track.artist);
    case Property::album:
      return singleLine(track.album);
    case Property::duration:
      return durationOf(object.application, track);
    case Property::persistentId:
      return persistentId(track);
    case Property::id:
      return singleLine(spotifyId(track));
    case Property::artworkUrl:
      return singleLine(track.artUrl);
    case Property::path:
      return singleLine(pathOf(track));
    default:
      return std::nullopt;
  }
}

Found playerProperty(Player& player, Application application, Property property) {
  const PlayerState state = player.read();
  switch (property) {
    case Property::currentTrack:
    case Property::currentItem:
      return state.track ? Found(trackOf(application, state)) : std::nullopt;
    case Property::playerState:
      return constantOf(state.status);
    case Property::isPlaying:
      return state.status == PlaybackStatus::playing;
    case Property::playerPosition:
      return static_cast<double>(state.position) / kMicroseconds;
    case Property::currentTime:
      return state.position / static_cast<int64_t>(kMicroseconds);
    default:
      return std::nullopt;
  }
}

Player& playerOf(Desktop& desktop, Application application) {
  Player* player = application != Application::systemEvents ? desktop.player(application) : nullptr;
  if (player == nullptr) throw ScriptError{kNotRunning, "Application isn’t running.", ""};
  return *player;
}

Found artworkProperty(Desktop& desktop, const Object& object, Property property) {
  if (property != Property::rawData) return std::nullopt;
  return Data{desktop.picture(object.track->artUrl)};
}

std::string named(Property property, const Object& object) {
  const std::string words(wordsOf(property));
  return object.kind == Object::Kind::application ? words : words + " of " + display(object);
}

/// Runs what uses the application, so that a failure names it.
template <typename Use>
auto inApplication(Application application, Use use) {
  try {
    return use();
  } catch (ScriptError& error) {
    error.application = nameOf(application);
    error.message = error.application + " got an error: " + error.message;
    throw;
  }
}

/// Limited to what a player can be sent: below 0 and NaN become 0.
int64_t microseconds(double seconds) {
  constexpr double kMaxSeconds = 1e12;
  return seconds > 0 ? std::llround(std::min(seconds, kMaxSeconds) * kMicroseconds) : 0;
}

}  // namespace

Value propertyOf(Desktop& desktop, const Object& object, Property property) {
  return inApplication(object.application, [&] {
    const Found found =
        object.kind == Object::Kind::application
            ? playerProperty(playerOf(desktop, object.application), object.application, property)
        : object.kind == Object::Kind::track ? trackProperty(object, property)
                                             : artworkProperty(desktop, object, property);
    if (!found) throw ScriptError{kNotFound, "Can’t get " + named(property, object) + ".", ""};
    return *found;
  });
}

void setProperty(Desktop& desktop, const Object& object, Property property, const Value& value) {
  inApplication(object.application, [&] {
    const bool isPosition =
        property == Property::playerPosition || property == Property::currentTime;
    if (!isPosition || object.kind != Object::Kind::application) {
      throw ScriptError{kCannotSet,
                        "Can’t set " + named(property, object) + " to " + quoted(value) + ".", ""};
    }
    playerOf(desktop, object.application).seek(microseconds(asReal(value)));
  });
}

Value elementOf(const Object& object, Element, const Value& index) {
  return inApplication(object.application, [&] {
    const bool isThere = object.kind == Object::Kind::track && !object.track->artUrl.empty() &&
                         asInteger(index) == 1;
    if (!isThere) {
      throw ScriptError{kNotFound,
                        "Can’t get artwork " + quoted(index) + " of " + display(object) + ".", ""};
    }
    return Object{object.application, Object::Kind::artwork, object.track};
  });
}

void perform(Desktop& desktop, Application application, Command command) {
  inApplication(application, [&] {
    if (application == Application::systemEvents) {
      desktop.power(command);
    } else {
      playerOf(desktop, application).perform(command);
    }
  });
}

}  // namespace tapdeck::applescript
