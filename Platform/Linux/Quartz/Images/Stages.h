#pragma once

// The stages that one frame of the screen goes through, for who wants to time them by themselves:
// ScreenGrab::grab of a connection of its own, AreaScaler::scale, JpegEncoder::encode. Nothing here
// knows of damage or keeps what it has done.

#include "Platform/Linux/Quartz/Connection.h"
#include "Platform/Linux/Quartz/Images/AreaScaler.h"
#include "Platform/Linux/Quartz/Images/Jpeg.h"
#include "Platform/Linux/Quartz/Images/ScreenGrab.h"
