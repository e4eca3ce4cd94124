#include "Platform/Linux/AppleScript/Lexer.h"

#include <glib.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace tapdeck::applescript {
namespace {

constexpr size_t kLongestSource = size_t{1} << 20;
/// Integers beyond are reals.
constexpr int64_t kLargestInteger = 536870911;

constexpr std::string_view kSymbols[] = {"<=", ">=", "/=", "'s", "≤", "≥", "≠", "÷", "&", "+",
                                         "-",  "*",  "/",  "^",  "=", "<", ">", "(", ")", ","};

bool startsWord(gunichar character) {
  return character == '_' || g_unichar_isalpha(character) != FALSE;
}

bool isDigit(gunichar character) {
  return character >= '0' && character <= '9';
}

bool isLineEnd(gunichar character) {
  return character == '\n' || character == '\r';
}

class Lexer {
 public:
  explicit Lexer(std::string_view source) : _rest(source) {
    if (source.size() > kLongestSource) fail("the script is too long");
    if (g_utf8_validate_len(source.data(), source.size(), nullptr) == FALSE) {
      fail("the script is no UTF-8 text");
    }
  }

  std::vector<Token> tokens() {
    while (skipBlank(), !_rest.empty()) readToken();
    add(Token::Kind::end, _place);
    return std::move(_tokens);
  }

 private:
  gunichar next() const { return _rest.empty() ? 0 : g_utf8_get_char(_rest.data()); }

  /// Takes one character.
  std::string_view take() {
    const auto size = static_cast<size_t>(g_utf8_next_char(_rest.data()) - _rest.data());
    const auto taken = _rest.substr(0, size);
    _rest.remove_prefix(size);
    ++_place;
    return taken;
  }

  bool accept(std::string_view text) {
    if (!_rest.starts_with(text)) return false;
    for (const size_t rest = _rest.size() - text.size(); _rest.size() > rest;) take();
    return true;
  }

  template <typename Fits>
  std::string takeWhile(Fits fits) {
    std::string text;
    while (!_rest.empty() && fits(next())) text += take();
    return text;
  }

  [[noreturn]] void fail(const std::string& what) const {
    throw ScriptError{kSyntax, "Expected expression, etc. but " + what + ".", "", _place,
                      _place + 1};
  }

  void add(Token::Kind kind, size_t start, std::string text = {}, Value value = {}) {
    _tokens.push_back({kind, std::move(text), std::move(value), start, _place});
  }

  void skipToLineEnd() {
    takeWhile([](gunichar character) { return !isLineEnd(character); });
  }

  void skipBlank() {
    for (;;) {
      if (next() == ' ' || next() == '\t' || next() == 0xA0) {
        take();
      } else if (accept("¬")) {
        takeWhile([](gunichar character) { return character == ' ' || character == '\t'; });
        if (!accept("\r\n") && !accept("\n") && !accept("\r")) fail("found unknown token");
      } else if (accept("(*")) {
        skipComment();
      } else if (next() == '#' || _rest.starts_with("--")) {
        skipToLineEnd();
      } else {
        return;
      }
    }
  }

  /// Comments of this kind may hold one another.
  void skipComment() {
    for (int depth = 1; depth > 0;) {
      if (_rest.empty()) fail("the comment has no end");
      if (accept("(*")) {
        ++depth;
      } else if (accept("*)")) {
        --depth;
      } else {
        take();
      }
    }
  }

  void readToken() {
    const size_t start = _place;
    if (isLineEnd(next())) {
      take();
      add(Token::Kind::lineEnd, start);
    } else if (startsWord(next())) {
      readWord();
    } else if (isDigit(next())) {
      readNumber();
    } else if (accept("\"")) {
      readText(start);
    } else if (accept("|")) {
      std::string name = takeWhile([](gunichar c) { return c != '|' && !isLineEnd(c); });
      if (!accept("|")) fail("the name has no end");
      add(Token::Kind::identifier, start, std::move(name));
    } else {
      readSymbol();
    }
  }

  void readWord() {
    const size_t start = _place;
    const std::string word = takeWhile([](gunichar c) { return startsWord(c) || isDigit(c); });
    char* lower = g_utf8_strdown(word.c_str(), static_cast<gssize>(word.size()));
    std::string text = lower;
    g_free(lower);
    if (text != "the") add(Token::Kind::word, start, std::move(text));
  }

  void readNumber() {
    const size_t start = _place;
    std::string text = takeWhile(isDigit);
    bool isReal = false;
    if (_rest.size() > 1 && next() == '.' && isDigit(static_cast<unsigned char>(_rest[1]))) {
      isReal = true;
      text += take();
      text += takeWhile(isDigit);
    }
    readExponent(text, isReal);
    if (startsWord(next())) fail("found unknown token");

    double real = 0;
    const auto outcome = std::from_chars(text.data(), text.data() + text.size(), real);
    if (outcome.ec != std::errc()) fail("the number is out of range");
    if (isReal || real > static_cast<double>(kLargestInteger)) {
      add(Token::Kind::literal, start, {}, real);
    } else {
      add(Token::Kind::literal, start, {}, static_cast<int64_t>(real));
    }
  }

  void readExponent(std::string& number, bool& isReal) {
    if (next() != 'e' && next() != 'E') return;
    const size_t digit = _rest.size() > 1 && (_rest[1] == '+' || _rest[1] == '-') ? 2 : 1;
    if (_rest.size() <= digit || !isDigit(static_cast<unsigned char>(_rest[digit]))) return;
    isReal = true;
    take();
    number += "e";
    if (digit == 2) number += take();
    number += takeWhile(isDigit);
  }

  void readText(size_t start) {
    std::string text;
    while (!accept("\"")) {
      if (_rest.empty()) fail("the text has no end");
      if (accept("\\")) {
        text += escaped();
      } else {
        text += take();
      }
    }
    add(Token::Kind::literal, start, {}, std::move(text));
  }

  char escaped() {
    constexpr std::pair<std::string_view, char> kEscapes[] = {
        {"\"", '"'}, {"\\", '\\'}, {"n", '\n'}, {"r", '\r'}, {"t", '\t'}};
    for (const auto& [letter, character] : kEscapes) {
      if (accept(letter)) return character;
    }
    fail("found unknown token");
  }

  void readSymbol() {
    const size_t start = _place;
    const auto* symbol =
        std::ranges::find_if(kSymbols, [this](std::string_view each) { return accept(each); });
    if (symbol == std::end(kSymbols)) fail("found unknown token");
    add(Token::Kind::symbol, start, std::string(*symbol));
  }

  std::string_view _rest;
  size_t _place = 0;
  std::vector<Token> _tokens;
};

}  // namespace

std::vector<Token> tokensOf(std::string_view source) {
  return Lexer(source).tokens();
}

}  // namespace tapdeck::applescript
