#include "Platform/Linux/X11/Capture/DisplayImages.h"

#include <algorithm>
#include <utility>

namespace tapdeck::x11 {
namespace {

// The phone asks several times a second while its user looks at the screen.
constexpr guint kIdleSeconds = 10;

// Of the picture. To grab more than this in parts takes longer than to grab the whole picture,
// which needs no copying.
constexpr double kMaxShareInParts = 0.75;

}  // namespace

DisplayImages::~DisplayImages() {
  forget();
}

CGImageRef DisplayImages::create(CGDirectDisplayID display, const std::vector<Monitor>& monitors) {
  start();
  dropMissing(monitors);
  const auto monitor =
      std::find_if(monitors.begin(), monitors.end(),
                   [display](const Monitor& each) { return each.number == display; });
  if (monitor == monitors.end()) return nullptr;

  // before the grab: what is painted in between is then grabbed twice, and not missed
  takeDamage();
  CachedImage& cached = cacheFor(*monitor);
  if (!update(cached)) {
    std::erase_if(_cache,
                  [display](const CachedImage& each) { return each.monitor.number == display; });
    return nullptr;
  }
  CFRetain(cached.image.get());
  return cached.image.get();
}

void DisplayImages::forget() {
  if (_tick != 0) g_source_remove(_tick);
  _tick = 0;
  _cache.clear();
  _damage.reset();
  _grab.reset();
}

void DisplayImages::start() {
  _isInUse = true;
  if (_grab != nullptr) return;
  _grab = std::make_unique<ScreenGrab>(_connection);
  _damage = std::make_unique<Damage>(_connection);
  _tick = g_timeout_add_seconds(kIdleSeconds, &onTick, this);
}

void DisplayImages::dropMissing(const std::vector<Monitor>& monitors) {
  std::erase_if(_cache, [&monitors](const CachedImage& cached) {
    return std::find(monitors.begin(), monitors.end(), cached.monitor) == monitors.end();
  });
}

void DisplayImages::takeDamage() {
  const auto damage = _damage->take();
  for (CachedImage& cached : _cache) {
    if (!damage) {
      cached.dirty.addAll();
      continue;
    }
    for (const pixels::Area& area : *damage) {
      cached.dirty.add(
          {area.x - cached.monitor.x, area.y - cached.monitor.y, area.width, area.height});
    }
  }
}

DisplayImages::CachedImage& DisplayImages::cacheFor(const Monitor& monitor) {
  const auto found = std::find_if(
      _cache.begin(), _cache.end(),
      [&monitor](const CachedImage& each) { return each.monitor.number == monitor.number; });
  return found != _cache.end() ? *found : _cache.emplace_back(monitor);
}

bool DisplayImages::update(CachedImage& cached) {
  if (cached.image != nullptr && cached.dirty.isEmpty()) return true;
  const bool isOurs = cached.image != nullptr && cached.image->retainCount() == 1;
  const bool done =
      isOurs && cached.dirty.share() <= kMaxShareInParts ? refresh(cached) : grab(cached);
  cached.dirty.clear();
  return done;
}

bool DisplayImages::refresh(CachedImage& cached) {
  const auto parts = cached.dirty.areas();
  cached.image->copies.markDirty(parts);
  return _grab->refresh(cached.image->pixels, cached.area(), parts);
}

bool DisplayImages::grab(CachedImage& cached) {
  if (cached.image != nullptr && cached.image->retainCount() > 1) cached.image.reset();
  // so that its memory can be used for the new picture
  if (cached.image != nullptr) cached.image->pixels = {};
  pixels::PixelBuffer pixels = _grab->grab(cached.area());
  if (!pixels) return false;
  if (cached.image == nullptr) {
    cached.image.reset(new CGImage(std::move(pixels)));
  } else {
    cached.image->pixels = std::move(pixels);
    cached.image->copies.markAllDirty();
  }
  return true;
}

gboolean DisplayImages::onTick(gpointer self) noexcept {
  auto& images = *static_cast<DisplayImages*>(self);
  if (std::exchange(images._isInUse, false)) return G_SOURCE_CONTINUE;
  images._tick = 0;
  images.forget();
  return G_SOURCE_REMOVE;
}

}  // namespace tapdeck::x11
