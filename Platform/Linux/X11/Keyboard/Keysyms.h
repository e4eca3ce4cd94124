#pragma once

#include "Platform/Linux/X11/Keyboard/Keymap.h"

/// The keysyms that the keyboard part names, by X's own names and numbers (keysymdef.h,
/// XF86keysym.h).
namespace tapdeck::x11::keysyms {

inline constexpr Keysym BackSpace = 0xff08;
inline constexpr Keysym Tab = 0xff09;
inline constexpr Keysym Linefeed = 0xff0a;
inline constexpr Keysym Return = 0xff0d;
inline constexpr Keysym Escape = 0xff1b;
inline constexpr Keysym Home = 0xff50;
inline constexpr Keysym Left = 0xff51;
inline constexpr Keysym Up = 0xff52;
inline constexpr Keysym Right = 0xff53;
inline constexpr Keysym Down = 0xff54;
inline constexpr Keysym Prior = 0xff55;
inline constexpr Keysym Next = 0xff56;
inline constexpr Keysym End = 0xff57;
inline constexpr Keysym F1 = 0xffbe;
inline constexpr Keysym Shift_L = 0xffe1;
inline constexpr Keysym Control_L = 0xffe3;
inline constexpr Keysym Caps_Lock = 0xffe5;
inline constexpr Keysym Meta_L = 0xffe7;
inline constexpr Keysym Alt_L = 0xffe9;
inline constexpr Keysym Super_L = 0xffeb;
inline constexpr Keysym Delete = 0xffff;
inline constexpr Keysym XF86AudioPlay = 0x1008ff14;
inline constexpr Keysym XF86AudioPrev = 0x1008ff16;
inline constexpr Keysym XF86AudioNext = 0x1008ff17;

}  // namespace tapdeck::x11::keysyms
