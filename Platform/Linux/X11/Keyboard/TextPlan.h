#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::quartz {

/// The keysyms, one for each press and release, that bring the text (UTF-16) into an application:
/// a line end of any kind is Return, and what is no character to type is left out.
std::vector<Keysym> keysymsForText(std::u16string_view text);

/// The keysym of a character that can be typed; Latin-1 has those of old, all else has the one that
/// names the character.
Keysym keysymForCharacter(char32_t character);

/// Letters that will likely be needed soon after this one, itself included: its alphabet. Most
/// frequent first; itself alone where an alphabet would not fit.
std::vector<Keysym> companionsOf(Keysym keysym);

}  // namespace tapdeck::quartz
