#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Linux/AppleScript/Lexer.h"

namespace tapdeck::applescript {

/// The tokens of a source as the parser goes through them.
class Tokens {
 public:
  explicit Tokens(std::string_view source) : _tokens(tokensOf(source)) {}

  /// The next one, or one further on; past the end it is the end.
  const Token& peek(size_t ahead = 0) const {
    return _tokens[std::min(_next + ahead, _tokens.size() - 1)];
  }
  const Token& take() {
    const Token& token = peek();
    _end = token.end;
    _next = std::min(_next + 1, _tokens.size() - 1);
    return token;
  }
  /// The end of the last token that was taken.
  size_t end() const { return _end; }

  bool isAtLineEnd() const {
    return peek().kind == Token::Kind::lineEnd || peek().kind == Token::Kind::end;
  }

  /// Takes the words if they come next, all of them.
  bool accept(std::initializer_list<std::string_view> words) {
    size_t ahead = 0;
    for (const auto word : words) {
      if (!peek(ahead++).isWord(word)) return false;
    }
    while (ahead-- > 0) take();
    return true;
  }
  bool accept(std::string_view word) { return accept({word}); }
  bool acceptSymbol(std::string_view symbol) {
    if (!peek().isSymbol(symbol)) return false;
    take();
    return true;
  }
  void expect(std::initializer_list<std::string_view> words) {
    if (!accept(words)) fail();
  }

  /// Throws the syntax error of a program that this interpreter does not know, at the next token.
  [[noreturn]] void fail() const {
    throw ScriptError{kSyntax, "This interpreter does not know " + describe(peek()) + ".", "",
                      peek().start, peek().end};
  }

 private:
  static std::string describe(const Token& token) {
    switch (token.kind) {
      case Token::Kind::lineEnd:
        return "what this line begins";
      case Token::Kind::end:
        return "what this script begins";
      case Token::Kind::literal:
        return token.value.getIf<std::string>() != nullptr ? "a text here" : "a number here";
      default:
        return "“" + token.text + "” here";
    }
  }

  std::vector<Token> _tokens;
  size_t _next = 0;
  size_t _end = 0;
};

}  // namespace tapdeck::applescript
