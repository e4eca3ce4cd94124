#pragma once

// The X keyboard extension's protocol. Its header is C: one field there bears a C++ keyword's name.

#include <xcb/xcb.h>

#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit
