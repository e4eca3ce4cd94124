#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Platform/Linux/X11/Keyboard/Keymap.h"

namespace tapdeck::x11 {

/// The keysyms, one for each press and release, that bring the text (UTF-16) into an application:
/// a line end of any kind is Return, and what is no character to type is left out.
std::vector<Keysym> keysymsForText(std::u16string_view text);

/// The keysym of a character: its own number in Latin-1, 0x01000000 + its code point otherwise.
Keysym keysymForCharacter(char32_t character);

/// The keysym's alphabet, itself included, as what is likely to be typed next: most frequent first.
/// Itself alone where it belongs to none, or to one too large.
std::vector<Keysym> companionsOf(Keysym keysym);

}  // namespace tapdeck::x11
