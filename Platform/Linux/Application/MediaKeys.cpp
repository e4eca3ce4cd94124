#include "Platform/Linux/Application/MediaKeys.h"

#include <cstdint>

#include "Platform/Linux/X11/Session/WindowServer.h"

namespace tapdeck {

namespace {

/// Of a key type (NX_KEYTYPE_); null for one that is not for players.
const char* playerMethodOf(uint32_t keyType) {
  switch (keyType) {
    case 16:
      return "PlayPause";
    case 17:
      return "Next";
    case 18:
      return "Previous";
    default:
      return nullptr;
  }
}

}  // namespace

MediaKeys::MediaKeys() {
  x11::offerMediaKeys([this](uint32_t keyType) {
    const char* method = playerMethodOf(keyType);
    return method != nullptr && _player.send(method);
  });
}

MediaKeys::~MediaKeys() {
  x11::offerMediaKeys(nullptr);
}

}  // namespace tapdeck
