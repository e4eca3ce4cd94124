#include "Platform/Linux/Quartz/Keyboard/StepQueue.h"

#include <chrono>
#include <iostream>

#include "Platform/Linux/Quartz/Ending.h"

namespace tapdeck::quartz {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Text comes a character every 5 ms or so: a pause of this length means that it is over for now.
constexpr milliseconds kPause{15};
// So long text may gather for one change of the keymap, which costs every program on the desktop
// some time.
constexpr milliseconds kGatherTime{150};
// The borrowed keys are given back when nothing was typed for so long.
constexpr std::chrono::seconds kIdleTime{60};
// What is still waiting at the end, in the worst case behind an application that does not answer.
constexpr std::chrono::seconds kEndTime{8};

}  // namespace

StepQueue::StepQueue(Connection& output) : _keyboard(output), _thread([this] { run(); }) {}

StepQueue::~StepQueue() {
  letGo();
  {
    const Lock lock(_mutex);
    _ends = true;
  }
  _changed.notify_all();
  _thread.join();
}

void StepQueue::add(Step step) {
  const Lock lock(_mutex);
  _lastAdded = Clock::now();
  if (!_isBusy && _waiting.empty() && _keyboard.isReady(step)) {
    _keyboard.carryOut(step);
    return;
  }
  _waiting.push_back(std::move(step));
  _changed.notify_all();
}

std::optional<Pixel> StepQueue::waitingMotion() {
  const Lock lock(_mutex);
  for (auto step = _waiting.rbegin(); step != _waiting.rend(); ++step) {
    if (const auto* motion = std::get_if<MotionStep>(&*step)) return motion->pixel;
  }
  return std::nullopt;
}

void StepQueue::letGo() {
  Lock lock(_mutex);
  if (!endOfPatience()) {
    _changed.wait_for(lock, kEndTime, [this] { return _waiting.empty() && !_isBusy; });
  }
  _waiting.clear();
  _changed.wait(lock, [this] { return !_isBusy; });
  _keyboard.releaseAll();
  _keyboard.giveBack();
}

void StepQueue::run() {
  Lock lock(_mutex);
  while (!_ends) {
    if (!_waiting.empty()) {
      _isBusy = true;
      empty(lock);
      _isBusy = false;
      _changed.notify_all();
    } else if (!_keyboard.isBorrowing()) {
      _changed.wait(lock);
    } else if (_changed.wait_until(lock, _lastAdded + kIdleTime) == std::cv_status::timeout) {
      if (_waiting.empty() && Clock::now() >= _lastAdded + kIdleTime) {
        _isBusy = true;
        lock.unlock();
        _keyboard.giveBack();
        lock.lock();
        _isBusy = false;
        _changed.notify_all();
      }
    }
  }
}

void StepQueue::empty(Lock& lock) {
  while (!_waiting.empty()) {
    if (endOfPatience()) {
      _waiting.clear();
      return;
    }
    if (_keyboard.isReady(_waiting.front())) {
      _keyboard.carryOut(_waiting.front());
      _waiting.pop_front();
      continue;
    }
    gather(lock);
    const std::vector<Step> steps(_waiting.begin(), _waiting.end());
    lock.unlock();
    const bool prepared = !steps.empty() && _keyboard.prepare(steps);
    lock.lock();
    if (!prepared && !_waiting.empty() && !_keyboard.isReady(_waiting.front())) {
      std::clog << "tapdeck: the keyboard's map has no room for what is typed.\n";
      _waiting.pop_front();
    }
  }
}

void StepQueue::gather(Lock& lock) {
  const auto latest = Clock::now() + kGatherTime;
  while (!_ends && Clock::now() < latest && Clock::now() < _lastAdded + kPause) {
    _changed.wait_until(lock, std::min(latest, _lastAdded + kPause));
  }
}

}  // namespace tapdeck::quartz
