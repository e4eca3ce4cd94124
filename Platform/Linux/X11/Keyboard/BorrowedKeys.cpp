#include "Platform/Linux/X11/Keyboard/BorrowedKeys.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <set>

#include "Platform/Linux/X11/Keyboard/Keysyms.h"
#include "Platform/Linux/X11/Keyboard/TextKeys.h"
#include "Platform/Linux/X11/Keyboard/TextPlan.h"
#include "Platform/Linux/X11/Keyboard/XkbProtocol.h"

namespace tapdeck::quartz {
namespace {

// enough for the modifiers' shortcuts of a layout without Latin letters; text needs the others more
constexpr size_t kMostSubstitutes = 16;

bool useKeyboardExtension(const Connection& connection) {
  const auto reply =
      connection.wait(xcb_xkb_use_extension(connection.get(), 1, 0), xcb_xkb_use_extension_reply);
  return reply != nullptr && reply->supported != 0;
}

/// Nobody sees the map half changed.
class ServerGrab {
 public:
  explicit ServerGrab(const Connection& connection) : _connection(connection) {
    xcb_grab_server(_connection.get());
  }
  ~ServerGrab() {
    xcb_ungrab_server(_connection.get());
    _connection.finish();
  }
  ServerGrab(const ServerGrab&) = delete;
  ServerGrab& operator=(const ServerGrab&) = delete;

 private:
  const Connection& _connection;
};

bool isMapEvent(const xcb_generic_event_t& event, uint8_t firstEvent) {
  if ((event.response_type & 0x7f) != firstEvent) return false;
  // all events of the extension share one number; the kind is in the second byte
  return event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY;
}

}  // namespace

BorrowedKeys::BorrowedKeys(Connection& output, InputSender& sender)
    : _output(output), _sender(sender) {
  useKeyboardExtension(_output);
  useKeyboardExtension(_events);
  // as the output: not to be held up by who grabs the whole server
  xcb_test_grab_control(_events.get(), 1);
  const auto* extension = xcb_get_extension_data(_events.get(), &xcb_xkb_id);
  if (extension != nullptr) _firstEvent = extension->first_event;
  constexpr uint16_t kinds = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  xcb_xkb_select_events(_events.get(), XCB_XKB_ID_USE_CORE_KBD, kinds, 0, kinds, 0xff, 0xff,
                        nullptr);
  _events.finish();
  if (auto fetched = fetchKeymap(_output.get())) _now = std::move(*fetched);
  if (const Held& left = _sender.leftOver(); !left.meanings.empty()) {
    // only what bears this program's marks: the user may have another layout since
    KeyMeanings ours;
    for (const auto& [code, meaning] : left.meanings) {
      if (isTextKey(_now.keys[code]) || isSubstitute(_now.keys[code])) ours[code] = meaning;
    }
    putBack(ours);
    _sender.keepMeanings({});
  }
  _layout = _now;
}

bool BorrowedKeys::followChanges() {
  bool changed = false;
  while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(_events.get())}) {
    changed = changed || isMapEvent(*event, _firstEvent);
  }
  if (changed) {
    auto fetched = fetchKeymap(_output.get());
    if (fetched) adopt(std::move(*fetched));
  }
  return _output.isAlive();
}

bool BorrowedKeys::isIntact(const Keymap& fetched) const {
  return std::all_of(_originals.begin(), _originals.end(), [&](const auto& original) {
    return fetched.keys[original.first] == _now.keys[original.first];
  });
}

void BorrowedKeys::adopt(Keymap fetched) {
  if (!isIntact(fetched)) {
    KeyMeanings ours;
    for (const auto& [code, meaning] : _originals) {
      if (fetched.keys[code] == _now.keys[code]) ours[code] = meaning;
    }
    _now = std::move(fetched);
    putBack(ours);
    forget();
    return;
  }
  _now = std::move(fetched);
  _layout = _now;
  for (const auto& [code, meaning] : _originals) _layout.keys[code] = meaning;
}

std::optional<BorrowedKeys::TextPlace> BorrowedKeys::textPlace(Keysym keysym) const {
  const auto slot = _text.find(keysym);
  if (!slot) return std::nullopt;
  return placeOf(*slot);
}

std::optional<Keycode> BorrowedKeys::substitute(const UsKey& key) const {
  const auto slot = _substitutes.find(key.plain);
  if (!slot) return std::nullopt;
  return _substituteCodes[*slot];
}

void BorrowedKeys::useText(Keysym keysym) {
  if (const auto slot = _text.find(keysym)) _text.use(*slot, ++_time);
}

void BorrowedKeys::useSubstitute(const UsKey& key) {
  if (const auto slot = _substitutes.find(key.plain)) _substitutes.use(*slot, ++_time);
}

// The first groups of all keys come first: mostly they need no other group to be made active.
BorrowedKeys::TextPlace BorrowedKeys::placeOf(size_t slot) const {
  const size_t keys = _textCodes.size();
  return {_textCodes[slot % keys], static_cast<uint8_t>(slot / keys)};
}

KeyMeaning BorrowedKeys::textMeaning(size_t key) const {
  std::array<TextMeaning, kTextGroups> groups;
  for (size_t group = 0; group < groups.size(); ++group) {
    const Keysym keysym = _text.at(group * _textCodes.size() + key);
    groups[group].keysym = keysym;
    // Return, Tab and the like: some programs go by the key
    if ((keysym & 0xffffff00) == 0xff00) groups[group].deliveredAs = _layout.keyFor(keysym, 0);
  }
  return textKey(_textCodes[key], groups);
}

bool BorrowedKeys::takesPlacesAway(const Wanted& wanted) const {
  if (!isBorrowing()) return false;
  size_t missing = 0;
  size_t empty = 0;
  std::set<Keysym> seen;
  for (const Keysym keysym : wanted.text)
    missing += !_text.find(keysym) && seen.insert(keysym).second;
  for (size_t slot = 0; slot < _text.size(); ++slot) empty += _text.at(slot) == kNoKeysym;
  if (missing > empty) return true;
  missing = empty = 0;
  for (const UsKey& key : wanted.keys) missing += !_substitutes.find(key.plain);
  for (size_t slot = 0; slot < _substitutes.size(); ++slot) {
    empty += _substitutes.at(slot) == kNoKeysym;
  }
  return missing > empty;
}

bool BorrowedKeys::place(const Wanted& wanted) {
  const bool first = !isBorrowing();
  if (first && !borrow()) return false;
  std::set<Keycode> changed;
  bool any = false;

  // no more than there are places, else those needed first might find none
  std::set<Keysym> needed;
  for (const Keysym keysym : wanted.text) {
    if (needed.size() < _text.size()) needed.insert(keysym);
  }
  const auto neededText = [&](size_t slot) { return needed.contains(_text.at(slot)); };
  const auto takeEmpty = [&](Keysym keysym) {
    if (_text.find(keysym)) return;
    if (const auto slot = _text.takeEmpty(keysym)) changed.insert(placeOf(*slot).code);
  };
  for (const Keysym keysym : wanted.text) {
    if (_text.find(keysym) || !needed.contains(keysym)) continue;
    auto slot = _text.takeEmpty(keysym);
    if (!slot) slot = _text.takeOldest(keysym, _time, neededText);
    if (!slot) break;
    any = true;
    changed.insert(placeOf(*slot).code);
  }
  for (const Keysym keysym : needed) {
    for (const Keysym companion : companionsOf(keysym)) takeEmpty(companion);
  }
  if (first) {
    takeEmpty(keysyms::Return);
    for (const Keysym keysym : companionsOf(' ')) takeEmpty(keysym);
  }

  const auto mustStay = [&](size_t slot) {
    const auto is = [&](const UsKey& key) { return key.plain == _substitutes.at(slot); };
    return wanted.held.test(_substituteCodes[slot]) ||
           std::any_of(wanted.keys.begin(), wanted.keys.end(), is);
  };
  KeyMeanings meanings;
  for (const UsKey& key : wanted.keys) {
    if (_substitutes.find(key.plain)) continue;
    auto slot = _substitutes.takeEmpty(key.plain);
    if (!slot) slot = _substitutes.takeOldest(key.plain, _time, mustStay);
    if (!slot) break;
    any = true;
    meanings[_substituteCodes[*slot]] = substituteFor(key);
  }
  for (size_t key = 0; key < _textCodes.size(); ++key) {
    if (first || changed.contains(_textCodes[key])) meanings[_textCodes[key]] = textMeaning(key);
  }
  if (meanings.empty()) return any;

  const bool newActions = std::any_of(meanings.begin(), meanings.end(), [&](const auto& meaning) {
    return meaning.second.actions != _now.keys[meaning.first].actions;
  });
  {
    const ServerGrab grab(_output);
    sendKeysyms(_output.get(), _now, meanings);
    if (newActions) sendActions(_output.get(), _now, meanings);
  }
  // has the server's word on it, whoever else may have changed the map meanwhile
  _events.finish();
  followChanges();
  return any && isBorrowing();
}

bool BorrowedKeys::borrow() {
  if (!followChanges() || !mayBorrow()) return false;
  choose();
  if (_textCodes.empty()) return false;
  for (const auto* codes : {&_textCodes, &_substituteCodes}) {
    for (const Keycode code : *codes) _originals[code] = _layout.keys[code];
  }
  _text = SlotPool(_textCodes.size() * kTextGroups);
  _substitutes = SlotPool(_substituteCodes.size());
  _sender.keepMeanings(_originals);
  return true;
}

void BorrowedKeys::choose() {
  const SpareKeys spare = spareKeysOf(_layout);
  std::vector<Keycode> codes = spare.unused;
  const auto rare = withoutGrabbed(spare.rare);
  codes.insert(codes.end(), rare.begin(), rare.end());
  const size_t substitutes = std::min(kMostSubstitutes, codes.size() / 4);
  const auto border = codes.end() - static_cast<std::ptrdiff_t>(substitutes);
  _textCodes.assign(codes.begin(), border);
  _substituteCodes.assign(border, codes.end());
}

// A key that some program has taken for itself everywhere (a launch key that starts something)
// would go to that program. Only one program can, so who tries learns of it.
std::vector<Keycode> BorrowedKeys::withoutGrabbed(std::vector<Keycode> codes) {
  std::vector<xcb_void_cookie_t> tries;
  for (const Keycode code : codes) {
    tries.push_back(xcb_grab_key_checked(_events.get(), 0, _events.root(), XCB_MOD_MASK_ANY, code,
                                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    xcb_ungrab_key(_events.get(), code, _events.root(), XCB_MOD_MASK_ANY);
  }
  std::vector<Keycode> free;
  for (size_t i = 0; i < codes.size(); ++i) {
    const Received<xcb_generic_error_t> taken{xcb_request_check(_events.get(), tries[i])};
    if (taken == nullptr) free.push_back(codes[i]);
  }
  return free;
}

void BorrowedKeys::giveBack() {
  followChanges();
  if (!isBorrowing()) return;
  putBack(_originals);
  forget();
}

void BorrowedKeys::putBack(const KeyMeanings& originals) {
  if (!originals.empty()) {
    const ServerGrab grab(_output);
    sendActions(_output.get(), _now, originals);
    sendKeysyms(_output.get(), _now, originals);
  }
  _events.finish();
}

void BorrowedKeys::forget() {
  _originals.clear();
  _text = SlotPool(0);
  _substitutes = SlotPool(0);
  _sender.keepMeanings({});
  if (auto fetched = fetchKeymap(_output.get())) _now = std::move(*fetched);
  _layout = _now;
}

}  // namespace tapdeck::quartz
