#pragma once

#include "Platform/Linux/X11/Connection.h"
#include "Platform/Linux/X11/Keyboard/Journal.h"
#include "Platform/Linux/X11/PointSpace.h"

namespace tapdeck::quartz {

/// Sends input by XTEST and knows what is held: the server keeps pressed what a client pressed even
/// after that client is gone. The caller flushes. One thread at a time.
class InputSender {
 public:
  /// What a process before this one left pressed is released at once.
  explicit InputSender(Connection& connection);
  InputSender(const InputSender&) = delete;
  InputSender& operator=(const InputSender&) = delete;

  void move(Pixel pixel);
  void pressKey(Keycode code);
  void releaseKey(Keycode code);
  /// At once, nothing between the two.
  void tapKey(Keycode code);
  /// The physical button.
  void pressButton(uint8_t button);
  void releaseButton(uint8_t button);
  void tapButton(uint8_t button);
  void releaseAll();

  /// What a process before this one left of its keys' meanings; empty when there is nothing.
  const Held& leftOver() const { return _leftOver; }
  /// Whether meanings can be kept now: not while the disk is full.
  bool canKeepMeanings() { return _journal.takeSpace(); }
  /// Keeps the meanings that are to be given back.
  void keepMeanings(const KeyMeanings& meanings);

 private:
  void fake(uint8_t type, uint8_t detail, Pixel pixel = {0, 0});

  Connection& _connection;
  Journal _journal;
  Held _held;
  Held _leftOver;
};

}  // namespace tapdeck::quartz
