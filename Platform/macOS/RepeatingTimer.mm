#include "Platform/RepeatingTimer.h"

#import <Foundation/Foundation.h>

#include <utility>

namespace tapdeck::platform {

struct RepeatingTimer::Timer {
  NSTimer* timer;
};

RepeatingTimer::RepeatingTimer(double interval, std::function<void()> fired)
    : _timer(std::make_unique<Timer>(Timer{[NSTimer scheduledTimerWithTimeInterval:interval
                                                                           repeats:YES
                                                                             block:^(NSTimer*) {
                                                                               fired();
                                                                             }]})) {}

// the run loop would keep the timer
RepeatingTimer::~RepeatingTimer() {
  invalidate();
}

void RepeatingTimer::invalidate() {
  [_timer->timer invalidate];
}

}  // namespace tapdeck::platform
