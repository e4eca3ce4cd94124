#include "Tests/Desktop/MediaFixture.h"

#include <gtest/gtest.h>
#include <gtkmm/main.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "Platform/Linux/AppleScript/Players.h"
#include "Platform/Linux/Quartz/WindowServer.h"

namespace tapdeck::testing {

std::string interpreterProgram;

std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

RealPlayer::RealPlayer()
    : _player({"mpv", "--no-video", "--ao=null", "--no-terminal", makeTone().string()}) {
  if (!eventually([] { return !applescript::runningPlayers().empty(); })) {
    throw std::runtime_error("mpv does not come up on the bus: " + _player.errors());
  }
}

/// One channel of 8 bits, 8000 samples a second.
std::filesystem::path RealPlayer::makeTone() const {
  constexpr uint32_t kRate = 8000;
  constexpr uint32_t kSize = 60 * kRate;
  struct {
    char riff[4] = {'R', 'I', 'F', 'F'};
    uint32_t riffSize = 36 + kSize;
    char wave[8] = {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '};
    uint32_t formatSize = 16;
    uint16_t format = 1, channels = 1;
    uint32_t rate = kRate, bytesPerSecond = kRate;
    uint16_t frameSize = 1, bits = 8;
    char data[4] = {'d', 'a', 't', 'a'};
    uint32_t dataSize = kSize;
  } header;
  const auto path = _folder.path / "tone.wav";
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(&header), sizeof header);
  file << std::string(kSize, '\x80');
  return path;
}

}  // namespace tapdeck::testing

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc != 4) return 64;
  tapdeck::testing::hostProgram = argv[1];
  tapdeck::testing::callProgram = argv[2];
  tapdeck::testing::interpreterProgram = argv[3];
  if (gtk_init_check(nullptr, nullptr) == FALSE) return EXIT_FAILURE;
  Gtk::Main::init_gtkmm_internals();
  tapdeck::quartz::connectToWindowServer();
  return RUN_ALL_TESTS();
}
