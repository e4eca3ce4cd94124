#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include "Engine/Channels.h"
#include "Tests/Support/Desktop/ChildProcess.h"

namespace tapdeck::testing {

/// The executables of the host, the calls to it and the interpreter, from the command line.
inline std::string hostProgram, callProgram, interpreterProgram;

/// A host on the display at hand, ready to be called. When it goes, it ends by itself and well.
struct RunningHost : ChildProcess {
  RunningHost() : ChildProcess({hostProgram, "--port", "0"}) {
    if (!awaitLine()) throw std::runtime_error("the host does not start: " + errors());
  }
  ~RunningHost() {
    if (!isRunning()) return;
    send(SIGTERM);
    EXPECT_EQ(status(), 0) << errors();
    EXPECT_EQ(errors().find("CRITICAL"), std::string::npos) << errors();
  }
};

/// What tapdeck-call prints of the reply.
inline std::string call(const std::string& method, const std::string& arguments = "null",
                        const std::string& channel = kControlChannel) {
  return outputOf({callProgram, "--channel", channel, method, arguments});
}

}  // namespace tapdeck::testing
