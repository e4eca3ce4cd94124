#include "Platform/Linux/AppleScript/Terms.h"

#include <glib.h>

#include <algorithm>
#include <iterator>

namespace tapdeck::applescript {
namespace {

// Each application has the words that it has on the Mac, so that a script that is wrong there is
// wrong here too.

constexpr Term kCommon[] = {
    {"alert volume", Property::alertVolume},
    {"input volume", Property::inputVolume},
    {"name", Property::name},
    {"output muted", Property::outputMuted},
    {"output volume", Property::outputVolume},
    {"running", Property::running},
};

constexpr Term kMusic[] = {
    {"album", Property::album},
    {"artist", Property::artist},
    {"artwork", Element::artwork},
    {"current track", Property::currentTrack},
    {"duration", Property::duration},
    {"next track", Command::next},
    {"pause", Command::pause},
    {"paused", Constant::paused},
    {"persistent id", Property::persistentId},
    {"play", Command::play},
    {"player position", Property::playerPosition},
    {"player state", Property::playerState},
    {"playing", Constant::playing},
    {"playpause", Command::playPause},
    {"previous track", Command::previous},
    {"raw data", Property::rawData},
    {"stop", Command::stop},
    {"stopped", Constant::stopped},
};

constexpr Term kSpotify[] = {
    {"album", Property::album},
    {"artist", Property::artist},
    {"artwork url", Property::artworkUrl},
    {"current track", Property::currentTrack},
    {"duration", Property::duration},
    {"id", Property::id},
    {"next track", Command::next},
    {"pause", Command::pause},
    {"paused", Constant::paused},
    {"play", Command::play},
    {"player position", Property::playerPosition},
    {"player state", Property::playerState},
    {"playing", Constant::playing},
    {"playpause", Command::playPause},
    {"previous track", Command::previous},
    {"stopped", Constant::stopped},
};

constexpr Term kVlc[] = {
    {"current item", Property::currentItem},
    {"current time", Property::currentTime},
    {"duration", Property::duration},
    {"next", Command::next},
    {"path", Property::path},
    // VLC has one command for both
    {"play", Command::playPause},
    {"playing", Property::isPlaying},
    {"previous", Command::previous},
    {"stop", Command::stop},
};

constexpr Term kSystemEvents[] = {
    {"restart", Command::restart},
    {"shut down", Command::shutDown},
    {"sleep", Command::sleep},
};

struct Known {
  Application application;
  std::string_view name;
  std::span<const Term> terms;
};

constexpr Known kApplications[] = {
    {Application::music, "Music", kMusic},
    {Application::spotify, "Spotify", kSpotify},
    {Application::vlc, "VLC", kVlc},
    {Application::systemEvents, "System Events", kSystemEvents},
};

const Known& known(Application application) {
  return *std::ranges::find(kApplications, application, &Known::application);
}

template <typename Kind>
std::string_view wordsOf(std::span<const Term> terms, Kind meaning) {
  const auto found = std::ranges::find(terms, Meaning(meaning), &Term::meaning);
  return found != terms.end() ? found->words : std::string_view();
}

template <typename Kind>
std::string_view wordsAnywhere(Kind meaning) {
  auto words = wordsOf(kCommon, meaning);
  for (auto each = std::begin(kApplications); words.empty() && each != std::end(kApplications);
       ++each) {
    words = wordsOf(each->terms, meaning);
  }
  return words;
}

}  // namespace

std::optional<Application> applicationNamed(std::string_view name) {
  const auto found = std::ranges::find_if(kApplications, [name](const Known& each) {
    return each.name.size() == name.size() &&
           g_ascii_strncasecmp(each.name.data(), name.data(), name.size()) == 0;
  });
  return found != std::end(kApplications) ? std::optional(found->application) : std::nullopt;
}

std::string_view nameOf(Application application) {
  return known(application).name;
}

std::string_view wordsOf(Property property) {
  return wordsAnywhere(property);
}

std::string_view wordsOf(Constant constant) {
  return wordsAnywhere(constant);
}

const Term* findTerm(std::optional<Application> application, std::string_view words) {
  const auto in = [words](std::span<const Term> terms) {
    const auto found = std::ranges::find(terms, words, &Term::words);
    return found != terms.end() ? &*found : nullptr;
  };
  const Term* term = application ? in(known(*application).terms) : nullptr;
  return term != nullptr ? term : in(kCommon);
}

}  // namespace tapdeck::applescript
