#pragma once

#include <optional>
#include <string>

namespace tapdeck::platform {

/// A text that the system has accepted as a URL.
struct URL {
  std::string text;
};

/// NSURL URLWithString: absent when the text does not parse as a URL. Any thread.
std::optional<URL> urlWithString(const std::string& text);

/// NSURL scheme, in the case in which it was written; absent when there is none. Any thread.
std::optional<std::string> schemeOf(const URL& url);

/// NSWorkspace openURL: hands the URL to whatever application opens its scheme; the outcome is not
/// reported. Main thread only.
void openURL(const URL& url);

}  // namespace tapdeck::platform
