#pragma once

#include <optional>
#include <string>

namespace tapdeck {

/// The cover of the player's present track as JPEG in base64, at most 200 pixels wide and high;
/// absent when there is none to be had. Any thread but the main one: waits up to 3.5 s.
std::optional<std::string> fetchArtwork(const std::string& player);

}  // namespace tapdeck
