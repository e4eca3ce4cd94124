#include "Platform/Linux/Quartz/Images/DisplayImages.h"

#include <algorithm>

#include "Platform/Linux/Quartz/Session.h"

namespace tapdeck::quartz {
namespace {

// The phone asks several times a second while its user looks at the screen.
constexpr guint kIdleSeconds = 10;

// Above this share a grab of the whole, which goes straight to its place, is measured cheaper.
constexpr double kMostInParts = 0.75;

}  // namespace

DisplayImages::~DisplayImages() {
  forget();
}

CGImageRef DisplayImages::create(CGDirectDisplayID display) {
  start();
  const auto monitors = quartz::monitors();
  forgetWhatIsGone(monitors);
  const auto monitor =
      std::find_if(monitors.begin(), monitors.end(),
                   [display](const Monitor& each) { return each.number == display; });
  if (monitor == monitors.end()) return nullptr;

  // before the grab: what is painted in between is then told again, instead of never
  takeDamage();
  Known& its = known(*monitor);
  if (!bringUpToDate(its)) {
    std::erase_if(_known, [display](const Known& each) { return each.monitor.number == display; });
    return nullptr;
  }
  CFRetain(its.image.get());
  return its.image.get();
}

void DisplayImages::forget() {
  if (_tick != 0) g_source_remove(_tick);
  _tick = 0;
  _known.clear();
  _damage.reset();
  _grab.reset();
}

void DisplayImages::start() {
  _wasAsked = true;
  if (_grab != nullptr) return;
  _grab = std::make_unique<ScreenGrab>(_connection);
  _damage = std::make_unique<Damage>(_connection);
  _tick = g_timeout_add_seconds(kIdleSeconds, &onTick, this);
}

void DisplayImages::forgetWhatIsGone(const std::vector<Monitor>& monitors) {
  std::erase_if(_known, [&monitors](const Known& known) {
    return std::find(monitors.begin(), monitors.end(), known.monitor) == monitors.end();
  });
}

void DisplayImages::takeDamage() {
  const auto damage = _damage->take();
  for (Known& known : _known) {
    if (!damage) {
      known.dirty.addAll();
      continue;
    }
    for (const Area& area : *damage) {
      known.dirty.add(
          {area.x - known.monitor.x, area.y - known.monitor.y, area.width, area.height});
    }
  }
}

DisplayImages::Known& DisplayImages::known(const Monitor& monitor) {
  const auto found = std::find_if(_known.begin(), _known.end(), [&monitor](const Known& each) {
    return each.monitor.number == monitor.number;
  });
  return found != _known.end() ? *found : _known.emplace_back(monitor);
}

bool DisplayImages::bringUpToDate(Known& known) {
  if (known.image != nullptr && known.dirty.isEmpty()) return true;
  const bool isOurs = known.image != nullptr && known.image->retainCount() == 1;
  const bool done = isOurs && known.dirty.share() <= kMostInParts ? refresh(known) : grab(known);
  known.dirty.clear();
  return done;
}

bool DisplayImages::refresh(Known& known) {
  const auto parts = known.dirty.areas();
  known.image->copies.markDirty(parts);
  return _grab->refresh(known.image->pixels, known.area(), parts);
}

bool DisplayImages::grab(Known& known) {
  if (known.image != nullptr && known.image->retainCount() > 1) known.image.reset();
  // its memory is free for the new picture
  if (known.image != nullptr) known.image->pixels = {};
  PixelBuffer pixels = _grab->grab(known.area());
  if (!pixels) return false;
  if (known.image == nullptr) {
    known.image.reset(new CGImage(std::move(pixels)));
  } else {
    known.image->pixels = std::move(pixels);
    known.image->copies.markAllDirty();
  }
  return true;
}

gboolean DisplayImages::onTick(gpointer self) noexcept {
  auto& images = *static_cast<DisplayImages*>(self);
  if (std::exchange(images._wasAsked, false)) return G_SOURCE_CONTINUE;
  images._tick = 0;
  images.forget();
  return G_SOURCE_REMOVE;
}

}  // namespace tapdeck::quartz

CGImageRef CGDisplayCreateImage(CGDirectDisplayID display) {
  if (!CGPreflightScreenCaptureAccess()) return nullptr;
  return tapdeck::quartz::session()->displayImages.create(display);
}
