#pragma once

namespace tapdeck {

/// The method channel on which the UI engine calls the host's methods, and the host tells it of
/// changes.
inline constexpr const char* kControlChannel = "com.tapdeck/control";

}  // namespace tapdeck
