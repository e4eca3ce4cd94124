#include "Platform/Activity.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

struct Activity::Token {
  id<NSObject> activity;
};

Activity::Activity(const std::string& reason)
    : _token(std::make_unique<Token>(Token{[NSProcessInfo.processInfo
          beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                            reason:nameFromUtf8(reason)]})) {}

Activity::~Activity() {
  [NSProcessInfo.processInfo endActivity:_token->activity];
}

}  // namespace tapdeck::platform
