#pragma once

// The stages that one frame of the screen goes through, for who wants to time them by themselves:
// ScreenGrab::grab of a connection of its own, AreaScaler::scale, JpegEncoder::encode. Nothing here
// knows of damage or keeps what it has done.

#include "Platform/Linux/Pixels/AreaScaler.h"
#include "Platform/Linux/Pixels/Jpeg.h"
#include "Platform/Linux/X11/Capture/ScreenGrab.h"
#include "Platform/Linux/X11/Connection.h"
