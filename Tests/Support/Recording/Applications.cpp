// Applications, their files and their icons, recorded.

#include "Tests/Support/Recording/Applications.h"

#include <algorithm>
#include <utility>

#include "Platform/Files.h"
#include "Platform/Images.h"
#include "Platform/PropertyLists.h"
#include "Tests/Support/Recording/Recording.h"

namespace tapdeck::recording {

ApplicationsScript& applications() {
  static ApplicationsScript current;
  return current;
}

namespace {

template <typename Content>
std::optional<Content> at(const std::map<std::string, Content>& all, const std::string& key) {
  const auto found = all.find(key);
  return found != all.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace
}  // namespace tapdeck::recording

namespace tapdeck::platform {

using recording::applications;
using recording::record;

struct Image {
  std::string name;
};

struct Bitmap {
  std::string name;
};

namespace {

std::shared_ptr<const Image> icon(std::string name) {
  if (applications().iconFails) return nullptr;
  return std::make_shared<const Image>(Image{std::move(name)});
}

}  // namespace

std::vector<RunningApplication> runningApplications() {
  return applications().running;
}

std::shared_ptr<const Image> iconOf(const RunningApplication& application) {
  return icon("icon of process " + std::to_string(application.processIdentifier));
}

std::optional<std::string> bundleIdentifierAt(const std::string& path) {
  record("bundle " + path);
  return recording::at(applications().bundles, path);
}

std::optional<std::string> pathForApplication(const std::string& bundleIdentifier) {
  const auto& bundles = applications().bundles;
  const auto found = std::find_if(bundles.begin(), bundles.end(), [&](const auto& bundle) {
    return bundle.second == bundleIdentifier;
  });
  return found != bundles.end() ? std::optional(found->first) : std::nullopt;
}

void openApplication(const std::string& path) {
  record("open application " + path);
}

std::shared_ptr<const Image> iconOfFile(const std::string& path) {
  return icon("icon of " + path);
}

std::shared_ptr<Bitmap> createBitmap(int64_t width, int64_t height) {
  if (applications().bitmapFails) return nullptr;
  return std::make_shared<Bitmap>(
      Bitmap{std::to_string(width) + "x" + std::to_string(height) + " bitmap"});
}

void copyOnto(Bitmap& bitmap, const Image& image) {
  record("copy " + image.name + " onto " + bitmap.name);
}

std::optional<std::vector<uint8_t>> pngOf(const Bitmap& bitmap, double compressionFactor) {
  record("PNG of " + bitmap.name + " compressed by " + std::to_string(compressionFactor));
  return applications().png;
}

std::string homeDirectory() {
  return "/Users/me";
}

std::vector<std::string> contentsOfDirectory(const std::string& path) {
  record("list " + path);
  return recording::at(applications().folders, path).value_or(std::vector<std::string>());
}

std::optional<ValueMap> dictionaryFromFile(const std::string& path) {
  record("read " + path);
  return recording::at(applications().propertyLists, path);
}

}  // namespace tapdeck::platform
