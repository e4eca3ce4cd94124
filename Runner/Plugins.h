#pragma once

#include <span>

#include "Engine/UIEngine.h"

namespace tapdeck {

/// The class names of the UI engine's plug-ins, which are their registrar keys too, in the order in
/// which they are registered. Each is an outside framework of its own; the host has none of their
/// code.
std::span<const char* const> pluginClassNames();

/// Registers the plug-ins with the engine in order; a build without one of them leaves it out.
/// Main thread only.
void registerPlugins(UIEngine& engine);

}  // namespace tapdeck
