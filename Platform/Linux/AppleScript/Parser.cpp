#include "Platform/Linux/AppleScript/Parser.h"

#include <utility>

#include "Platform/Linux/AppleScript/ExpressionParser.h"

namespace tapdeck::applescript {
namespace {

/// Parses statements and what they are made of.
class Parser {
 public:
  explicit Parser(std::string_view source) : _tokens(source), _expressions(_tokens) {}

  Block program() {
    Block statements = block();
    if (_tokens.peek().kind != Token::Kind::end) _tokens.fail("end of script");
    _expressions.checkVariables();
    return statements;
  }

 private:
  /// Lines up to one that is part of the statement around them.
  Block block() {
    Block statements;
    for (;;) {
      while (_tokens.peek().kind == Token::Kind::lineEnd) _tokens.take();
      const Token& next = _tokens.peek();
      const bool isOver = next.kind == Token::Kind::end || next.isWord("end") ||
                          next.isWord("else") || next.isWord("on");
      if (isOver) return statements;
      statements.push_back(statement());
      if (!_tokens.isAtLineEnd()) _tokens.fail("end of line");
    }
  }

  void end(std::string_view word) {
    _tokens.expect("end");
    _tokens.accept(word);
  }

  Statement statement() {
    const Nesting nesting(_tokens, _expressions.depth);
    if (_tokens.accept("tell")) return tell();
    if (_tokens.accept("try")) return attempt();
    if (_tokens.accept("if")) return choice();
    if (_tokens.accept("return")) {
      return {Return{_tokens.isAtLineEnd() ? nullptr : _expressions.expression()}};
    }
    if (_tokens.accept("error")) return raise();
    if (_tokens.accept("copy")) {
      ExpressionPtr value = _expressions.expression();
      _tokens.expect("to");
      return {Set{target(), std::move(value)}};
    }
    const bool isCommand = _tokens.peek(1).isWord("volume") || _tokens.peek(1).isWord("eof");
    if (!isCommand && _tokens.accept("set")) {
      ExpressionPtr place = target();
      _tokens.expect("to");
      return {Set{std::move(place), _expressions.expression()}};
    }
    return {Evaluate{_expressions.expression()}};
  }

  /// What can be set: a property or a variable.
  ExpressionPtr target() {
    const Token first = _tokens.peek();
    ExpressionPtr place = _expressions.reference();
    if (const auto* variable = std::get_if<Variable>(&place->content)) {
      _expressions.isSet(variable->name);
    } else if (!std::holds_alternative<PropertyOf>(place->content)) {
      throw ScriptError{kSyntax,
                        "Expected variable name or property but found “" + first.text + "”.", "",
                        first.start, first.end};
    }
    return place;
  }

  Statement tell() {
    ExpressionPtr target = _expressions.reference();
    const auto outer = _expressions.application;
    if (const auto* named = std::get_if<ApplicationNamed>(&target->content)) {
      _expressions.application = applicationNamed(named->name);
      if (!_expressions.application) failToFind(*named, *target);
    }
    Block body;
    if (_tokens.accept("to")) {
      body.push_back(statement());
    } else {
      body = lines();
      end("tell");
    }
    _expressions.application = outer;
    return {Tell{std::move(target), std::move(body)}};
  }

  /// Nobody knows the terms of an application that is not there.
  [[noreturn]] static void failToFind(const ApplicationNamed& named, const Expression& at) {
    throw ScriptError{kNotFound, "Can’t get application \"" + named.name + "\".", "", at.start,
                      at.end};
  }

  /// A block that begins on the next line.
  Block lines() {
    if (_tokens.peek().kind != Token::Kind::lineEnd) _tokens.fail("end of line");
    return block();
  }

  Statement attempt() {
    Try attempt{.body = lines(), .message = {}, .number = {}, .handler = {}};
    if (_tokens.accept({"on", "error"})) {
      const auto hasName = [this] {
        return !_tokens.isAtLineEnd() && !_tokens.peek().isWord("number");
      };
      if (hasName()) attempt.message = _expressions.variableToSet();
      if (_tokens.accept("number")) attempt.number = _expressions.variableToSet();
      attempt.handler = lines();
    }
    _tokens.expect("end");
    if (!_tokens.accept("try")) _tokens.accept("error");
    return {std::move(attempt)};
  }

  Statement choice() {
    If choice;
    ExpressionPtr condition = _expressions.expression();
    _tokens.accept("then");
    if (!_tokens.isAtLineEnd()) {
      Block only;
      only.push_back(statement());
      choice.branches.emplace_back(std::move(condition), std::move(only));
      return {std::move(choice)};
    }
    choice.branches.emplace_back(std::move(condition), lines());
    while (_tokens.accept("else")) {
      if (!_tokens.accept("if")) {
        choice.otherwise = lines();
        break;
      }
      condition = _expressions.expression();
      _tokens.accept("then");
      choice.branches.emplace_back(std::move(condition), lines());
    }
    end("if");
    return {std::move(choice)};
  }

  Statement raise() {
    Raise raise;
    if (!_tokens.isAtLineEnd() && !_tokens.peek().isWord("number")) {
      raise.message = _expressions.expression();
    }
    if (_tokens.accept("number")) raise.number = _expressions.expression();
    return {std::move(raise)};
  }

  Tokens _tokens;
  ExpressionParser _expressions;
};

}  // namespace

Block parse(std::string_view source) {
  return Parser(source).program();
}

}  // namespace tapdeck::applescript
