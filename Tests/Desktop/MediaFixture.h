#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "Tests/Support/Desktop/ChildProcess.h"

namespace tapdeck::testing {

/// Whoever hangs does so for ever; how soon it is noticed also depends on how busy the machine is.
inline constexpr std::chrono::seconds kForEver{10};

/// The interpreter's executable, from the command line.
extern std::string interpreterProgram;

/// The host itself, with a stand-in engine; it has to end without complaint.
class RunningHost : public ChildProcess {
 public:
  RunningHost();
  ~RunningHost();

  size_t openFiles() const;
  /// Ended or not, as long as it has not looked at how they ended.
  bool hasChildren() const;

 private:
  std::filesystem::path folder() const;
};

/// A real media player, mpv, that plays a minute of silence by the name "tone.wav".
class RealPlayer {
 public:
  RealPlayer();

 private:
  std::filesystem::path makeTone() const;

  TemporaryFolder _folder;
  ChildProcess _player;
};

}  // namespace tapdeck::testing
