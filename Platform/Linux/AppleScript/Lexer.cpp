#include "Platform/Linux/AppleScript/Lexer.h"

#include <charconv>
#include <utility>

#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck::applescript {
namespace {

constexpr size_t kMaxSource = size_t{1} << 20;

constexpr std::string_view kSymbols = "&+-()";

bool startsWord(gunichar character) {
  return character == '_' || g_unichar_isalpha(character) != FALSE;
}

bool isDigit(gunichar character) {
  return character >= '0' && character <= '9';
}

class Lexer {
 public:
  explicit Lexer(std::string_view source) : _rest(source) {
    if (source.size() > kMaxSource) fail("so long a script");
    if (g_utf8_validate_len(source.data(), source.size(), nullptr) == FALSE) {
      fail("what is no UTF-8 text");
    }
  }

  std::vector<Token> tokens() {
    while (skipBlank(), !_rest.empty()) readToken();
    add(Token::Kind::end, _place);
    return std::move(_tokens);
  }

 private:
  gunichar next() const { return _rest.empty() ? 0 : g_utf8_get_char(_rest.data()); }

  size_t characterSize() const {
    return static_cast<size_t>(g_utf8_next_char(_rest.data()) - _rest.data());
  }

  /// Takes one character.
  std::string_view take() {
    const auto taken = _rest.substr(0, characterSize());
    _rest.remove_prefix(taken.size());
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
    throw ScriptError{kSyntax, "This interpreter does not know " + what + ".", "", _place,
                      _place + 1};
  }

  void add(Token::Kind kind, size_t start, std::string text = {}, Value value = {}) {
    _tokens.push_back({kind, std::move(text), std::move(value), start, _place});
  }

  /// Spaces, and line ends that are continued.
  void skipBlank() {
    for (;;) {
      if (next() == ' ' || next() == '\t') {
        take();
      } else if (accept("¬")) {
        if (!accept("\n")) fail("a “¬” within a line");
      } else {
        return;
      }
    }
  }

  void readToken() {
    const size_t start = _place;
    if (next() == '\n') {
      take();
      add(Token::Kind::lineEnd, start);
    } else if (startsWord(next())) {
      readWord();
    } else if (isDigit(next())) {
      readNumber();
    } else if (accept("\"")) {
      readText(start);
    } else {
      readSymbol();
    }
  }

  void readWord() {
    const size_t start = _place;
    const std::string word = takeWhile([](gunichar c) { return startsWord(c) || isDigit(c); });
    const glib::Text lower(g_utf8_strdown(word.c_str(), static_cast<gssize>(word.size())));
    add(Token::Kind::word, start, lower.get());
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
    if (startsWord(next())) fail("words that begin with a digit");

    double real = 0;
    const auto outcome = std::from_chars(text.data(), text.data() + text.size(), real);
    if (outcome.ec != std::errc()) fail("so large a number");
    if (isReal || real > static_cast<double>(kMaxInteger)) {
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
    std::string text = takeWhile([](gunichar c) { return c != '"' && c != '\\'; });
    if (next() == '\\') fail("“\\” in a text");
    if (!accept("\"")) fail("a text without an end");
    add(Token::Kind::literal, start, {}, std::move(text));
  }

  void readSymbol() {
    const size_t start = _place;
    const bool isKnown = kSymbols.find(_rest.front()) != std::string_view::npos;
    if (!isKnown) fail("“" + std::string(_rest, 0, characterSize()) + "”");
    add(Token::Kind::symbol, start, std::string(take()));
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
