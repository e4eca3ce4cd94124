#include "Platform/Linux/X11/Keyboard/TextPlan.h"

#include <algorithm>
#include <optional>

#include "Platform/Linux/X11/Keyboard/Keysyms.h"

namespace tapdeck::x11 {
namespace {

constexpr Keysym kUnicode = 0x01000000;
constexpr char32_t kReplacement = 0xFFFD;

char32_t nextCharacter(std::u16string_view& text) {
  const char32_t first = text.front();
  text.remove_prefix(1);
  if (first < 0xD800 || first > 0xDFFF) return first;
  const bool isPair =
      first < 0xDC00 && !text.empty() && text.front() >= 0xDC00 && text.front() <= 0xDFFF;
  if (!isPair) return kReplacement;
  const char32_t second = text.front();
  text.remove_prefix(1);
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

std::optional<Keysym> keysymForControl(char32_t control) {
  switch (control) {
    case U'\n':
    case U'\r':
      return keysyms::Return;
    case U'\t':
      return keysyms::Tab;
    case U'\b':
      return keysyms::BackSpace;
    case 0x1B:
      return keysyms::Escape;
    case 0x7F:
      return keysyms::Delete;
    default:
      return std::nullopt;
  }
}

bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

struct Range {
  char32_t first;
  char32_t last;
};
using Alphabet = std::vector<Range>;

const std::vector<Alphabet>& alphabets() {
  static const std::vector<Alphabet> all = {
      {{' ', ' '}, {'a', 'z'}, {',', '.'}, {'0', '9'}, {'A', 'Z'}, {'!', '~'}},
      // what the European languages on top of Latin have in common, then what few have
      {{0xE0, 0xF6}, {0xF8, 0xFF}, {0xC0, 0xD6}, {0xD8, 0xDF}},
      {{0x3B1, 0x3C9}, {0x3AC, 0x3AF}, {0x3CC, 0x3CE}, {0x391, 0x3A1}, {0x3A3, 0x3A9}},
      {{0x430, 0x44F}, {0x451, 0x451}, {0x410, 0x42F}, {0x401, 0x401}},
      {{0x5D0, 0x5EA}},
      {{0x627, 0x63A}, {0x641, 0x64A}, {0x621, 0x626}, {0x60C, 0x60C}},
      {{0x3041, 0x3093}, {0x3001, 0x3002}},
  };
  return all;
}

bool contains(const Alphabet& alphabet, Keysym keysym) {
  return std::any_of(alphabet.begin(), alphabet.end(), [keysym](const Range& range) {
    return keysym >= keysymForCharacter(range.first) && keysym <= keysymForCharacter(range.last);
  });
}

}  // namespace

Keysym keysymForCharacter(char32_t character) {
  return character <= 0xFF ? character : kUnicode + character;
}

std::vector<Keysym> keysymsForText(std::u16string_view text) {
  std::vector<Keysym> keysyms;
  char32_t previous = 0;
  while (!text.empty()) {
    const char32_t character = nextCharacter(text);
    const bool endsLineAgain = character == U'\n' && previous == U'\r';
    previous = character;
    if (endsLineAgain) continue;
    if (!isControl(character)) {
      keysyms.push_back(keysymForCharacter(character));
    } else if (const auto control = keysymForControl(character)) {
      keysyms.push_back(*control);
    }
  }
  return keysyms;
}

std::vector<Keysym> companionsOf(Keysym keysym) {
  std::vector<Keysym> companions{keysym};
  for (const Alphabet& alphabet : alphabets()) {
    if (!contains(alphabet, keysym)) continue;
    for (const Range& range : alphabet) {
      for (char32_t each = range.first; each <= range.last; ++each) {
        companions.push_back(keysymForCharacter(each));
      }
    }
    break;
  }
  return companions;
}

}  // namespace tapdeck::x11
