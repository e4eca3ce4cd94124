#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "Engine/MethodChannel.h"
#include "Runner/ChannelActivity.h"
#include "Runner/MainFlutterWindow.h"

namespace tapdeck {

/// Answers one call of the control channel: looks the method up in the method table, by exact name,
/// and runs its row. Replies before it returns, but for "getNowPlaying" and "mediaSeek", which work
/// on a background queue and reply from the main one. Main thread only.
void handleControlCall(const std::weak_ptr<MainFlutterWindow>& window, const MethodCall& call,
                       Reply reply);

/// Creates the control channel on the engine, with a handler that holds the window weakly and notes
/// each call, and stores it in `_controlChannel`.
void installControlChannel(const std::shared_ptr<MainFlutterWindow>& window,
                           const std::shared_ptr<UIEngine>& engine,
                           const std::shared_ptr<ChannelActivity>& activity);

/// Sends the UI engine "displaysChanged" with the present list of displays, if the window still
/// exists and has its control channel.
void sendDisplaysChanged(const std::weak_ptr<MainFlutterWindow>& window);

}  // namespace tapdeck
