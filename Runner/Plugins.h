#pragma once

#include "Engine/UIEngine.h"

namespace tapdeck {

/// Registers the UI engine's plug-ins with it in order, by their class names, which are their
/// registrar keys too. Each is an outside framework of its own; a build without one of them leaves
/// it out. Main thread only.
void registerPlugins(UIEngine& engine);

}  // namespace tapdeck
