#include "Platform/Linux/AppleScript/Terms.h"

#include <glib.h>

#include <algorithm>
#include <iterator>

namespace tapdeck::applescript {
namespace {

// Each application has the terms that it has on the Mac, so that a script that does not compile
// there does not compile here either.

constexpr Term kCommon[] = {
    {"name", Property::name},
    {"output muted", Property::outputMuted},
    {"output volume", Property::outputVolume},
};

// Of both Music and Spotify.
constexpr Term kPlayer[] = {
    {"album", Property::album},
    {"artist", Property::artist},
    {"current track", Property::currentTrack},
    {"duration", Property::duration},
    {"next track", Command::next},
    {"paused", Constant::paused},
    {"player position", Property::playerPosition},
    {"player state", Property::playerState},
    {"playing", Constant::playing},
    {"playpause", Command::playPause},
    {"previous track", Command::previous},
    {"stopped", Constant::stopped},
};

constexpr Term kMusic[] = {
    {"artwork", Element::artwork},
    {"persistent id", Property::persistentId},
    {"raw data", Property::rawData},
};

constexpr Term kSpotify[] = {
    {"artwork url", Property::artworkUrl},
    {"id", Property::id},
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
};

constexpr Term kSystemEvents[] = {
    {"restart", Command::restart},
    {"shut down", Command::shutDown},
    {"sleep", Command::sleep},
};

using Terms = std::span<const Term>;

struct ApplicationTerms {
  Application application;
  std::string_view name;
  Terms own;
  /// The terms that it shares with another application.
  Terms shared;
};

constexpr ApplicationTerms kApplications[] = {
    {Application::music, "Music", kMusic, kPlayer},
    {Application::spotify, "Spotify", kSpotify, kPlayer},
    {Application::vlc, "VLC", kVlc, {}},
    {Application::systemEvents, "System Events", kSystemEvents, {}},
};

const ApplicationTerms& termsOf(Application application) {
  return *std::ranges::find(kApplications, application, &ApplicationTerms::application);
}

/// The first term that fits, of the application if there is one, or of every script; null for none.
template <typename Fits>
const Term* find(const ApplicationTerms* application, Fits fits) {
  for (const Terms terms :
       {application != nullptr ? application->own : Terms(),
        application != nullptr ? application->shared : Terms(), Terms(kCommon)}) {
    const auto found = std::ranges::find_if(terms, fits);
    if (found != terms.end()) return &*found;
  }
  return nullptr;
}

std::string_view wordsOf(const Meaning& meaning) {
  for (const ApplicationTerms& application : kApplications) {
    const auto* term =
        find(&application, [&](const Term& each) { return each.meaning == meaning; });
    if (term != nullptr) return term->words;
  }
  return {};
}

}  // namespace

std::optional<Application> applicationNamed(std::string_view name) {
  const auto found = std::ranges::find_if(kApplications, [name](const ApplicationTerms& each) {
    return each.name.size() == name.size() &&
           g_ascii_strncasecmp(each.name.data(), name.data(), name.size()) == 0;
  });
  return found != std::end(kApplications) ? std::optional(found->application) : std::nullopt;
}

std::string_view nameOf(Application application) {
  return termsOf(application).name;
}

std::string_view wordsOf(Property property) {
  return wordsOf(Meaning(property));
}

std::string_view wordsOf(Constant constant) {
  return wordsOf(Meaning(constant));
}

const Term* findTerm(std::optional<Application> application, std::string_view words) {
  return find(application ? &termsOf(*application) : nullptr,
              [words](const Term& each) { return each.words == words; });
}

}  // namespace tapdeck::applescript
