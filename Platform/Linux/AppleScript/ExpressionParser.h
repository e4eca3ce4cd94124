#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Linux/AppleScript/Syntax.h"
#include "Platform/Linux/AppleScript/Tokens.h"

namespace tapdeck::applescript {

/// Counts how deep the parser is in the program, for as long as it lives; throws ScriptError past
/// what the stack can bear.
class Nesting {
 public:
  explicit Nesting(const Tokens& tokens, int& depth);
  ~Nesting() { --_depth; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  int& _depth;
};

/// Parses what has a value: expressions, and the commands that stand in them.
class ExpressionParser {
 public:
  explicit ExpressionParser(Tokens& tokens) : _tokens(tokens) {}

  ExpressionPtr expression() { return either(); }
  /// An expression without operators: a name, a property of something, a literal, a command, ...
  ExpressionPtr reference();

  /// Takes a variable's name, which is set here.
  std::string variableToSet();
  void isSet(const std::string& variable) { _set.insert(variable); }
  /// Throws for the first variable that is set nowhere: its name is no word of this program.
  void checkVariables() const;

  /// Whose terms are known at this place; none outside of `tell`.
  std::optional<Application> application;
  /// How deep the parser is in the program.
  int depth = 0;

 private:
  struct Operator {
    std::initializer_list<std::string_view> words;
    BinaryOperator operation;
  };
  using Level = ExpressionPtr (ExpressionParser::*)();

  ExpressionPtr either();
  ExpressionPtr both();
  ExpressionPtr negation();
  ExpressionPtr comparison();
  ExpressionPtr coercion();
  ExpressionPtr concatenation();
  ExpressionPtr sum();
  ExpressionPtr product();
  ExpressionPtr power();
  ExpressionPtr sign();
  ExpressionPtr primary();

  ExpressionPtr binary(Level operand, std::initializer_list<Operator> operators);
  ExpressionPtr unary(size_t start, UnaryOperator operation, ExpressionPtr operand);
  ExpressionPtr literalWord();
  ExpressionPtr term();
  ExpressionPtr property(size_t start, Property property);
  ExpressionPtr element(size_t start, Element element);
  ExpressionPtr owner();
  ExpressionPtr variable();
  ExpressionPtr command();
  ExpressionPtr setVolume(size_t start);

  bool acceptOperator(const Operator& candidate);
  const Term* acceptTerm();
  Property possessed();
  Type type();
  ExpressionPtr make(size_t start, decltype(Expression::content) content,
                     std::initializer_list<int> depths = {});

  Tokens& _tokens;
  std::set<std::string, std::less<>> _set;
  std::vector<Token> _used;
};

}  // namespace tapdeck::applescript
