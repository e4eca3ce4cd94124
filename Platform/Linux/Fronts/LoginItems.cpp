// The login item is an autostart entry of the desktop (XDG autostart): a file in the user's
// configuration that starts this very executable, with the options that this process was given, so
// that the host listens tomorrow where it listens today.

#include "Platform/LoginItems.h"

#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "Engine/Utf8.h"
#include "Platform/Linux/Support/GLibOwners.h"
#include "Platform/Linux/Support/KeyFile.h"

namespace tapdeck::platform {

namespace {

namespace fs = std::filesystem;

constexpr const char* kGroup = G_KEY_FILE_DESKTOP_GROUP;
/// Starts the program that its arguments name (POSIX).
constexpr std::string_view kEnv = "env";
/// With these keys the desktops' settings switch an entry off without removing it.
constexpr std::array kDesktopSwitches = {"X-GNOME-Autostart-enabled", "X-MATE-Autostart-enabled"};

fs::path entryPath() {
  return fs::path(g_get_user_config_dir()) / "autostart" / "tapdeck.desktop";
}

/// Where this process's executable is; after an upgrade, where the new one is.
std::string runningProgram() {
  constexpr std::string_view gone = " (deleted)";
  std::error_code unreadable;
  std::string path = fs::read_symlink("/proc/self/exe", unreadable).string();
  if (path.ends_with(gone) && !fs::exists(path, unreadable)) path.resize(path.size() - gone.size());
  return path;
}

/// What this process was started with, after its name.
std::vector<std::string> runningOptions() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::vector<std::string> words;
  for (std::string word; std::getline(file, word, '\0');) words.push_back(word);
  if (!words.empty()) words.erase(words.begin());
  return words;
}

/// The word as an argument in a desktop entry's Exec key, as freedesktop.org defines it: in double
/// quotes, with "%%" for "%", which would begin a field code.
std::string quoted(const std::string& word) {
  constexpr std::string_view special = "\"`$\\";
  std::string text = "\"";
  for (const char character : word) {
    if (special.find(character) != std::string_view::npos) text += '\\';
    text += character;
    if (character == '%') text += '%';
  }
  return text + '"';
}

/// The Exec key for this program and these options. Desktops look for the program before they turn
/// each "%%" back into "%", so one whose path holds a "%" is an argument of env. Absent when no
/// entry can hold it.
std::optional<std::string> execFor(const std::string& program,
                                   const std::vector<std::string>& options) {
  const bool needsEnv = program.find('%') != std::string::npos;
  // env would take it for a variable
  if (needsEnv && program.find('=') != std::string::npos) return std::nullopt;
  std::string exec = (needsEnv ? std::string(kEnv) + ' ' : "") + quoted(program);
  for (const auto& option : options) exec += ' ' + quoted(option);
  return isUtf8(exec) ? std::optional(exec) : std::nullopt;
}

/// The program that the words of an Exec key start.
std::string programIn(char** words) {
  if (words[0] != kEnv || words[1] == nullptr) return words[0];
  std::string program = words[1];
  for (size_t at = 0; (at = program.find("%%", at)) != std::string::npos; ++at) {
    program.erase(at, 1);
  }
  return program;
}

bool isSwitchedOff(const KeyFile& entry) {
  if (g_key_file_get_boolean(entry.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr)) {
    return true;
  }
  return std::any_of(kDesktopSwitches.begin(), kDesktopSwitches.end(), [&entry](const char* key) {
    const glib::Text value(g_key_file_get_value(entry.get(), kGroup, key, nullptr));
    return value && std::string_view(value.get()) == "false";
  });
}

bool startsThisProgram(GDesktopAppInfo* info) {
  const char* command = g_app_info_get_commandline(G_APP_INFO(info));
  char** words = nullptr;
  if (command == nullptr || !g_shell_parse_argv(command, nullptr, &words, nullptr)) return false;
  const glib::Texts owned(words);
  const glib::Text program(g_find_program_in_path(programIn(words).c_str()));
  std::error_code missing;
  return program && fs::equivalent(program.get(), runningProgram(), missing);
}

}  // namespace

bool hasLoginItemServices() {
  return true;
}

/// Whoever switched the entry off by hand is asked for approval, in the Mac's terms. An entry that
/// starts another program, or that no desktop can read, is none of ours.
LoginItemStatus mainAppServiceStatus() {
  KeyFile entry;
  if (entry.load(entryPath())) return LoginItemStatus::notRegistered;
  if (isSwitchedOff(entry)) return LoginItemStatus::requiresApproval;
  const glib::Object<GDesktopAppInfo> info(g_desktop_app_info_new_from_keyfile(entry.get()));
  if (!info || !startsThisProgram(info.get())) return LoginItemStatus::notRegistered;
  return g_desktop_app_info_get_show_in(info.get(), nullptr) ? LoginItemStatus::enabled
                                                             : LoginItemStatus::requiresApproval;
}

/// Replaces whatever entry there is, a switched-off one too.
std::optional<std::string> registerMainAppService() {
  const std::string program = runningProgram();
  const auto exec = execFor(program, runningOptions());
  if (!exec) return "No autostart entry can hold the path " + program + " or its options.";

  const KeyFile entry;
  const std::pair<const char*, std::string> contents[] = {
      {G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION},
      {G_KEY_FILE_DESKTOP_KEY_NAME, "Tapdeck"},
      {G_KEY_FILE_DESKTOP_KEY_COMMENT, "Lets a phone's browser control this desktop"},
      {G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, program},
      {G_KEY_FILE_DESKTOP_KEY_EXEC, *exec},
      {G_KEY_FILE_DESKTOP_KEY_TERMINAL, "false"},
  };
  for (const auto& [key, value] : contents) {
    g_key_file_set_string(entry.get(), kGroup, key, value.c_str());
  }
  return entry.save(entryPath());
}

std::optional<std::string> unregisterMainAppService() {
  std::error_code failure;
  fs::remove(entryPath(), failure);
  if (!failure) return std::nullopt;
  return entryPath().string() + ": " + failure.message();
}

// Here no older version has ever had a helper application.

std::optional<std::string> unregisterLoginItemService(const std::string& identifier) {
  return "There is no login item " + identifier + ".";
}

bool setLoginItemEnabled(const std::string&, bool) {
  return false;
}

std::optional<std::vector<LaunchdJob>> userLaunchdJobs() {
  return std::nullopt;
}

}  // namespace tapdeck::platform
