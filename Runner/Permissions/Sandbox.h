#pragma once

namespace tapdeck {

/// The sandbox test: true when the process runs outside an application sandbox, so that it can
/// reach other applications. Main thread only.
bool isOutsideSandbox();

}  // namespace tapdeck
