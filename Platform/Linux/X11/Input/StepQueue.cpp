#include "Platform/Linux/X11/Input/StepQueue.h"

#include <algorithm>
#include <chrono>
#include <iostream>

#include "Platform/Linux/X11/Ending.h"

namespace tapdeck::x11 {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Text is posted a character every 5 ms: after a pause of this length no more is expected.
constexpr milliseconds kPause{15};
// How long text is gathered for one change of the keymap, which every program has to read.
constexpr milliseconds kGatherTime{150};
// How long releases are gathered for one round trip that confirms them.
constexpr milliseconds kConfirmTime{10};
// How long the end waits for queued steps, which an application that does not answer may delay.
constexpr std::chrono::seconds kEndTime{8};

}  // namespace

StepQueue::StepQueue(Connection& output, milliseconds idleTime)
    : _idleTime(idleTime), _keyboard(output), _thread([this] { run(); }) {}

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
  if (!_isBusy && _waiting.empty() && _keyboard.isReady(step) &&
      _keyboard.notBefore(step) <= _lastAdded) {
    const bool wasConfirmed = !_keyboard.unconfirmedSince();
    _keyboard.carryOut(step);
    if (wasConfirmed && _keyboard.unconfirmedSince()) _changed.notify_all();
    return;
  }
  _waiting.push_back(std::move(step));
  _changed.notify_all();
}

bool StepQueue::isPressWaiting() {
  const Lock lock(_mutex);
  return std::any_of(_waiting.begin(), _waiting.end(), [](const Step& step) {
    const auto* button = std::get_if<ButtonStep>(&step);
    return button != nullptr && button->down;
  });
}

std::optional<Pixel> StepQueue::waitingMotion() {
  const Lock lock(_mutex);
  for (auto step = _waiting.rbegin(); step != _waiting.rend(); ++step) {
    if (const auto* motion = std::get_if<MotionStep>(&*step)) return motion->pixel;
    if (const auto* warp = std::get_if<WarpStep>(&*step)) return warp->pixel;
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
    } else if (const auto since = _keyboard.unconfirmedSince()) {
      confirmReleases(lock, *since + kConfirmTime);
    } else if (!_keyboard.isBorrowing()) {
      _changed.wait(lock);
    } else if (const auto end = _keyboard.lastNeed() + _idleTime; Clock::now() < end) {
      _changed.wait_until(lock, end);
    } else {
      _isBusy = true;
      lock.unlock();
      _keyboard.giveBack();
      lock.lock();
      _isBusy = false;
      _changed.notify_all();
    }
  }
}

// The journal has to know that the server has read a release. This thread waits for that, so that
// who posts the release need not.
void StepQueue::confirmReleases(Lock& lock, Clock::time_point due) {
  if (Clock::now() < due) {
    _changed.wait_until(lock, due);
    return;
  }
  const uint64_t count = _keyboard.releaseCount();
  lock.unlock();
  _keyboard.output().finish();
  lock.lock();
  _keyboard.confirmReleases(count);
}

void StepQueue::empty(Lock& lock) {
  while (!_waiting.empty()) {
    if (endOfPatience()) {
      _waiting.clear();
      return;
    }
    if (const auto time = _keyboard.notBefore(_waiting.front()); Clock::now() < time) {
      _changed.wait_until(lock, time);
      continue;
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

}  // namespace tapdeck::x11
