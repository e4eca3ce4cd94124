#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace tapdeck::benchmarks {

/// Processor time for one frame, in milliseconds.
struct ProcessorTime {
  double own;
  double server;
  double sum() const { return own + server; }
};

/// The sizes of the display and of the pictures made of it.
struct Scaling {
  int screenWidth, screenHeight, width, height;
};

/// A command that makes so many JPEG pictures of the display, with one thread, and throws them
/// away.
using CommandFor = std::function<std::vector<std::string>(int frames)>;
CommandFor ffmpeg(const Scaling& scaling);
CommandFor gstreamer(const Scaling& scaling);

/// What one frame takes once the program runs: that of a long run less that of a short one.
/// `server` is the X server's process. Throws when the program fails.
ProcessorTime processorTimePerFrame(const CommandFor& commandFor, pid_t server);

}  // namespace tapdeck::benchmarks
