#include "Runner/Apps/Icon.h"

#include <algorithm>
#include <memory>

#include "Platform/Applications.h"
#include "Platform/Images.h"
#include "Runner/Base64.h"

namespace tapdeck {
namespace {

constexpr int64_t kIconSide = 64;
// PNG is lossless and takes no notice of it
constexpr double kCompressionFactor = 0.5;

std::shared_ptr<const platform::Image> findIcon(const std::string& bundleIdentifier) {
  const auto running = platform::runningApplications();
  const auto application = std::find_if(running.begin(), running.end(), [&](const auto& each) {
    return each.bundleIdentifier == bundleIdentifier;
  });
  if (application != running.end()) {
    if (auto icon = platform::iconOf(*application)) return icon;
  }
  const auto path = platform::pathForApplication(bundleIdentifier);
  return path ? platform::iconOfFile(*path) : nullptr;
}

}  // namespace

std::string applicationIcon(const std::string& bundleIdentifier) {
  const auto icon = findIcon(bundleIdentifier);
  if (icon == nullptr) return "";
  const auto bitmap = platform::createBitmap(kIconSide, kIconSide);
  if (bitmap == nullptr) return "";
  platform::copyOnto(*bitmap, *icon, CGRectMake(0, 0, 0, 0));
  const auto png = platform::pngOf(*bitmap, kCompressionFactor);
  return png ? base64(*png) : "";
}

}  // namespace tapdeck
