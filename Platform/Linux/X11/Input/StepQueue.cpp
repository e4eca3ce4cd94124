#include "Platform/Linux/X11/Input/StepQueue.h"

#include <algorithm>
#include <chrono>

#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/X11/Shutdown.h"

namespace tapdeck::x11 {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Text is posted at a character every 5 ms; after a pause of this length it counts as complete.
constexpr milliseconds kTextPause{15};
// How long text is gathered at most for one change of the keymap, which every program has to read.
constexpr milliseconds kMaxGatherTime{150};
// How soon after a release the round trip that confirms it begins; it confirms all until then.
constexpr milliseconds kConfirmDelay{10};
// How long releaseEverything() waits for queued steps, which an application may delay.
constexpr std::chrono::seconds kMaxDrainTime{8};

}  // namespace

StepQueue::StepQueue(Connection& output, milliseconds idleTime)
    : _idleTime(idleTime), _keyboard(output), _thread([this] { run(); }) {}

StepQueue::~StepQueue() {
  releaseEverything();
  {
    const Lock lock(_mutex);
    _isStopping = true;
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

void StepQueue::releaseEverything() {
  Lock lock(_mutex);
  if (!shutdownDeadline()) {
    _changed.wait_for(lock, kMaxDrainTime, [this] { return _waiting.empty() && !_isBusy; });
  }
  _waiting.clear();
  _changed.wait(lock, [this] { return !_isBusy; });
  _keyboard.releaseAll();
  _keyboard.giveBack();
}

void StepQueue::run() {
  Lock lock(_mutex);
  while (!_isStopping) {
    if (!_waiting.empty()) {
      _isBusy = true;
      drain(lock);
      _isBusy = false;
      _changed.notify_all();
    } else if (const auto since = _keyboard.unconfirmedSince()) {
      confirmReleases(lock, *since + kConfirmDelay);
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

// A release stays in the journal until the server has read it. This thread waits for that, so that
// the thread that posts the release need not.
void StepQueue::confirmReleases(Lock& lock, Clock::time_point due) {
  if (Clock::now() < due) {
    _changed.wait_until(lock, due);
    return;
  }
  const uint64_t count = _keyboard.releaseCount();
  lock.unlock();
  _keyboard.output().sync();
  lock.lock();
  _keyboard.confirmReleases(count);
}

void StepQueue::drain(Lock& lock) {
  while (!_waiting.empty()) {
    if (shutdownDeadline()) {
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
      warn("the keyboard's map has no room for what is typed.");
      _waiting.pop_front();
    }
  }
}

void StepQueue::gather(Lock& lock) {
  const auto latest = Clock::now() + kMaxGatherTime;
  while (!_isStopping && Clock::now() < latest && Clock::now() < _lastAdded + kTextPause) {
    _changed.wait_until(lock, std::min(latest, _lastAdded + kTextPause));
  }
}

}  // namespace tapdeck::x11
