#include "Platform/Linux/Support/KeyFile.h"

namespace tapdeck {
namespace {

std::optional<std::string> takeMessage(GError* error) {
  const glib::Error owned(error);
  return owned != nullptr ? std::optional<std::string>(owned->message) : std::nullopt;
}

}  // namespace

std::optional<std::string> KeyFile::load(const std::string& path) const {
  GError* error = nullptr;
  g_key_file_load_from_file(get(), path.c_str(), G_KEY_FILE_KEEP_COMMENTS, &error);
  return takeMessage(error);
}

std::optional<std::string> KeyFile::save(const std::string& path) const {
  const glib::Text folder(g_path_get_dirname(path.c_str()));
  g_mkdir_with_parents(folder.get(), 0700);
  gsize length = 0;
  const glib::Text text(g_key_file_to_data(get(), &length, nullptr));
  GError* error = nullptr;
  g_file_set_contents_full(path.c_str(), text.get(), static_cast<gssize>(length),
                           G_FILE_SET_CONTENTS_CONSISTENT, 0600, &error);
  return takeMessage(error);
}

}  // namespace tapdeck
