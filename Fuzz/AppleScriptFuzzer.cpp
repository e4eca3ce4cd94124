#include <cstdint>
#include <string>

#include "Tests/Support/ScriptedDesktop.h"

namespace tapdeck::applescript {
namespace {

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
  using namespace tapdeck::applescript;
  ScriptedDesktop desktop;
  for (const auto player : {Application::music, Application::spotify, Application::vlc}) {
    desktop.run(player, playing());
  }
  if (isHarmless(source)) run(source, desktop);
  return 0;
}
