#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Linux/Interpreter/SystemDesktop.h"
#include "Platform/Linux/Media/Power.h"

namespace {

constexpr int kUsageError = 2;

int usage() {
  std::fputs("usage: tapdeck-osascript -e LINE [-e LINE]...\n", stderr);
  return kUsageError;
}

void report(const tapdeck::applescript::Error& error) {
  std::fprintf(stderr, "%zu:%zu: %s error: %s (%d)\n", error.start, error.end,
               error.isSyntaxError ? "syntax" : "execution", error.message.c_str(), error.number);
}

bool print(const std::string& text) {
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
                         std::fputc('\n', stdout) != EOF;
  return isWritten && std::fflush(stdout) == 0;
}

}  // namespace

/// Runs a program of the lines given and prints what it comes to.
int main(int argc, char** argv) {
  std::string source;
  if (argc < 3) return usage();
  for (int word = 1; word < argc; word += 2) {
    if (std::string_view(argv[word]) != "-e" || word + 1 == argc) return usage();
    if (word > 1) source += '\n';
    source += argv[word + 1];
  }
  const auto [text, error] = tapdeck::applescript::runOnThisMachine(source);
  tapdeck::media::finishPowerRequests();
  if (error) {
    report(*error);
    return EXIT_FAILURE;
  }
  return !text || print(*text) ? EXIT_SUCCESS : EXIT_FAILURE;
}
