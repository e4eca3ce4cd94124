#include "Runner/Media/NowPlaying.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "Runner/Media/Artwork.h"
#include "Runner/Media/Numbers.h"
#include "Runner/Media/PlayerScripts.h"
#include "Runner/Media/Players.h"
#include "Runner/Media/Scripts.h"
#include "Runner/Media/Text.h"

namespace tapdeck {
namespace {

constexpr double kTimeLimit = 2.0;
constexpr double kMillisecondsPerSecond = 1000;

enum Field { name, artist, album, duration, position, state, id, fieldCount };

std::vector<std::string> split(std::string_view line) {
  std::vector<std::string> fields;
  while (true) {
    const size_t tab = line.find('\t');
    fields.emplace_back(line.substr(0, tab));
    if (tab == std::string_view::npos) return fields;
    line.remove_prefix(tab + 1);
  }
}

bool saysPlaying(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return text == "playing" || text == "true";
}

double secondsOf(const std::string& text) {
  return decimalNumber(text).value_or(0);
}

/// Clamped below at 0, which "-0" is not.
double atLeastZero(double seconds) {
  return seconds > 0 ? seconds : 0.0;
}

/// The seven fields; absent when the player has nothing to tell.
std::optional<std::vector<std::string>> askForFields(const std::string& player) {
  const auto reply = runFieldScriptBounded(nowPlayingScript(player), kTimeLimit);
  if (!reply || trimmed(*reply) == "none") return std::nullopt;
  auto fields = split(*reply);
  if (fields.size() < fieldCount) return std::nullopt;
  fields[name] = trimmed(fields[name]);
  if (fields[name].empty()) return std::nullopt;
  return fields;
}

ValueMap describe(const std::string& player, const std::vector<std::string>& fields) {
  const double unit = player == kSpotify ? kMillisecondsPerSecond : 1;
  const double length = secondsOf(fields[duration]) / unit;
  const std::string stoodIn = player + "|" + fields[name] + "|" + fields[artist];
  return ValueMap{{"title", Value(fields[name])},
                  {"artist", Value(fields[artist])},
                  {"album", Value(fields[album])},
                  {"duration", Value(atLeastZero(length))},
                  {"position", Value(atLeastZero(secondsOf(fields[position])))},
                  {"playing", Value(saysPlaying(fields[state]))},
                  {"canSeek", Value(length > 0)},
                  {"app", Value(player)},
                  {"trackId", Value(fields[id].empty() ? stoodIn : fields[id])}};
}

}  // namespace

std::optional<ValueMap> nowPlayingInfo(const std::string& player, bool includeArt) {
  const auto fields = askForFields(player);
  if (!fields) return std::nullopt;
  ValueMap info = describe(player, *fields);
  if (!includeArt) return info;
  if (auto art = fetchArtwork(player)) info.set(Value("art"), Value(std::move(*art)));
  return info;
}

Value nowPlaying(bool includeArt) {
  std::optional<ValueMap> info;
  firstRunningPlayer([&](const std::string& player) {
    info = nowPlayingInfo(player, includeArt);
    return info.has_value();
  });
  return info ? Value(std::move(*info)) : Value();
}

}  // namespace tapdeck
