#include "Tests/Support/Desktop/TypingClient.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tapdeck::testing {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::chrono::seconds kSilence{10};

std::string ownFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::vector<std::string> commandFor(TypingClient::Kind kind, const std::string& title,
                                    const std::string& file) {
  const std::string plain = "GTK_IM_MODULE=gtk-im-context-simple";
  if (kind == TypingClient::Kind::textView) {
    return {"env", plain, ownFolder() + "/typing_text_view", title, file};
  }
  if (kind == TypingClient::Kind::qtView) {
    return {"env", "QT_IM_MODULE=none", "/usr/bin/python3", QT_VIEW, title, file};
  }
  // raw, so that no line discipline interprets what comes; shown, so that the terminal works as
  // hard as it does for people
  const std::string keep = "stty raw -echo; exec tee \"$0\"";
  return {"env",
          "LC_ALL=C.UTF-8",
          "XMODIFIERS=@im=none",
          "xterm",
          "-u8",
          "-T",
          title,
          "-e",
          "sh",
          "-c",
          keep,
          file};
}

std::string activeTitle(Observer& observer) {
  const auto title = observer.property(observer.activeWindow(), XCB_ATOM_WM_NAME, XCB_ATOM_STRING);
  return {title.begin(), title.end()};
}

}  // namespace

TypingClient::TypingClient(Kind kind, Observer& observer) : _kind(kind) {
  static int number = 0;
  const std::string title = "typing-" + std::to_string(++number);
  _file = _folder.path / title;
  _process.emplace(commandFor(kind, title, _file));
  const bool isReady = eventually([&] {
    return activeTitle(observer) == title &&
           (kind != Kind::terminal || std::filesystem::exists(_file));
  });
  if (!isReady) throw std::runtime_error("no focus: " + _process->errors());
}

std::string TypingClient::received(const std::string& expected) {
  std::string wanted = expected;
  if (_kind == Kind::terminal) std::replace(wanted.begin(), wanted.end(), '\n', '\r');
  std::string fresh;
  _changed = Clock::now();
  do {
    std::this_thread::sleep_for(milliseconds(10));
    std::string now = contentsOf(_file);
    now.erase(0, _seen);
    if (now != fresh) _changed = Clock::now();
    fresh = std::move(now);
  } while (fresh != wanted && Clock::now() - _changed < kSilence);
  // something too much would come at once
  std::this_thread::sleep_for(milliseconds(30));
  fresh = contentsOf(_file).substr(_seen);
  _seen += fresh.size();
  if (_kind == Kind::terminal) std::replace(fresh.begin(), fresh.end(), '\r', '\n');
  return fresh;
}

}  // namespace tapdeck::testing
