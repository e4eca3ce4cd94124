#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Linux/AppleScript/Value.h"

namespace tapdeck::applescript {

struct Token {
  enum class Kind { word, literal, symbol, lineEnd, end };

  Kind kind = Kind::end;
  /// Of a word, in lower case; of a symbol, as it stands.
  std::string text;
  /// Of a literal.
  Value value;
  /// In characters from the start of the source.
  size_t start = 0;
  size_t end = 0;

  bool isWord(std::string_view word) const { return kind == Kind::word && text == word; }
  bool isSymbol(std::string_view symbol) const { return kind == Kind::symbol && text == symbol; }
};

/// Splits the source, UTF-8, into tokens. Continued line ends are left out; the last token is the
/// end.
/// Throws ScriptError (-2741).
std::vector<Token> tokensOf(std::string_view source);

}  // namespace tapdeck::applescript
