#include "Platform/Linux/Media/Players.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "Platform/Linux/Media/Mpris.h"

namespace tapdeck::media {
namespace {

using mpris::kInterface;
using mpris::kPath;
constexpr std::string_view kPlaying = "Playing";
constexpr std::string_view kNoTrack = "/org/mpris/MediaPlayer2/TrackList/NoTrack";

/// The application whose player has this name on the bus; absent when the name is no player's.
std::optional<PlayerApplication> applicationOf(std::string_view name) {
  constexpr std::string_view kPrefix = "org.mpris.MediaPlayer2.";
  if (!name.starts_with(kPrefix)) return std::nullopt;
  name.remove_prefix(kPrefix.size());
  const auto player = name.substr(0, name.find('.'));
  if (player == "playerctld") return std::nullopt;  // a proxy for one of the others
  if (player == "spotify") return PlayerApplication::spotify;
  if (player == "vlc") return PlayerApplication::vlc;
  return PlayerApplication::music;
}

glib::Variant lookUp(GVariant* dictionary, const char* key) {
  return glib::Variant(g_variant_lookup_value(dictionary, key, nullptr));
}

/// Of a text, an object path or a list of texts; empty for anything else.
std::string text(GVariant* dictionary, const char* key) {
  const glib::Variant value = lookUp(dictionary, key);
  if (value == nullptr) return {};
  if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING_ARRAY) != FALSE) {
    // the texts themselves stay the variant's
    const glib::Memory<const char*> parts(g_variant_get_strv(value.get(), nullptr));
    const glib::Text joined(g_strjoinv(", ", const_cast<char**>(parts.get())));
    return joined.get();
  }
  const bool isText = g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) != FALSE ||
                      g_variant_is_of_type(value.get(), G_VARIANT_TYPE_OBJECT_PATH) != FALSE;
  return isText ? g_variant_get_string(value.get(), nullptr) : "";
}

/// Players give times in any type of number.
std::optional<int64_t> microseconds(GVariant* dictionary, const char* key) {
  constexpr double kMax = 1e15;
  const glib::Variant value = lookUp(dictionary, key);
  if (value == nullptr) return std::nullopt;
  double number = 0;
  switch (g_variant_classify(value.get())) {
    case G_VARIANT_CLASS_INT64:
      number = static_cast<double>(g_variant_get_int64(value.get()));
      break;
    case G_VARIANT_CLASS_UINT64:
      number = static_cast<double>(g_variant_get_uint64(value.get()));
      break;
    case G_VARIANT_CLASS_INT32:
      number = g_variant_get_int32(value.get());
      break;
    case G_VARIANT_CLASS_UINT32:
      number = g_variant_get_uint32(value.get());
      break;
    case G_VARIANT_CLASS_DOUBLE:
      number = g_variant_get_double(value.get());
      break;
    default:
      return std::nullopt;
  }
  return number > 0 ? static_cast<int64_t>(std::min(number, kMax)) : 0;
}

PlaybackStatus statusOf(std::string_view word) {
  if (word == kPlaying) return PlaybackStatus::playing;
  return word == "Paused" ? PlaybackStatus::paused : PlaybackStatus::stopped;
}

/// Absent above a week: for streams without an end, players give various very large numbers.
std::optional<int64_t> lengthOf(GVariant* metadata) {
  constexpr int64_t kMaxLength = int64_t{7} * 24 * 3600 * 1'000'000;
  const auto length = microseconds(metadata, "mpris:length");
  return length && *length <= kMaxLength ? length : std::nullopt;
}

std::optional<Track> trackOf(GVariant* metadata) {
  Track track{.title = text(metadata, "xesam:title"),
              .artist = text(metadata, "xesam:artist"),
              .album = text(metadata, "xesam:album"),
              .id = text(metadata, "mpris:trackid"),
              .url = text(metadata, "xesam:url"),
              .artUrl = text(metadata, "mpris:artUrl"),
              .length = lengthOf(metadata)};
  const bool isThere =
      !track.title.empty() || !track.url.empty() || (!track.id.empty() && track.id != kNoTrack);
  return isThere ? std::optional(std::move(track)) : std::nullopt;
}

const char* methodOf(PlayerCommand command) {
  if (command == PlayerCommand::next) return "Next";
  return command == PlayerCommand::previous ? "Previous" : "PlayPause";
}

std::string_view nameOf(PlayerApplication application) {
  switch (application) {
    case PlayerApplication::spotify:
      return "Spotify";
    case PlayerApplication::vlc:
      return "VLC";
    default:
      return "Music";
  }
}

size_t rank(std::string_view status) {
  constexpr std::array<std::string_view, 3> kOrder{kPlaying, "Paused", "Stopped"};
  return static_cast<size_t>(std::ranges::find(kOrder, status) - kOrder.begin());
}

/// The session bus, kept from one look to the next.
std::optional<Bus> sessionBus() {
  static std::mutex mutex;
  static std::optional<Bus> bus;
  const std::lock_guard lock(mutex);
  if (!bus || bus->isClosed()) bus = Bus::connect(G_BUS_TYPE_SESSION);
  return bus;
}

}  // namespace

PlayerState Player::read() {
  const glib::Variant reply = call("org.freedesktop.DBus.Properties", "GetAll",
                                   g_variant_new("(s)", kInterface), "(a{sv})");
  const glib::Variant all(g_variant_get_child_value(reply.get(), 0));
  PlayerState state{.status = statusOf(text(all.get(), "PlaybackStatus")),
                    .track = std::nullopt,
                    .position = microseconds(all.get(), "Position").value_or(0)};
  const glib::Variant metadata(
      g_variant_lookup_value(all.get(), "Metadata", G_VARIANT_TYPE_VARDICT));
  if (metadata != nullptr && state.status != PlaybackStatus::stopped) {
    state.track = trackOf(metadata.get());
  }
  return state;
}

void Player::perform(PlayerCommand command) {
  call(kInterface, methodOf(command), nullptr, "()");
}

void Player::seek(int64_t position) {
  const PlayerState state = read();
  if (!state.track) throw MediaError(MediaError::Kind::notFound, "No track is loaded.");
  const int64_t length = state.track->length.value_or(0);
  if (length > 0) position = std::min(position, length);
  const std::string& id = state.track->id;
  if (g_variant_is_object_path(id.c_str()) != FALSE && id != kNoTrack) {
    call(kInterface, "SetPosition", g_variant_new("(ox)", id.c_str(), gint64{position}), "()");
  } else {
    call(kInterface, "Seek", g_variant_new("(x)", gint64{position - state.position}), "()");
  }
}

glib::Variant Player::call(const char* interface, const char* method, GVariant* arguments,
                           const char* replyType) {
  const glib::Variant owned(arguments != nullptr ? g_variant_ref_sink(arguments) : nullptr);
  if (_timeout) throw MediaError(*_timeout);
  try {
    return _bus.call(_name, kPath, interface, method, owned.get(), replyType);
  } catch (const MediaError& error) {
    if (error.kind() == MediaError::Kind::timedOut) _timeout = error;
    throw;
  }
}

bool isPlayer(std::string_view name) {
  return applicationOf(name).has_value();
}

std::vector<std::string> runningPlayers() {
  std::vector<std::string> players;
  const auto bus = sessionBus();
  if (!bus) return players;
  for (const auto& name : bus->names()) {
    const auto application = applicationOf(name);
    if (!application) continue;
    const std::string player(nameOf(*application));
    if (std::ranges::find(players, player) == players.end()) players.push_back(player);
  }
  return players;
}

std::unique_ptr<Player> findPlayer(const Bus& bus, PlayerApplication application) {
  std::vector<std::string> names = bus.names();
  const bool isForAnyPlayer = application == PlayerApplication::music;
  std::erase_if(names, [&](const auto& name) {
    const auto found = applicationOf(name);
    return isForAnyPlayer ? !found : found != application;
  });
  const auto others = std::stable_partition(names.begin(), names.end(), [&](const auto& name) {
    return applicationOf(name) == application;
  });
  if (others == names.begin()) return nullptr;
  if (names.size() == 1) return std::make_unique<Player>(bus, names.front());

  const auto statuses = bus.textPropertyOfEach(names, kPath, kInterface, "PlaybackStatus");
  const auto firstOther = statuses.begin() + (others - names.begin());
  const auto best = std::ranges::min_element(statuses.begin(), firstOther, {}, rank);
  const bool anotherPlays = std::find(firstOther, statuses.end(), kPlaying) != statuses.end();
  if (*best != kPlaying && anotherPlays) return nullptr;
  return std::make_unique<Player>(bus, names[static_cast<size_t>(best - statuses.begin())]);
}

}  // namespace tapdeck::media
