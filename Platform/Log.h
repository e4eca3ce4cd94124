#pragma once

#include <string>

namespace tapdeck::platform {

/// Unified logging: hands the system's log one message at error level, readable by whoever reads
/// the log. Any thread.
void logError(const char* subsystem, const char* category, const std::string& message);

/// NSLog: hands the system's log one line, which goes to standard error as well. Any thread.
void logLine(const std::string& line);

}  // namespace tapdeck::platform
