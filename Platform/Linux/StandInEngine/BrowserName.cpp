#include "Platform/Linux/StandInEngine/BrowserName.h"

#include <array>

namespace tapdeck {

namespace {

struct Mark {
  std::string_view text;
  std::string_view name;
};

// Browsers claim to be those that came before them, so the most particular mark stands first.
constexpr std::array<Mark, 9> browsers = {{{"SamsungBrowser/", "Samsung Internet"},
                                           {"Edg", "Edge"},
                                           {"OPR/", "Opera"},
                                           {"FxiOS/", "Firefox"},
                                           {"Firefox/", "Firefox"},
                                           {"CriOS/", "Chrome"},
                                           {"HeadlessChrome/", "Headless Chrome"},
                                           {"Chrome/", "Chrome"},
                                           {"Safari/", "Safari"}}};
constexpr std::array<Mark, 7> systems = {{{"iPhone", "iPhone"},
                                          {"iPad", "iPad"},
                                          {"Android", "Android"},
                                          {"CrOS", "ChromeOS"},
                                          {"Windows", "Windows"},
                                          {"Macintosh", "Mac"},
                                          {"Linux", "Linux"}}};

template <std::size_t count>
std::string_view firstIn(const std::array<Mark, count>& marks, std::string_view text,
                         std::string_view otherwise) {
  for (const Mark& mark : marks) {
    if (text.find(mark.text) != std::string_view::npos) return mark.name;
  }
  return otherwise;
}

}  // namespace

std::string browserName(std::string_view userAgent) {
  if (!userAgent.starts_with("Mozilla/")) {
    const auto product = userAgent.substr(0, userAgent.find_first_of("/ "));
    return product.empty() ? "Unknown program" : std::string(product);
  }
  std::string name(firstIn(browsers, userAgent, "Browser"));
  const auto system = firstIn(systems, userAgent, "");
  if (!system.empty()) name.append(" on ").append(system);
  return name;
}

}  // namespace tapdeck
