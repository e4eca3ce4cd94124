#include "Platform/Linux/X11/Keyboard/BorrowedKeys.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <set>

#include "Platform/Linux/X11/Keyboard/Keysyms.h"
#include "Platform/Linux/X11/Keyboard/TextKeys.h"
#include "Platform/Linux/X11/Keyboard/TextPlan.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::x11 {
namespace {

/// Grabs the server, so that no client sees the keymap half changed.
class ServerGrab {
 public:
  explicit ServerGrab(const Connection& connection) : _connection(connection) {
    xcb_grab_server(_connection.get());
  }
  ~ServerGrab() {
    xcb_ungrab_server(_connection.get());
    _connection.sync();
  }
  ServerGrab(const ServerGrab&) = delete;
  ServerGrab& operator=(const ServerGrab&) = delete;

 private:
  const Connection& _connection;
};

/// Qt 5 takes the first group for the active one once the map has changed, until it hears of a
/// change of groups.
void announceGroup(const Connection& connection) {
  const auto state = connection.wait(xcb_xkb_get_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD),
                                     xcb_xkb_get_state_reply);
  if (state == nullptr || state->lockedGroup == 0) return;
  for (const uint8_t group : {uint8_t{0}, state->lockedGroup}) {
    xcb_xkb_latch_lock_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
  }
}

}  // namespace

BorrowedKeys::BorrowedKeys(Connection& output, InputSender& sender, KeyboardMonitor& monitor)
    : _output(output), _sender(sender), _monitor(monitor) {
  if (auto fetched = fetchKeymap(_output)) _current = std::move(*fetched);
  if (const InputRecord& left = _sender.leftOver(); !left.mappings.empty()) {
    // only keys that still look remapped by us: the user may have changed the layout since
    KeyMappings ours;
    for (const auto& [code, mapping] : left.mappings) {
      const KeyMapping& now = _current.keys[code];
      if (isTextKey(now) || hasUsGroup(now, mapping, code)) ours[code] = mapping;
    }
    restore(ours);
    _sender.keepMappings({});
  }
  _layout = _current;
}

bool BorrowedKeys::followChanges() {
  if (_monitor.takeMapChange()) {
    auto fetched = fetchKeymap(_output);
    if (fetched) adopt(std::move(*fetched));
  }
  return _output.isAlive();
}

bool BorrowedKeys::isIntact(const Keymap& fetched) const {
  return std::all_of(_originals.begin(), _originals.end(), [&](const auto& original) {
    return fetched.keys[original.first] == _current.keys[original.first];
  });
}

void BorrowedKeys::adopt(Keymap fetched) {
  if (!isIntact(fetched)) {
    KeyMappings ours;
    for (const auto& [code, mapping] : _originals) {
      if (fetched.keys[code] == _current.keys[code]) ours[code] = mapping;
    }
    _current = std::move(fetched);
    restore(ours);
    forget();
    return;
  }
  _current = std::move(fetched);
  _layout = _current;
  for (const auto& [code, mapping] : _originals) _layout.keys[code] = mapping;
}

std::optional<BorrowedKeys::AssignedKey> BorrowedKeys::assignedKey(Keysym keysym) const {
  const auto slot = _text.find(keysym);
  if (!slot) return std::nullopt;
  return keyAt(*slot);
}

std::optional<RealKey> BorrowedKeys::usKey(const UsKey& key) const {
  const auto found = _usKeys.find(key.unshifted);
  if (found == _usKeys.end()) return std::nullopt;
  return found->second;
}

void BorrowedKeys::markUsed(Keysym keysym) {
  if (const auto slot = _text.find(keysym)) _text.use(*slot, ++_useCount);
}

// All keys' first groups are filled first, as that is mostly the active one.
BorrowedKeys::AssignedKey BorrowedKeys::keyAt(size_t slot) const {
  const size_t keys = _textCodes.size();
  return {_textCodes[slot % keys], static_cast<uint8_t>(slot / keys)};
}

KeyMapping BorrowedKeys::textKeyMapping(size_t key) const {
  std::array<TextGroup, kTextGroups> groups;
  for (size_t group = 0; group < groups.size(); ++group) {
    const Keysym keysym = _text.at(group * _textCodes.size() + key);
    groups[group].keysym = keysym;
    // some programs recognise Return, Tab and the like by keycode
    if ((keysym & 0xffffff00) == 0xff00) groups[group].deliveredAs = _layout.keyFor(keysym, 0);
  }
  return textKey(_textCodes[key], groups);
}

bool BorrowedKeys::wouldEvict(const Request& request) const {
  size_t missing = 0;
  size_t empty = 0;
  std::set<Keysym> seen;
  for (const Keysym keysym : request.text)
    missing += !_text.find(keysym) && seen.insert(keysym).second;
  for (size_t slot = 0; slot < _text.size(); ++slot) empty += _text.at(slot) == kNoKeysym;
  return _text.size() > 0 && missing > empty;
}

bool BorrowedKeys::assign(const Request& request) {
  if (!followChanges() || !mayBorrow()) return false;
  KeyMappings mappings;
  const bool newText = !request.text.empty() && assignText(request.text, mappings);
  const bool newKeys = !request.keys.empty() && assignKeys(request.keys, mappings);
  if (!mappings.empty()) {
    send(mappings, newKeys ? NotifyAs::newKeyboardNotify : NotifyAs::mapNotify);
  }
  return (newText || newKeys) && isBorrowing();
}

bool BorrowedKeys::assignText(const std::vector<Keysym>& text, KeyMappings& mappings) {
  const bool first = _textCodes.empty();
  if (first && !chooseTextCodes()) return false;
  std::set<Keycode> changed;
  bool any = false;

  // no more than there are slots, so that later ones do not evict those that are typed first
  std::set<Keysym> needed;
  for (const Keysym keysym : text) {
    if (needed.size() < _text.size()) needed.insert(keysym);
  }
  const auto mustStay = [&](size_t slot) { return needed.contains(_text.at(slot)); };
  const auto assignEmpty = [&](Keysym keysym) {
    if (_text.find(keysym)) return;
    if (const auto slot = _text.assignEmpty(keysym)) changed.insert(keyAt(*slot).code);
  };
  for (const Keysym keysym : text) {
    if (_text.find(keysym) || !needed.contains(keysym)) continue;
    auto slot = _text.assignEmpty(keysym);
    if (!slot) slot = _text.assignOldest(keysym, _useCount, mustStay);
    if (!slot) break;
    any = true;
    changed.insert(keyAt(*slot).code);
  }
  for (const Keysym keysym : needed) {
    for (const Keysym companion : companionsOf(keysym)) assignEmpty(companion);
  }
  if (first) {
    assignEmpty(keysyms::Return);
    for (const Keysym keysym : companionsOf(' ')) assignEmpty(keysym);
  }
  for (size_t key = 0; key < _textCodes.size(); ++key) {
    if (first || changed.contains(_textCodes[key])) mappings[_textCodes[key]] = textKeyMapping(key);
  }
  return any;
}

// A layout that lacks one US key lacks others: all of them get theirs in one change.
bool BorrowedKeys::assignKeys(std::vector<UsKey> keys, KeyMappings& mappings) {
  const uint8_t group = usGroupOf(_layout);
  const auto others = usTextKeys();
  bool any = false;
  keys.insert(keys.end(), others.begin(), others.end());
  for (const UsKey& key : keys) {
    if (_usKeys.contains(key.unshifted) || realKeyFor(key, _layout, 0)) continue;
    const auto code = usKeycodeOf(key, _layout);
    if (!code) continue;
    mappings[*code] = withUsGroup(_layout.keys[*code], key, group);
    _usKeys[key.unshifted] = {*code, group};
    any = true;
  }
  return any;
}

void BorrowedKeys::send(const KeyMappings& mappings, NotifyAs notifyAs) {
  for (const auto& [code, mapping] : mappings) _originals.try_emplace(code, _layout.keys[code]);
  _sender.keepMappings(_originals);
  const bool newActions = std::any_of(mappings.begin(), mappings.end(), [&](const auto& mapping) {
    return mapping.second.actions != _current.keys[mapping.first].actions;
  });
  {
    const ServerGrab grab(_output);
    sendKeysyms(_output.get(), _current, mappings, notifyAs);
    if (newActions) sendActions(_output.get(), _current, mappings);
    announceGroup(_output);
    _monitor.invalidateState();
  }
  // reads the keymap back: somebody else may have changed it meanwhile
  _monitor.connection().sync();
  followChanges();
}

bool BorrowedKeys::chooseTextCodes() {
  const SpareKeys spare = spareKeysOf(_layout);
  _textCodes = spare.unused;
  const auto rare = withoutGrabbed(spare.rare);
  _textCodes.insert(_textCodes.end(), rare.begin(), rare.end());
  _text = SlotPool(_textCodes.size() * kTextGroups);
  return !_textCodes.empty();
}

// Leaves out keycodes that another client has grabbed on the root window (a launch key, say): they
// would go to that client. Only one client can grab a key, so trying to shows it.
std::vector<Keycode> BorrowedKeys::withoutGrabbed(std::vector<Keycode> codes) {
  std::vector<xcb_void_cookie_t> tries;
  for (const Keycode code : codes) {
    tries.push_back(xcb_grab_key_checked(_monitor.connection().get(), 0,
                                         _monitor.connection().root(), XCB_MOD_MASK_ANY, code,
                                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    xcb_ungrab_key(_monitor.connection().get(), code, _monitor.connection().root(),
                   XCB_MOD_MASK_ANY);
  }
  std::vector<Keycode> free;
  for (size_t i = 0; i < codes.size(); ++i) {
    const Received<xcb_generic_error_t> taken{
        xcb_request_check(_monitor.connection().get(), tries[i])};
    if (taken == nullptr) free.push_back(codes[i]);
  }
  return free;
}

void BorrowedKeys::giveBack() {
  followChanges();
  if (!isBorrowing()) return;
  restore(_originals);
  forget();
}

void BorrowedKeys::restore(const KeyMappings& originals) {
  if (!originals.empty()) {
    const ServerGrab grab(_output);
    sendActions(_output.get(), _current, originals);
    sendKeysyms(_output.get(), _current, originals);
    announceGroup(_output);
    _monitor.invalidateState();
  }
  _monitor.connection().sync();
}

void BorrowedKeys::forget() {
  _originals.clear();
  _textCodes.clear();
  _text = SlotPool(0);
  _usKeys.clear();
  _sender.keepMappings({});
  if (auto fetched = fetchKeymap(_output)) _current = std::move(*fetched);
  _layout = _current;
}

}  // namespace tapdeck::x11
