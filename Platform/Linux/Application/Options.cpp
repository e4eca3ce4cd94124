#include "Platform/Linux/Application/Options.h"

#include <charconv>
#include <cstdio>
#include <string_view>

#include "Platform/Linux/Support/Diagnostics.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck {

namespace {

std::optional<uint16_t> portFrom(std::string_view text) {
  uint16_t port = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, port);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return port;
}

std::nullopt_t complain(const std::string& message) {
  warn(message);
  std::fputs("Try \"tapdeck-host --help\".\n", stderr);
  return std::nullopt;
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv) {
  char* port = nullptr;
  char* address = nullptr;
  gboolean lan = FALSE;
  gboolean tls = FALSE;
  gboolean show = FALSE;
  gboolean version = FALSE;
  const GOptionEntry entries[] = {
      {"port", 'p', 0, G_OPTION_ARG_STRING, &port,
       "The TCP port to listen on; 0 takes any free one (8420)", "N"},
      {"listen", 'l', 0, G_OPTION_ARG_STRING, &address,
       "The IP address to listen on; 0.0.0.0 is the same as --lan", "ADDRESS"},
      {"lan", 0, 0, G_OPTION_ARG_NONE, &lan,
       "Let phones in this network in, as the switch in the window does", nullptr},
      {"tls", 0, 0, G_OPTION_ARG_NONE, &tls,
       "Encrypt what goes over the network, with a certificate of this computer", nullptr},
      {"show", 0, 0, G_OPTION_ARG_NONE, &show,
       "Bring back the window of the host that runs already, and print its address", nullptr},
      {"version", 0, 0, G_OPTION_ARG_NONE, &version, "Print the version", nullptr},
      {nullptr, 0, 0, G_OPTION_ARG_NONE, nullptr, nullptr, nullptr},
  };
  const glib::OptionContext context(g_option_context_new(nullptr));
  g_option_context_set_summary(context.get(), "Lets a phone's browser control this desktop.");
  g_option_context_add_main_entries(context.get(), entries, nullptr);

  GError* problem = nullptr;
  const bool parsed = g_option_context_parse(context.get(), &argc, &argv, &problem);
  const glib::Error error(problem);
  const glib::Text portText(port), addressText(address);
  if (!parsed) return complain(error->message);
  if (argc > 1) return complain("what is \"" + std::string(argv[1]) + "\"?");

  Options options;
  if (lan) options.address = kEveryAddress;
  if (addressText) options.address = addressText.get();
  if (portText) {
    const auto number = portFrom(portText.get());
    if (!number) return complain("the port is a number from 0 to 65535.");
    options.port = *number;
  }
  options.isEncrypted = tls != FALSE;
  if (show) options.action = Options::Action::show;
  if (version) options.action = Options::Action::printVersion;
  return options;
}

}  // namespace tapdeck
