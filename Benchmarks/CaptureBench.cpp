// What one frame of the screen takes in the host, beside the least that it can take and beside what
// other programs need for the same picture.

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "Benchmarks/BareLoop.h"
#include "Benchmarks/CaptureScene.h"
#include "Benchmarks/Measuring.h"
#include "Benchmarks/OtherPrograms.h"
#include "Engine/Channels.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Waking.h"

namespace {

using namespace tapdeck;
using namespace tapdeck::benchmarks;

constexpr int kQuality = 60;
constexpr int kFrames = 60;

/// The host, awake, called as a UI engine calls it.
class Host : public UIEngine {
 public:
  void setMethodCallHandler(const std::string& channel, MethodCallHandler handler) override {
    _handlers[channel] = std::move(handler);
  }
  void invokeMethod(const std::string&, const std::string&, const Value&) override {}
  bool registerPlugin(const std::string&) override { return true; }

  /// One "captureScreen"; throws unless the answer has `key`.
  void capture(int width, const char* key) {
    Value answer;
    const ValueMap arguments{{"maxWidth", Value(width)}, {"quality", Value(kQuality)}};
    _handlers.at(kControlChannel)(
        {"captureScreen", Value(arguments)},
        Reply([&answer](Outcome outcome) { answer = std::get<Value>(std::move(outcome)); }));
    const auto* map = answer.getIf<ValueMap>();
    const Value* found = map != nullptr ? map->find(key) : nullptr;
    if (found == nullptr) throw std::runtime_error(std::string("captureScreen is not ") + key);
    if (const auto* jpeg = found->getIf<Value::Bytes>()) _size = jpeg->size();
  }
  /// Of the last frame sent, in bytes.
  size_t size() const { return _size; }

 private:
  std::map<std::string, MethodCallHandler> _handlers;
  size_t _size = 0;
};

void line(const char* what, const Samples& samples) {
  std::printf("  %-40s %8.3f %8.3f\n", what, samples.least(), samples.median());
}

/// The display in the table's rows, such as "2880 x 1800".
std::string displayName;

/// What `of` takes as a share of what `beside`, which has a name, does.
void share(const char* what, double of, double beside, const char* besideName, double atMost) {
  const double ratio = of / beside;
  const bool isMet = ratio <= atMost;
  std::printf("  %-40s %8.2f  at most %.2f: %s", what, ratio, atMost, isMet ? "met" : "MISSED");
  addToTable({displayName + ": " + what, shown(of, 2, "ms"), shown(beside, 2, "ms, ") + besideName,
              shown(ratio, 2), "≤ " + shown(atMost, 2), isMet});
}

/// Judged by the medians.
void share(const char* what, const Samples& of, const Samples& beside, const char* besideName,
           double atMost) {
  share(what, of.median(), beside.median(), besideName, atMost);
  std::printf(" (%.2f by the minima)\n", of.least() / beside.least());
}

void share(const char* what, const ProcessorTime& of, const ProcessorTime& beside,
           const char* besideName, double atMost) {
  share(what, of.sum(), beside.sum(), besideName, atMost);
  std::printf("\n");
}

template <typename Work>
Samples again(const Work& work) {
  Samples samples;
  for (int i = 0; i < kFrames; ++i) samples.add(millisecondsOf(work));
  return samples;
}

void measureStages(BareLoop& bare) {
  bare.frame(kQuality);
  line("stage: grab", again([&] { bare.grab(); }));
  line("stage: scale", again([&] { bare.scale(); }));
  line("stage: compare, all equal", again([&] {
         if (bare.isChanged()) throw std::runtime_error("the screen does not keep still");
       }));
  line("stage: encode", again([&] { bare.encode(kQuality); }));
}

struct ProcessorSamples {
  Samples own, server;
  ProcessorTime median() const { return {own.median(), server.median()}; }
};

struct FrameTimes {
  Samples bareChanged, bareUnchanged, hostChanged, hostUnchanged, hostTwentieth;
  ProcessorSamples bareProcessor, hostProcessor;
};

class FrameBench {
 public:
  FrameBench(CaptureScene& scene, BareLoop& bare, Host& host, int width)
      : _scene(scene), _bare(bare), _host(host), _width(width), _server(scene.server()) {}

  /// All kinds in turn, so that what else the machine does falls on all alike.
  FrameTimes measure() {
    _host.capture(_width, "jpeg");
    for (int i = 0; i < kFrames; ++i) {
      bareChanged();
      bareUnchanged();
      hostChanged();
      hostTwentieth();
      hostUnchanged();
    }
    return std::move(_times);
  }

 private:
  void bareChanged() {
    _scene.scroll();
    measure(_times.bareChanged, _times.bareProcessor,
            [this] { expect(_bare.frame(kQuality), true); });
  }
  void bareUnchanged() {
    _times.bareUnchanged.add(millisecondsOf([this] { expect(_bare.frame(kQuality), false); }));
  }
  void hostChanged() {
    _scene.scroll();
    measure(_times.hostChanged, _times.hostProcessor, [this] { _host.capture(_width, "jpeg"); });
  }
  void hostTwentieth() {
    _scene.play();
    _times.hostTwentieth.add(millisecondsOf([this] { _host.capture(_width, "jpeg"); }));
  }
  void hostUnchanged() {
    _times.hostUnchanged.add(millisecondsOf([this] { _host.capture(_width, "unchanged"); }));
  }
  template <typename Work>
  void measure(Samples& time, ProcessorSamples& processor, const Work& work) {
    const double own = processorMilliseconds(0);
    const double server = processorMilliseconds(_server);
    time.add(millisecondsOf(work));
    processor.own.add(processorMilliseconds(0) - own);
    processor.server.add(processorMilliseconds(_server) - server);
  }
  static void expect(bool isChanged, bool shouldBe) {
    if (isChanged != shouldBe) throw std::runtime_error("the bare loop sees another screen");
  }

  CaptureScene& _scene;
  BareLoop& _bare;
  Host& _host;
  int _width;
  pid_t _server;
  FrameTimes _times;
};

void reportFrames(const FrameTimes& times) {
  line("bare loop, all changed", times.bareChanged);
  line("bare loop, unchanged", times.bareUnchanged);
  line("captureScreen, all changed", times.hostChanged);
  line("captureScreen, one twentieth changed", times.hostTwentieth);
  line("captureScreen, unchanged", times.hostUnchanged);
  std::printf("\nmedian of captureScreen as a share of the bare loop's\n");
  share("all changed", times.hostChanged, times.bareChanged, "the bare loop", 1.10);
  share("one twentieth changed", times.hostTwentieth, times.bareChanged,
        "the bare loop, all changed", 0.75);
  share("unchanged", times.hostUnchanged, times.bareUnchanged, "the bare loop", 0.25);
}

void reportProcessorTime(const FrameTimes& times, const Scaling& scaling, pid_t server) {
  const auto row = [](const char* what, const ProcessorTime& time) {
    std::printf("  %-40s %8.2f %8.2f %8.2f\n", what, time.own, time.server, time.sum());
  };
  const ProcessorTime ours = times.hostProcessor.median();
  const ProcessorTime byFfmpeg = processorTimePerFrame(ffmpeg(scaling), server);
  const ProcessorTime byGstreamer = processorTimePerFrame(gstreamer(scaling), server);
  std::printf("\n%-42s %8s %8s %8s\n", "processor time of a frame, ms", "own", "X server", "sum");
  row("bare loop, all changed (median)", times.bareProcessor.median());
  row("captureScreen, all changed (median)", ours);
  row("ffmpeg (mean)", byFfmpeg);
  row("GStreamer (mean)", byGstreamer);
  share("processor time beside ffmpeg", ours, byFfmpeg, "ffmpeg", 0.45);
  share("processor time beside GStreamer", ours, byGstreamer, "GStreamer", 0.65);
}

bool differByteByByte(const uint8_t* a, const uint8_t* b, size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) {
    if (std::abs(int{a[i]} - int{b[i]}) > 4) return true;
  }
  return false;
}

/// Keeps the compiler from taking what is in memory, or a result, for known.
template <typename Result>
void use(const Result& result) {
  asm volatile("" : : "r"(&result) : "memory");
}

void measureComparison(const pixels::PixelBuffer& frame) {
  const size_t bytes = frame.bytesPerRow * static_cast<size_t>(frame.height);
  const FrameLayout layout{static_cast<size_t>(frame.width) * 4, frame.bytesPerRow,
                           static_cast<size_t>(frame.height)};
  const uint8_t* a = frame.memory.get();
  const auto copy = pixels::allocatePixels(frame.width, frame.height, frame.bytesPerRow);
  uint8_t* b = copy.memory.get();
  std::memcpy(b, a, bytes);
  Samples byMemcmp, byUs;
  for (int i = 0; i < kFrames; ++i) {
    byMemcmp.add(millisecondsOf([&] { use(std::memcmp(a, b, bytes)); }));
    byUs.add(millisecondsOf([&] { use(framesDiffer(a, b, layout)); }));
  }
  const Samples byBytes = again([&] { use(differByteByByte(a, b, bytes)); });
  for (size_t i = 0; i < bytes; ++i) b[i] = static_cast<uint8_t>(std::max(0, a[i] - int(i % 5)));
  const Samples byUsNoisy = again([&] { use(framesDiffer(a, b, layout)); });

  std::printf("\n%-42s %8s %8s\n", "comparison of two frames, ms", "min", "median");
  line("memcmp, equal frames", byMemcmp);
  line("the host's, equal frames", byUs);
  line("the host's, each byte up to 4 off", byUsNoisy);
  line("byte by byte, equal frames", byBytes);
  share("comparing two frames", byUs, byMemcmp, "memcmp", 1.2);
  std::printf("  %-40s %8.2f\n  %-40s %8.2f\n", "the same with each byte up to 4 off",
              byUsNoisy.median() / byMemcmp.median(), "byte by byte as a share of memcmp",
              byBytes.median() / byMemcmp.median());
}

void measure(int width, int height) {
  x11::connectToWindowServer();
  const auto host = std::make_shared<Host>();
  const auto window = std::make_shared<MainFlutterWindow>();
  wakeMainWindow(window, host);
  CaptureScene scene;
  BareLoop bare(scene.width(), scene.height(), width, height);
  displayName =
      "capture of " + std::to_string(scene.width()) + " x " + std::to_string(scene.height());

  std::printf("\n== %d x %d to %d x %d, quality %d, %d frames of each kind\n\n", scene.width(),
              scene.height(), width, height, kQuality, kFrames);
  std::printf("%-42s %8s %8s\n", "time, ms", "min", "median");
  measureStages(bare);
  const FrameTimes times = FrameBench(scene, bare, *host, width).measure();
  reportFrames(times);
  std::printf("  (a frame is %zu bytes of JPEG in the bare loop, %zu in the host)\n", bare.size(),
              host->size());
  reportProcessorTime(times, {scene.width(), scene.height(), width, height}, scene.server());
  measureComparison(bare.current());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: bench_capture WIDTH HEIGHT\n");
    return 64;
  }
  try {
    measure(std::stoi(argv[1]), std::stoi(argv[2]));
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "bench_capture: %s\n", problem.what());
    return 1;
  }
}
