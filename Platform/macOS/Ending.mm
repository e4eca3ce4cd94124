#include "Platform/macOS/Ending.h"

#import <AppKit/AppKit.h>
#include <dispatch/dispatch.h>

#include <atomic>
#include <csignal>
#include <initializer_list>

namespace tapdeck::platform {
namespace {

std::atomic<void (*)()> preparation = nullptr;

bool isIgnored(int number) {
  struct sigaction action {};
  return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// A handler of a signal itself may call almost nothing, so a source on the main queue does the
// work.
void prepareEndingOn(int number) {
  if (isIgnored(number)) return;  // as nohup wants it
  // unlike an ignored signal, a handled one is back to its default in the processes started here
  std::signal(number, [](int) {});
  dispatch_source_t source = dispatch_source_create(
      DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(number), 0, dispatch_get_main_queue());
  dispatch_source_set_event_handler(source, ^{
    prepareEnding();
    std::signal(number, SIG_DFL);
    std::raise(number);
  });
  dispatch_activate(source);
  static NSMutableArray* const kept = [NSMutableArray array];
  [kept addObject:source];
}

}  // namespace

void beforeEnding(void (*work)()) {
  preparation = work;
  [NSNotificationCenter.defaultCenter addObserverForName:NSApplicationWillTerminateNotification
                                                  object:nil
                                                   queue:nil
                                              usingBlock:^(NSNotification*) {
                                                prepareEnding();
                                              }];
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) prepareEndingOn(number);
}

void prepareEnding() {
  if (auto* const work = preparation.load()) work();
}

}  // namespace tapdeck::platform
