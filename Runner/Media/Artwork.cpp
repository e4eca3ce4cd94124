#include "Runner/Media/Artwork.h"

#include <cstdint>
#include <vector>

#include "Platform/Files.h"
#include "Platform/Workspace.h"
#include "Runner/Media/Download.h"
#include "Runner/Media/PlayerScripts.h"
#include "Runner/Media/Scripts.h"
#include "Runner/Media/Thumbnail.h"

namespace tapdeck {
namespace {

constexpr int64_t kMaxSide = 200;
constexpr double kAddressTimeLimit = 2.0;
constexpr double kFileTimeLimit = 3.0;

using Bytes = std::vector<uint8_t>;

std::optional<Bytes> downloadedCover() {
  const auto address = runScriptBounded(spotifyArtworkScript(), kAddressTimeLimit);
  if (!address) return std::nullopt;
  const auto url = platform::urlWithString(*address);
  if (!url || platform::schemeOf(*url) != "https") return std::nullopt;
  return downloadData(*url);
}

/// The cover that the player's script has written to a file, which goes again.
std::optional<Bytes> writtenCover(const std::string& player) {
  const std::string path = platform::temporaryDirectory() + "/tapdeck_art.bin";
  if (runScriptBounded(artworkScript(player, path), kFileTimeLimit) != "ok") return std::nullopt;
  auto bytes = platform::contentsAtPath(path);
  if (bytes) platform::removeItem(path);
  return bytes;
}

}  // namespace

std::optional<std::string> fetchArtwork(const std::string& player) {
  if (player == kVlc) return std::nullopt;
  const auto bytes = player == kSpotify ? downloadedCover() : writtenCover(player);
  return bytes ? thumbnailBase64(*bytes, kMaxSide) : std::nullopt;
}

}  // namespace tapdeck
