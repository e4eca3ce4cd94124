#include "Platform/Log.h"

#include <glib.h>

namespace tapdeck::platform {

namespace {

/// With its length, as the text may hold a NUL.
GLogField messageField(const std::string& text) {
  return {"MESSAGE", text.data(), static_cast<gssize>(text.size())};
}

}  // namespace

void logError(const char* subsystem, const char* category, const std::string& message) {
  // GLib hands it to the journal where standard error leads there, and else writes a line to it
  const GLogField fields[] = {
      messageField(message),
      {"PRIORITY", "3", -1},  // syslog's LOG_ERR
      {"GLIB_DOMAIN", subsystem, -1},
      {"TAPDECK_CATEGORY", category, -1},
  };
  g_log_structured_array(G_LOG_LEVEL_WARNING, fields, G_N_ELEMENTS(fields));
}

void logLine(const std::string& line) {
  const GLogField fields[] = {
      messageField(line),
      {"PRIORITY", "5", -1},  // syslog's LOG_NOTICE
      {"GLIB_DOMAIN", "tapdeck", -1},
  };
  g_log_structured_array(G_LOG_LEVEL_MESSAGE, fields, G_N_ELEMENTS(fields));
}

}  // namespace tapdeck::platform
