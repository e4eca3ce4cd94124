// How fast and how exactly text arrives in an application, beside the least time that typing takes
// by its nature (5 ms a character) and beside `xdotool type`.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

#include "Benchmarks/Measuring.h"
#include "Platform/Linux/X11/Session/WindowServer.h"
#include "Runner/Input/TextTyping.h"
#include "Runner/Input/UnicodeText.h"
#include "Tests/Support/Desktop/TypingClient.h"
#include "Tests/Support/Desktop/TypingText.h"

namespace {

using namespace tapdeck;
using tapdeck::testing::Observer;
using tapdeck::testing::TypingClient;
using Clusters = std::vector<std::string_view>;

std::string textNamed(const std::string& name) {
  if (name == "all") return testing::longText();
  const char* line =
      name == "english" ? "The quick brown fox jumps over the lazy dog, again and again.\n"
                        : "Größe: жизнь прекрасна και όμορφη; déjà vu, naïve, Ålesund 日本語 €5.\n";
  std::string text;
  for (int i = 0; i < 10; ++i) text += line;
  return text;
}

/// The length of the longest common subsequence: what arrived, in order.
size_t arrived(const Clusters& sent, const Clusters& received) {
  std::vector<size_t> lengths(received.size() + 1, 0);
  for (const auto& each : sent) {
    size_t diagonal = 0;
    for (size_t i = 0; i < received.size(); ++i) {
      const size_t above = lengths[i + 1];
      lengths[i + 1] = each == received[i] ? diagonal + 1 : std::max(above, lengths[i]);
      diagonal = above;
    }
  }
  return lengths.back();
}

/// Of typing 5 ms a character.
constexpr double kMaxRate = 200;

/// What is typed, where, and by whom.
struct Task {
  std::string application, textName, typist;
};

template <typename Type>
void measure(const Task& task, const std::string& text, TypingClient& client, const Type& type) {
  const auto start = std::chrono::steady_clock::now();
  type();
  const std::string received = client.received(text);
  const double seconds = std::chrono::duration<double>(client.lastChange() - start).count();
  const Clusters sent = graphemeClusters(text);
  const Clusters came = graphemeClusters(received);
  const size_t right = arrived(sent, came);
  const double rate = static_cast<double>(sent.size()) / seconds;
  const bool isExact = received == text;
  std::printf("%-9s %-8s %-18s %6zu %8.1f %8.1f %6zu %6zu  %s\n", task.application.c_str(),
              task.textName.c_str(), task.typist.c_str(), sent.size(), rate, seconds,
              sent.size() - right, came.size() - right, isExact ? "exact" : "WRONG");
  std::fflush(stdout);
  const bool isOurs = task.typist == "tapdeck";
  benchmarks::addToTable(
      {"typing: " + task.textName + " into " + task.application + ", " + task.typist,
       benchmarks::shown(rate, 0, "characters/s, ") + (isExact ? "exact" : "wrong"),
       benchmarks::shown(kMaxRate, 0, "characters/s, 5 ms each"),
       benchmarks::shown(rate / kMaxRate, 2), isOurs ? "exact" : "", isExact});
}

void typeByXdotool(const std::string& text, const std::string& delay) {
  const std::string command = "LC_ALL=C.UTF-8 xdotool type --delay " + delay + " --file -";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "w"), &::pclose);
  if (pipe == nullptr || std::fwrite(text.data(), 1, text.size(), pipe.get()) != text.size()) {
    std::fprintf(stderr, "xdotool failed\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "heading") {
    std::printf("least time: 5 ms a character, 200 characters a second\n");
    std::printf("%-9s %-8s %-18s %6s %8s %8s %6s %6s\n", "into", "text", "typed by", "chars",
                "chars/s", "seconds", "lost", "extra");
    return 0;
  }
  if (argc < 4) {
    std::fprintf(stderr,
                 "usage: bench_typing textview|terminal english|mixed|all tapdeck|xdotool [DELAY]\n"
                 "       bench_typing heading\n");
    return 64;
  }
  const bool isTerminal = std::string(argv[1]) == "terminal";
  const std::string text = textNamed(argv[2]);
  Observer observer;
  TypingClient client(isTerminal ? TypingClient::Kind::terminal : TypingClient::Kind::textView,
                      observer);
  if (std::string(argv[3]) == "tapdeck") {
    x11::connectToWindowServer();
    measure({argv[1], argv[2], "tapdeck"}, text, client, [&] { typeUnicodeText(text); });
    x11::releaseEverything();
  } else {
    const std::string delay = argc > 4 ? argv[4] : "12";
    measure({argv[1], argv[2], "xdotool, " + delay + " ms"}, text, client,
            [&] { typeByXdotool(text, delay); });
  }
}
