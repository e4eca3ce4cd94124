#include "Tests/Desktop/TypingClient.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tapdeck::testing {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kStartTime{30};
constexpr seconds kSilence{10};

std::string ownFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::vector<std::string> commandFor(TypingClient::Kind kind, const std::string& title,
                                    const std::string& file) {
  if (kind == TypingClient::Kind::textView) {
    return {ownFolder() + "/typing_text_view", title, file};
  }
  // raw, so that no line discipline interprets what comes; shown, so that the terminal works as
  // hard as it does for people
  return {"xterm", "-u8", "-T", title, "-e", "sh", "-c", "stty raw -echo; exec tee \"$0\"", file};
}

std::string activeTitle(Observer& observer) {
  const auto cookie = xcb_get_property(observer.get(), 0, observer.activeWindow(), XCB_ATOM_WM_NAME,
                                       XCB_GET_PROPERTY_TYPE_ANY, 0, 256);
  const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
      xcb_get_property_reply(observer.get(), cookie, nullptr), &std::free);
  if (reply == nullptr) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
}

}  // namespace

TypingClient::TypingClient(Kind kind, Observer& observer) : _kind(kind) {
  static int number = 0;
  const std::string title = "typing-" + std::to_string(::getpid()) + "-" + std::to_string(++number);
  _file = std::filesystem::temp_directory_path() / title;
  auto command = commandFor(kind, title, _file);
  std::vector<char*> arguments;
  for (auto& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  _process = ::fork();
  if (_process == 0) {
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::setenv("XMODIFIERS", "@im=none", 1);
    ::setenv("GTK_IM_MODULE", "gtk-im-context-simple", 1);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
  }
  const auto deadline = Clock::now() + kStartTime;
  while (activeTitle(observer) != title ||
         (kind == Kind::terminal && !std::filesystem::exists(_file))) {
    if (Clock::now() > deadline) throw std::runtime_error(command[0] + " did not get the focus");
    std::this_thread::sleep_for(milliseconds(20));
  }
}

TypingClient::~TypingClient() {
  signal(SIGKILL);
  ::waitpid(_process, nullptr, 0);
  std::error_code none;
  std::filesystem::remove(_file, none);
}

void TypingClient::signal(int number) const {
  ::kill(_process, number);
}

std::string TypingClient::content() const {
  std::ifstream in(_file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string TypingClient::received(const std::string& expected) {
  std::string wanted = expected;
  if (_kind == Kind::terminal) std::replace(wanted.begin(), wanted.end(), '\n', '\r');
  std::string before;
  _changed = Clock::now();
  while (true) {
    const std::string all = content();
    std::string fresh = all.substr(std::min(_seen, all.size()));
    if (fresh != before) _changed = Clock::now();
    const bool isOver = Clock::now() - _changed > kSilence;
    if (fresh == wanted || isOver) {
      // something too much would come at once
      if (!isOver) std::this_thread::sleep_for(milliseconds(30));
      fresh = content().substr(std::min(_seen, all.size()));
      _seen += fresh.size();
      if (_kind == Kind::terminal) std::replace(fresh.begin(), fresh.end(), '\r', '\n');
      return fresh;
    }
    before = std::move(fresh);
    std::this_thread::sleep_for(milliseconds(10));
  }
}

}  // namespace tapdeck::testing
