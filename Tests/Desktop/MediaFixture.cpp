#include "Tests/Desktop/MediaFixture.h"

#include <gtest/gtest.h>
#include <gtkmm/main.h>

#include <fstream>
#include <stdexcept>
#include <string_view>

#include "Platform/Linux/Media/Players.h"
#include "Platform/Linux/X11/Session/WindowServer.h"

namespace tapdeck::testing {

std::string interpreterProgram;

RealPlayer::RealPlayer()
    : _player({"mpv", "--no-video", "--ao=null", "--no-terminal", makeTone().string()}) {
  if (!eventually([] { return !media::runningPlayers().empty(); })) {
    throw std::runtime_error("mpv does not come up on the bus: " + _player.errors());
  }
}

std::filesystem::path RealPlayer::makeTone() const {
  constexpr size_t kSize = 480000;  // one channel of 8 bits, 8000 samples a second
  constexpr std::string_view kHeader(
      "RIFF\x24\x53\x07\0WAVEfmt "
      "\x10\0\0\0\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\x08\0data\0\x53\x07\0",
      44);
  auto path = _folder.path / "tone.wav";
  std::ofstream(path, std::ios::binary) << kHeader << std::string(kSize, '\x80');
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
  tapdeck::x11::connectToWindowServer();
  return RUN_ALL_TESTS();
}
