#pragma once

/// Where every media player of the session bus is found (MPRIS 2).
namespace tapdeck::media::mpris {

inline constexpr const char* kPath = "/org/mpris/MediaPlayer2";
inline constexpr const char* kInterface = "org.mpris.MediaPlayer2.Player";

}  // namespace tapdeck::media::mpris
