#include "Platform/Linux/StandInEngine/Page.h"

#include <utility>

extern "C" GResource* tapdeck_console_get_resource(void);

namespace tapdeck::standin {
namespace {

constexpr const char* kRoot = "/com/tapdeck/console";
constexpr const char* kCompressed = ".gz";
constexpr size_t kTagDigits = 16;

const char* typeOf(std::string_view path) {
  static constexpr std::pair<std::string_view, const char*> types[] = {
      {".html", "text/html; charset=utf-8"},
      {".css", "text/css; charset=utf-8"},
      {".js", "text/javascript; charset=utf-8"},
      {".svg", "image/svg+xml"},
      {".png", "image/png"},
      {".webmanifest", "application/manifest+json"},
  };
  for (const auto& [ending, type] : types) {
    if (path.ends_with(ending)) return type;
  }
  return "application/octet-stream";
}

const char* requestHeader(SoupServerMessage* message, const char* name) {
  return soup_message_headers_get_list(soup_server_message_get_request_headers(message), name);
}

bool takesGzip(SoupServerMessage* message) {
  const char* accepted = requestHeader(message, "Accept-Encoding");
  if (accepted == nullptr) return false;
  GSList* codings = soup_header_parse_quality_list(accepted, nullptr);
  const bool takes =
      g_slist_find_custom(codings, "gzip", [](gconstpointer a, gconstpointer b) {
        return g_ascii_strcasecmp(static_cast<const char*>(a), static_cast<const char*>(b));
      }) != nullptr;
  soup_header_free_list(codings);
  return takes;
}

/// Whether an If-None-Match header names this entity tag; a weak one is as good.
bool names(const char* header, std::string_view tag) {
  return header != nullptr && (std::string_view(header) == "*" ||
                               std::string_view(header).find(tag) != std::string::npos);
}

}  // namespace

Page::Form Page::load(const std::string& path) {
  glib::Bytes content(g_resource_lookup_data(tapdeck_console_get_resource(), (kRoot + path).c_str(),
                                             G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr));
  if (!content) return {};
  const glib::Text digest(g_compute_checksum_for_bytes(G_CHECKSUM_SHA256, content.get()));
  return {std::move(content), '"' + std::string(digest.get(), kTagDigits) + '"'};
}

Page::Page() {
  const glib::Texts names(g_resource_enumerate_children(tapdeck_console_get_resource(), kRoot,
                                                        G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr));
  if (!names) return;
  for (char** name = names.get(); *name != nullptr; ++name) {
    const std::string path = std::string("/") + *name;
    if (path.ends_with(kCompressed)) continue;
    _files.emplace(path, File{load(path), load(path + kCompressed), typeOf(path)});
  }
}

bool Page::serve(SoupServerMessage* message, std::string_view path) const {
  const auto found = _files.find(path == "/" ? "/index.html" : path);
  if (found == _files.end()) return false;
  const File& file = found->second;
  const bool compressed = file.compressed.content && takesGzip(message);
  const Form& form = compressed ? file.compressed : file.plain;

  SoupMessageHeaders* headers = soup_server_message_get_response_headers(message);
  soup_message_headers_replace(headers, "Cache-Control", "no-cache");
  soup_message_headers_replace(headers, "ETag", form.tag.c_str());
  if (file.compressed.content) soup_message_headers_replace(headers, "Vary", "Accept-Encoding");
  if (names(requestHeader(message, "If-None-Match"), form.tag)) {
    soup_server_message_set_status(message, SOUP_STATUS_NOT_MODIFIED, nullptr);
    return true;
  }
  if (compressed) soup_message_headers_replace(headers, "Content-Encoding", "gzip");
  gsize size = 0;
  const auto* data = static_cast<const char*>(g_bytes_get_data(form.content.get(), &size));
  soup_server_message_set_status(message, SOUP_STATUS_OK, nullptr);
  soup_server_message_set_response(message, file.type, SOUP_MEMORY_STATIC, data, size);
  return true;
}

}  // namespace tapdeck::standin
