// What the host costs while nobody does anything: how often it wakes up and what it holds in
// memory, with nobody connected and with a page in the background, which keeps its connection and
// asks for nothing.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include "Benchmarks/Measuring.h"
#include "Platform/Linux/Call/HostConnection.h"
#include "Tests/Support/Desktop/ChildProcess.h"

namespace {

using namespace tapdeck;
namespace fs = std::filesystem;

// what starting set going is over by then, GTK's last timer of 20 s too
constexpr std::chrono::seconds kSettling{25};
// three rounds of pings
constexpr std::chrono::seconds kWatched{30};

constexpr double kMaxResident = 110;
constexpr double kMaxPrivate = 45;

/// The number behind a name in a file of /proc; 0 where there is none.
uint64_t numberIn(const fs::path& file, const std::string& name) {
  std::ifstream lines(file);
  for (std::string word; lines >> word;) {
    uint64_t number = 0;
    if (word == name + ":" && lines >> number) return number;
  }
  return 0;
}

/// How often each thread of the process has gone to sleep, which is as often as it woke up.
std::map<std::string, uint64_t> sleepsOf(const fs::path& process) {
  std::map<std::string, uint64_t> sleeps;
  for (const auto& task : fs::directory_iterator(process / "task")) {
    sleeps[task.path().filename()] = numberIn(task.path() / "status", "voluntary_ctxt_switches");
  }
  return sleeps;
}

struct Idleness {
  double wakeUpsPerSecond;
  /// In MB.
  double resident, own;
};

Idleness watch(const testing::ChildProcess& host) {
  runFor(kSettling);
  const fs::path process = "/proc/" + std::to_string(host.id());
  auto before = sleepsOf(process);
  runFor(kWatched);
  double sleeps = 0;
  // a thread that has ended meanwhile is not counted
  for (const auto& [thread, count] : sleepsOf(process)) {
    sleeps += static_cast<double>(count - before[thread]);
  }
  const auto megabytes = [&](const char* name) {
    return static_cast<double>(numberIn(process / "smaps_rollup", name)) / 1024;
  };
  return {sleeps / static_cast<double>(kWatched.count()), megabytes("Rss"),
          megabytes("Private_Clean") + megabytes("Private_Dirty")};
}

void print(const char* situation, const Idleness& idleness, double maxWakeUps) {
  std::printf("%-18s | %9.2f %7.1f | %9.1f %7.0f | %9.1f %7.0f\n", situation,
              idleness.wakeUpsPerSecond, maxWakeUps, idleness.resident, kMaxResident, idleness.own,
              kMaxPrivate);
  const auto add = [situation](const char* what, double measured, const char* unit, double bound) {
    benchmarks::addToTable({std::string("idle, ") + situation + ": " + what,
                            benchmarks::shown(measured, unit == std::string("MB") ? 1 : 2, unit),
                            "", "", benchmarks::shown(bound, bound < 1 ? 1 : 0),
                            measured <= bound});
  };
  add("wake-ups", idleness.wakeUpsPerSecond, "a second", maxWakeUps);
  add("resident memory", idleness.resident, "MB", kMaxResident);
  add("memory of its own", idleness.own, "MB", kMaxPrivate);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: bench_idle HOST_EXECUTABLE\n");
    return 64;
  }
  try {
    const testing::ChildProcess host({argv[1], "--port", "0"});
    if (!host.awaitLine()) throw std::runtime_error("the host did not start: " + host.errors());
    std::printf("%-18s | %9s %7s | %9s %7s | %9s %7s\n", "", "wake-ups", "at", "resident", "at",
                "private", "at");
    std::printf("%-18s | %9s %7s | %9s %7s | %9s %7s\n", "", "a second", "most", "MB", "most", "MB",
                "most");
    print("nobody connected", watch(host), 0);
    const HostConnection page(readSession().value(), std::nullopt);
    print("a hidden page", watch(host), 0.5);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_idle: %s\n", error.what());
    return 1;
  }
}
