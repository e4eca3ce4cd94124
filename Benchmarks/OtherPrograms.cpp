#include "Benchmarks/OtherPrograms.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "Benchmarks/Measuring.h"

namespace tapdeck::benchmarks {
namespace {

constexpr int kFewFrames = 10;
constexpr int kManyFrames = 70;

double millisecondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

/// Starts the command with its output thrown away and waits for its end.
rusage run(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& each : command) arguments.push_back(const_cast<char*>(each.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int failure =
      posix_spawnp(&child, arguments[0], &files, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  int status = -1;
  rusage used{};
  if (failure != 0 || wait4(child, &status, 0, &used) != child || status != 0) {
    throw std::runtime_error(command.front() + " does not run here");
  }
  return used;
}

ProcessorTime processorTimeOf(const std::vector<std::string>& command, pid_t server) {
  const double before = processorMilliseconds(server);
  const rusage used = run(command);
  return {millisecondsOf(used.ru_utime) + millisecondsOf(used.ru_stime),
          processorMilliseconds(server) - before};
}

std::string size(int width, int height) {
  return std::to_string(width) + "x" + std::to_string(height);
}

}  // namespace

CommandFor ffmpeg(const Scaling& scaling) {
  return [scaling](int frames) -> std::vector<std::string> {
    // as often as it can: a rate that it can keep would only add its waiting
    return {"ffmpeg",
            "-loglevel",
            "error",
            "-threads",
            "1",
            "-filter_threads",
            "1",
            "-f",
            "x11grab",
            "-draw_mouse",
            "0",
            "-framerate",
            "1000",
            "-video_size",
            size(scaling.screenWidth, scaling.screenHeight),
            "-i",
            std::getenv("DISPLAY"),
            "-frames:v",
            std::to_string(frames),
            "-fps_mode",
            "passthrough",
            "-vf",
            "scale=" + size(scaling.width, scaling.height) + ":flags=bilinear",
            "-pix_fmt",
            "yuvj420p",
            "-c:v",
            "mjpeg",
            "-q:v",
            "6",
            "-threads",
            "1",
            "-f",
            "null",
            "-"};
  };
}

CommandFor gstreamer(const Scaling& scaling) {
  return [scaling](int frames) -> std::vector<std::string> {
    return {"gst-launch-1.0",
            "-q",
            "ximagesrc",
            "use-damage=false",
            "show-pointer=false",
            "num-buffers=" + std::to_string(frames),
            "!",
            "videoscale",
            "method=bilinear2",
            "!",
            "video/x-raw,width=" + std::to_string(scaling.width) +
                ",height=" + std::to_string(scaling.height),
            "!",
            "videoconvert",
            "!",
            "video/x-raw,format=I420",
            "!",
            "jpegenc",
            "quality=60",
            "!",
            "fakesink",
            "sync=false"};
  };
}

ProcessorTime processorTimePerFrame(const CommandFor& commandFor, pid_t server) {
  const ProcessorTime few = processorTimeOf(commandFor(kFewFrames), server);
  const ProcessorTime many = processorTimeOf(commandFor(kManyFrames), server);
  constexpr int kMore = kManyFrames - kFewFrames;
  return {(many.own - few.own) / kMore, (many.server - few.server) / kMore};
}

}  // namespace tapdeck::benchmarks
