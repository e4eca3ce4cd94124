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
    if (_tokens.peek().kind != Token::Kind::end) _tokens.fail();
    return statements;
  }

 private:
  /// The statements up to a line that belongs to the statement around them, such as `end tell`.
  Block block() {
    Block statements;
    for (;;) {
      while (_tokens.peek().kind == Token::Kind::lineEnd) _tokens.take();
      const Token& next = _tokens.peek();
      if (next.kind == Token::Kind::end || next.isWord("end") || next.isWord("on")) {
        return statements;
      }
      statements.push_back(statement());
      if (!_tokens.isAtLineEnd()) _tokens.fail();
    }
  }

  /// A block that begins on the next line.
  Block lines() {
    if (_tokens.peek().kind != Token::Kind::lineEnd) _tokens.fail();
    return block();
  }

  Statement statement() {
    const Nesting nesting(_tokens, _expressions.depth);
    const size_t start = _tokens.peek().start;
    auto content = this->content();
    return {std::move(content), start, _tokens.end()};
  }

  Statement::Content content() {
    if (_tokens.accept("tell")) return tell();
    if (_tokens.accept("try")) return attempt();
    if (_tokens.accept("if")) return choice();
    if (_tokens.accept("return")) return Return{_expressions.expression()};
    if (_tokens.accept("set")) return set();
    if (_tokens.accept("write")) {
      ExpressionPtr data = _expressions.expression();
      _tokens.expect({"to"});
      return Write{std::move(data), _expressions.reference()};
    }
    if (_tokens.accept({"close", "access"})) return CloseAccess{_expressions.reference()};
    if (const auto command = _expressions.acceptTerm<Command>()) {
      return Perform{_expressions.application.value(), *command};
    }
    return Evaluate{_expressions.expression()};
  }

  Statement::Content set() {
    if (_tokens.accept({"volume", "output", "volume"})) {
      return SetVolume{_expressions.expression(), nullptr};
    }
    if (_tokens.accept({"volume", "output", "muted"})) {
      return SetVolume{nullptr, _expressions.expression()};
    }
    if (_tokens.accept("eof")) {
      ExpressionPtr file = _expressions.reference();
      return SetEof{std::move(file), valueToSet()};
    }
    if (const auto property = _expressions.acceptTerm<Property>()) {
      return SetProperty{*property, valueToSet()};
    }
    std::string name = _expressions.variableToSet();
    return SetVariable{std::move(name), valueToSet()};
  }

  ExpressionPtr valueToSet() {
    _tokens.expect({"to"});
    return _expressions.expression();
  }

  Statement::Content tell() {
    _tokens.expect({"application"});
    const Application application = this->application();
    const auto outer = std::exchange(_expressions.application, application);
    Block body;
    if (_tokens.accept("to")) {
      body.push_back(statement());
    } else {
      body = lines();
      _tokens.expect({"end", "tell"});
    }
    _expressions.application = outer;
    return Tell{application, std::move(body)};
  }

  Application application() {
    const Token& token = _tokens.peek();
    const auto* name = token.value.getIf<std::string>();
    if (name == nullptr) _tokens.fail();
    const auto application = applicationNamed(*name);
    // the terms of an unknown application are unknown
    if (!application) {
      throw ScriptError{kNotFound, "Can’t get application \"" + *name + "\".", "", token.start,
                        token.end};
    }
    _tokens.take();
    return *application;
  }

  Statement::Content attempt() {
    Try attempt{.body = lines(), .handler = {}};
    if (_tokens.accept({"on", "error"})) attempt.handler = lines();
    _tokens.expect({"end", "try"});
    return attempt;
  }

  Statement::Content choice() {
    If choice{.condition = _expressions.expression(), .body = {}};
    _tokens.expect({"then"});
    choice.body.push_back(statement());
    return choice;
  }

  Tokens _tokens;
  ExpressionParser _expressions;
};

}  // namespace

Block parse(std::string_view source) {
  return Parser(source).program();
}

}  // namespace tapdeck::applescript
