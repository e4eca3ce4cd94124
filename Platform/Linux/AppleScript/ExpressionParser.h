#pragma once

#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "Platform/Linux/AppleScript/Syntax.h"
#include "Platform/Linux/AppleScript/Tokens.h"

namespace tapdeck::applescript {

/// Counts one level of nesting for as long as it lives; throws ScriptError at a depth that might
/// overflow the stack.
class Nesting {
 public:
  explicit Nesting(const Tokens& tokens, int& depth);
  ~Nesting() { --_depth; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  int& _depth;
};

/// Parses expressions.
class ExpressionParser {
 public:
  explicit ExpressionParser(Tokens& tokens) : _tokens(tokens) {}

  ExpressionPtr expression() { return negation(); }
  /// An expression without operators: a name, a property of something, a literal, ...
  ExpressionPtr reference();

  /// Takes a term that means something of this kind if one comes next.
  template <typename Kind>
  std::optional<Kind> acceptTerm() {
    const auto [term, length] = nextTerm();
    const auto* meaning = term != nullptr ? std::get_if<Kind>(&term->meaning) : nullptr;
    if (meaning == nullptr) return std::nullopt;
    for (size_t taken = 0; taken < length; ++taken) _tokens.take();
    return *meaning;
  }
  /// Takes the name of a variable, which may be used from here on.
  std::string variableToSet();

  /// The application of the innermost `tell`, whose terms are known here; absent outside of `tell`.
  std::optional<Application> application;
  /// The depth of nesting.
  int depth = 0;

 private:
  using Level = ExpressionPtr (ExpressionParser::*)();
  struct Operator {
    std::string_view text;
    BinaryOperator operation;
  };

  // operators, those that bind least first
  ExpressionPtr negation();
  ExpressionPtr comparison();
  ExpressionPtr coercion();
  ExpressionPtr concatenation();
  ExpressionPtr sum();

  ExpressionPtr primary();
  ExpressionPtr binary(Level operand, std::initializer_list<Operator> operators);
  /// The longest term that comes next, and its number of words; null for none.
  std::pair<const Term*, size_t> nextTerm() const;
  /// `of` something; null when there is none.
  ExpressionPtr owner();
  ExpressionPtr make(decltype(Expression::content) content);

  Tokens& _tokens;
  std::set<std::string> _variables;
  int _made = 0;
};

}  // namespace tapdeck::applescript
