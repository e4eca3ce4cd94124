#pragma once

/// Where every media player of the session bus is found (MPRIS 2).
namespace tapdeck::applescript::mpris {

inline constexpr const char* kPath = "/org/mpris/MediaPlayer2";
inline constexpr const char* kInterface = "org.mpris.MediaPlayer2.Player";

}  // namespace tapdeck::applescript::mpris
