#include "Platform/Downloads.h"

#import <Foundation/Foundation.h>

#import "Platform/macOS/Data.h"
#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {

void startDataTask(const URL& url, double timeoutInterval, DataCompletion completed) {
  NSURL* address = [NSURL URLWithString:nameFromUtf8(url.text)];
  NSMutableURLRequest* request =
      [NSMutableURLRequest requestWithURL:address
                              cachePolicy:NSURLRequestUseProtocolCachePolicy
                          timeoutInterval:60];
  request.timeoutInterval = timeoutInterval;
  NSURLSessionDataTask* task =
      [NSURLSession.sharedSession dataTaskWithRequest:request
                                    completionHandler:^(NSData* data, NSURLResponse*, NSError*) {
                                      completed(bytesFromData(data));
                                    }];
  [task resume];
}

}  // namespace tapdeck::platform
