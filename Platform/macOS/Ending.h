#pragma once

namespace tapdeck::platform {

/// Calls `work` when the process is about to end in a way that it sees coming: the application
/// quits, it gets SIGTERM, SIGINT or SIGHUP and was not started with that signal ignored (on the
/// main thread both), or `stopProcess` is called (on that thread). Once per process, before the
/// application's main loop.
void beforeEnding(void (*work)());

/// Calls what `beforeEnding` was given; nothing where it was given nothing.
void prepareEnding();

}  // namespace tapdeck::platform
