#include <cstddef>
#include <cstdint>
#include <string>

#include "Platform/Linux/AppleScript/AppleScript.h"
#include "Platform/Linux/AppleScript/Value.h"

namespace tapdeck::applescript {
namespace {

/// Has a track in every player and touches nothing.
class FuzzedDesktop : public Desktop, Player {
 public:
  Player* player(Application) override { return this; }
  Volume volume() override { return {.level = 50, .muted = false}; }
  void setVolume(const Volume&) override {}
  void power(Command) override {}
  std::string picture(const std::string& url) override { return url; }

 private:
  PlayerState read() override {
    return {.status = Constant::playing,
            .track = Track{.title = "Song",
                           .artist = "Artist",
                           .album = "",
                           .id = "/track/1",
                           .url = "file:///a%20b",
                           .artUrl = "data:,",
                           .length = 1000000},
            .position = 500000};
  }
  void perform(Command) override {}
  void seek(int64_t) override {}
};

/// What writes to files is left out.
bool isHarmless(const std::string& source) {
  std::string lower;
  for (const char letter : source) {
    lower += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  return lower.find("access") == std::string::npos;
}

}  // namespace
}  // namespace tapdeck::applescript

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string source(reinterpret_cast<const char*>(data), size);
  tapdeck::applescript::FuzzedDesktop desktop;
  if (tapdeck::applescript::isHarmless(source)) tapdeck::applescript::run(source, desktop);
  return 0;
}
