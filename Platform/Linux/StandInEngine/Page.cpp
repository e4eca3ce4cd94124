#include "Platform/Linux/StandInEngine/Page.h"

#include <string_view>
#include <utility>

extern "C" GResource* tapdeck_console_get_resource(void);

namespace tapdeck::standin {
namespace {

constexpr const char* kRoot = "/com/tapdeck/console";

const char* typeOf(std::string_view path) {
  static constexpr std::pair<std::string_view, const char*> types[] = {
      {".html", "text/html; charset=utf-8"},
      {".css", "text/css; charset=utf-8"},
      {".js", "text/javascript; charset=utf-8"},
      {".svg", "image/svg+xml"},
      {".png", "image/png"},
  };
  for (const auto& [ending, type] : types) {
    if (path.ends_with(ending)) return type;
  }
  return "application/octet-stream";
}

struct StringsRelease {
  void operator()(char** strings) const { g_strfreev(strings); }
};

}  // namespace

Page::Page() {
  GResource* resource = tapdeck_console_get_resource();
  const std::unique_ptr<char*, StringsRelease> names(
      g_resource_enumerate_children(resource, kRoot, G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr));
  if (!names) return;
  for (char** name = names.get(); *name != nullptr; ++name) {
    const std::string path = std::string("/") + *name;
    BytesHandle content(g_resource_lookup_data(resource, (kRoot + path).c_str(),
                                               G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr));
    if (content) _files.emplace(path, File{std::move(content), typeOf(path)});
  }
}

const Page::File* Page::find(const std::string& path) const {
  const auto found = _files.find(path == "/" ? "/index.html" : path);
  return found != _files.end() ? &found->second : nullptr;
}

}  // namespace tapdeck::standin
