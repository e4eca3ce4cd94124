#include "Platform/Linux/AppleScript/ExpressionParser.h"

#include <algorithm>

namespace tapdeck::applescript {
namespace {

// Every expression may be nested in another; this many are far from overflowing the stack.
constexpr int kMaxDepth = 100;
constexpr int kMaxExpressions = 1000;

[[noreturn]] void failTooDeep(const Token& at) {
  throw ScriptError{kTooDeep, "The program is too large.", "", at.start, at.end};
}

}  // namespace

Nesting::Nesting(const Tokens& tokens, int& depth) : _depth(depth) {
  if (_depth >= kMaxDepth) failTooDeep(tokens.peek());
  ++_depth;
}

ExpressionPtr ExpressionParser::make(decltype(Expression::content) content) {
  if (++_made > kMaxExpressions) failTooDeep(_tokens.peek());
  return std::make_unique<Expression>(Expression{std::move(content)});
}

// ---- operators

ExpressionPtr ExpressionParser::binary(Level operand, std::initializer_list<Operator> operators) {
  ExpressionPtr left = (this->*operand)();
  for (;;) {
    const auto* found = std::ranges::find_if(operators, [this](const Operator& each) {
      return _tokens.acceptSymbol(each.text) || _tokens.accept(each.text);
    });
    if (found == operators.end()) return left;
    ExpressionPtr right = (this->*operand)();
    left = make(Binary{found->operation, std::move(left), std::move(right)});
  }
}

ExpressionPtr ExpressionParser::negation() {
  const Nesting nesting(_tokens, depth);
  if (!_tokens.accept("not")) return comparison();
  ExpressionPtr operand = negation();
  return make(Unary{UnaryOperator::logicalNot, std::move(operand)});
}

ExpressionPtr ExpressionParser::comparison() {
  return binary(&ExpressionParser::coercion, {{"is", BinaryOperator::equal}});
}

ExpressionPtr ExpressionParser::coercion() {
  ExpressionPtr operand = concatenation();
  if (!_tokens.accept("as")) return operand;
  _tokens.expect({"text"});
  return make(AsText{std::move(operand)});
}

ExpressionPtr ExpressionParser::concatenation() {
  return binary(&ExpressionParser::sum, {{"&", BinaryOperator::concatenate}});
}

ExpressionPtr ExpressionParser::sum() {
  return binary(&ExpressionParser::reference,
                {{"+", BinaryOperator::add}, {"-", BinaryOperator::subtract}});
}

// ---- operands

ExpressionPtr ExpressionParser::reference() {
  if (!_tokens.accept("exists")) return primary();
  ExpressionPtr operand = primary();
  return make(Unary{UnaryOperator::exists, std::move(operand)});
}

ExpressionPtr ExpressionParser::primary() {
  const Nesting nesting(_tokens, depth);
  if (_tokens.peek().kind == Token::Kind::literal) {
    return make(Literal{_tokens.take().value});
  }
  if (_tokens.acceptSymbol("(")) {
    ExpressionPtr inner = expression();
    if (!_tokens.acceptSymbol(")")) _tokens.fail();
    return inner;
  }
  if (_tokens.accept("tab")) return make(Literal{"\t"});
  if (_tokens.accept({"get", "volume", "settings"})) return make(GetVolumeSettings());
  if (_tokens.accept("get")) return expression();
  if (_tokens.accept({"posix", "file"})) {
    ExpressionPtr path = primary();
    return make(PosixFile{std::move(path)});
  }
  if (_tokens.accept({"open", "for", "access"})) {
    ExpressionPtr file = primary();
    _tokens.expect({"with", "write", "permission"});
    return make(OpenForAccess{std::move(file)});
  }
  if (const auto property = acceptTerm<Property>()) {
    ExpressionPtr whose = owner();
    return make(PropertyOf{*property, std::move(whose)});
  }
  if (const auto element = acceptTerm<Element>()) {
    ExpressionPtr index = primary();
    ExpressionPtr whose = owner();
    return make(ElementOf{*element, std::move(index), std::move(whose)});
  }
  if (const auto constant = acceptTerm<Constant>()) return make(Literal{*constant});
  if (!_variables.contains(_tokens.peek().text)) _tokens.fail();
  const std::string name = _tokens.take().text;
  return make(Variable{name});
}

std::pair<const Term*, size_t> ExpressionParser::nextTerm() const {
  std::string words;
  std::pair<const Term*, size_t> longest{nullptr, 0};
  for (size_t ahead = 0; ahead < kMaxWords; ++ahead) {
    if (_tokens.peek(ahead).kind != Token::Kind::word) break;
    words += (ahead == 0 ? "" : " ") + _tokens.peek(ahead).text;
    if (const Term* found = findTerm(application, words)) longest = {found, ahead + 1};
  }
  return longest;
}

ExpressionPtr ExpressionParser::owner() {
  return _tokens.accept("of") ? primary() : nullptr;
}

std::string ExpressionParser::variableToSet() {
  if (_tokens.peek().kind != Token::Kind::word) _tokens.fail();
  return *_variables.insert(_tokens.take().text).first;
}

}  // namespace tapdeck::applescript
