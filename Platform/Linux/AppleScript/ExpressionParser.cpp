#include "Platform/Linux/AppleScript/ExpressionParser.h"

#include <algorithm>
#include <iterator>

namespace tapdeck::applescript {
namespace {

/// What the stack bears with ease: levels of the program, and expressions within one another.
constexpr int kDeepestProgram = 100;
constexpr int kDeepestExpression = 500;

// Words of the language, which name no variable.
constexpr std::string_view kReserved[] = {
    "and",   "application", "as",     "begins", "considering", "contains", "copy",   "div",
    "else",  "end",         "ends",   "equals", "error",       "exists",   "false",  "from",
    "get",   "global",      "if",     "in",     "is",          "it",       "its",    "local",
    "me",    "missing",     "mod",    "my",     "not",         "of",       "on",     "or",
    "posix", "property",    "repeat", "return", "set",         "starts",   "tell",   "then",
    "to",    "true",        "try",    "using",  "whose",       "with",     "without"};

[[noreturn]] void failTooDeep(const Token& at) {
  throw ScriptError{kTooDeep, "The program is nested too deeply.", "", at.start, at.end};
}

int depthOf(const ExpressionPtr& expression) {
  return expression != nullptr ? expression->depth : 0;
}

}  // namespace

Nesting::Nesting(const Tokens& tokens, int& depth) : _depth(depth) {
  if (_depth >= kDeepestProgram) failTooDeep(tokens.peek());
  ++_depth;
}

ExpressionPtr ExpressionParser::make(size_t start, decltype(Expression::content) content,
                                     std::initializer_list<int> depths) {
  const int deepest = depths.size() == 0 ? 0 : std::max(depths);
  if (deepest >= kDeepestExpression) failTooDeep(_tokens.peek());
  return std::make_unique<Expression>(
      Expression{std::move(content), start, _tokens.end(), deepest + 1});
}

// ---- operators, the weakest first

bool ExpressionParser::acceptOperator(const Operator& candidate) {
  if (candidate.words.size() == 1 && _tokens.acceptSymbol(*candidate.words.begin())) return true;
  return _tokens.accept(candidate.words);
}

ExpressionPtr ExpressionParser::binary(Level operand, std::initializer_list<Operator> operators) {
  const size_t start = _tokens.peek().start;
  ExpressionPtr left = (this->*operand)();
  for (;;) {
    const auto* found = std::ranges::find_if(
        operators, [this](const Operator& each) { return acceptOperator(each); });
    if (found == operators.end()) return left;
    ExpressionPtr right = (this->*operand)();
    const auto depths = {depthOf(left), depthOf(right)};
    left = make(start, Binary{found->operation, std::move(left), std::move(right)}, depths);
  }
}

ExpressionPtr ExpressionParser::unary(size_t start, UnaryOperator operation,
                                      ExpressionPtr operand) {
  const auto depths = {depthOf(operand)};
  return make(start, Unary{operation, std::move(operand)}, depths);
}

ExpressionPtr ExpressionParser::either() {
  const Nesting nesting(_tokens, depth);
  return binary(&ExpressionParser::both, {{{"or"}, BinaryOperator::logicalOr}});
}

ExpressionPtr ExpressionParser::both() {
  return binary(&ExpressionParser::negation, {{{"and"}, BinaryOperator::logicalAnd}});
}

ExpressionPtr ExpressionParser::negation() {
  const size_t start = _tokens.peek().start;
  if (!_tokens.accept("not")) return comparison();
  const Nesting nesting(_tokens, depth);
  return unary(start, UnaryOperator::logicalNot, negation());
}

ExpressionPtr ExpressionParser::comparison() {
  using enum BinaryOperator;
  // of those that begin alike the longest comes first
  return binary(&ExpressionParser::coercion,
                {{{"is", "less", "than", "or", "equal", "to"}, lessOrEqual},
                 {{"is", "less", "than"}, less},
                 {{"is", "greater", "than", "or", "equal", "to"}, greaterOrEqual},
                 {{"is", "greater", "than"}, greater},
                 {{"is", "not", "equal", "to"}, notEqual},
                 {{"is", "equal", "to"}, equal},
                 {{"is", "not"}, notEqual},
                 {{"is"}, equal},
                 {{"equals"}, equal},
                 {{"contains"}, contains},
                 {{"starts", "with"}, startsWith},
                 {{"begins", "with"}, startsWith},
                 {{"ends", "with"}, endsWith},
                 {{"="}, equal},
                 {{"≠"}, notEqual},
                 {{"/="}, notEqual},
                 {{"<="}, lessOrEqual},
                 {{"≤"}, lessOrEqual},
                 {{">="}, greaterOrEqual},
                 {{"≥"}, greaterOrEqual},
                 {{"<"}, less},
                 {{">"}, greater}});
}

ExpressionPtr ExpressionParser::coercion() {
  const size_t start = _tokens.peek().start;
  ExpressionPtr operand = concatenation();
  while (_tokens.accept("as")) {
    const auto depths = {depthOf(operand)};
    const Type wanted = type();
    operand = make(start, Coercion{std::move(operand), wanted}, depths);
  }
  return operand;
}

ExpressionPtr ExpressionParser::concatenation() {
  return binary(&ExpressionParser::sum, {{{"&"}, BinaryOperator::concatenate}});
}

ExpressionPtr ExpressionParser::sum() {
  return binary(&ExpressionParser::product,
                {{{"+"}, BinaryOperator::add}, {{"-"}, BinaryOperator::subtract}});
}

ExpressionPtr ExpressionParser::product() {
  using enum BinaryOperator;
  return binary(&ExpressionParser::power, {{{"*"}, multiply},
                                           {{"/"}, divide},
                                           {{"÷"}, divide},
                                           {{"div"}, wholeDivide},
                                           {{"mod"}, remainder}});
}

ExpressionPtr ExpressionParser::power() {
  return binary(&ExpressionParser::sign, {{{"^"}, BinaryOperator::power}});
}

ExpressionPtr ExpressionParser::sign() {
  const size_t start = _tokens.peek().start;
  if (_tokens.acceptSymbol("-")) {
    const Nesting nesting(_tokens, depth);
    return unary(start, UnaryOperator::negate, sign());
  }
  return reference();
}

// ---- what stands between operators

ExpressionPtr ExpressionParser::reference() {
  const Nesting nesting(_tokens, depth);
  const size_t start = _tokens.peek().start;
  if (_tokens.accept("exists")) return unary(start, UnaryOperator::exists, reference());
  ExpressionPtr owner = primary();
  while (_tokens.acceptSymbol("'s")) {
    const auto depths = {depthOf(owner)};
    const Property property = possessed();
    owner = make(start, PropertyOf{property, std::move(owner)}, depths);
  }
  if (_tokens.accept("exists")) return unary(start, UnaryOperator::exists, std::move(owner));
  const bool isDenied = _tokens.accept({"is", "not", "running"});
  if (isDenied || _tokens.accept({"is", "running"})) {
    const auto depths = {depthOf(owner)};
    owner = make(start, PropertyOf{Property::running, std::move(owner)}, depths);
  }
  return isDenied ? unary(start, UnaryOperator::logicalNot, std::move(owner)) : std::move(owner);
}

ExpressionPtr ExpressionParser::primary() {
  const Nesting nesting(_tokens, depth);
  const size_t start = _tokens.peek().start;
  if (_tokens.peek().kind == Token::Kind::literal)
    return make(start, Literal{_tokens.take().value});
  if (_tokens.acceptSymbol("(")) {
    ExpressionPtr inner = expression();
    if (!_tokens.acceptSymbol(")")) _tokens.fail("“)”");
    return inner;
  }
  if (ExpressionPtr found = command()) return found;
  if (ExpressionPtr found = literalWord()) return found;
  if (_tokens.accept("application")) {
    const auto* name = _tokens.peek().value.getIf<std::string>();
    if (name == nullptr) _tokens.fail("the application’s name");
    _tokens.take();
    return make(start, ApplicationNamed{*name});
  }
  if (_tokens.accept({"posix", "file"})) {
    ExpressionPtr path = primary();
    const auto depths = {depthOf(path)};
    return make(start, PosixFile{std::move(path)}, depths);
  }
  if (_tokens.accept("it")) return make(start, It());
  if (_tokens.accept("its")) return make(start, PropertyOf{possessed(), make(start, It())}, {1});
  if (ExpressionPtr found = term()) return found;
  return variable();
}

ExpressionPtr ExpressionParser::literalWord() {
  static const std::pair<std::string_view, Value> kWords[] = {
      {"true", true},     {"false", false}, {"tab", "\t"},   {"return", "\r"},
      {"linefeed", "\n"}, {"space", " "},   {"quote", "\""}, {"pi", 3.141592653589793}};
  const size_t start = _tokens.peek().start;
  if (_tokens.accept({"missing", "value"})) return make(start, Literal{Missing()});
  for (const auto& [word, value] : kWords) {
    if (_tokens.accept(word)) return make(start, Literal{value});
  }
  return nullptr;
}

const Term* ExpressionParser::acceptTerm() {
  std::string words;
  const Term* longest = nullptr;
  size_t length = 0;
  for (size_t ahead = 0; ahead < kMostWords; ++ahead) {
    if (_tokens.peek(ahead).kind != Token::Kind::word) break;
    words += (ahead == 0 ? "" : " ") + _tokens.peek(ahead).text;
    if (const Term* found = findTerm(application, words)) {
      longest = found;
      length = ahead + 1;
    }
  }
  for (size_t taken = 0; taken < length; ++taken) _tokens.take();
  return longest;
}

ExpressionPtr ExpressionParser::term() {
  const size_t start = _tokens.peek().start;
  const Term* found = acceptTerm();
  if (found == nullptr) return nullptr;
  if (const auto* named = std::get_if<Property>(&found->meaning)) return property(start, *named);
  if (const auto* element = std::get_if<Element>(&found->meaning)) {
    return this->element(start, *element);
  }
  if (const auto* constant = std::get_if<Constant>(&found->meaning)) {
    return make(start, Literal{*constant});
  }
  return make(start, Perform{application.value(), std::get<Command>(found->meaning)});
}

Property ExpressionParser::possessed() {
  const Term* found = acceptTerm();
  const auto* property = found != nullptr ? std::get_if<Property>(&found->meaning) : nullptr;
  if (property == nullptr) _tokens.fail("a property");
  return *property;
}

ExpressionPtr ExpressionParser::property(size_t start, Property property) {
  ExpressionPtr owner = this->owner();
  const auto depths = {depthOf(owner)};
  return make(start, PropertyOf{property, std::move(owner)}, depths);
}

ExpressionPtr ExpressionParser::element(size_t start, Element element) {
  ExpressionPtr index = primary();
  ExpressionPtr owner = this->owner();
  const auto depths = {depthOf(index), depthOf(owner)};
  return make(start, ElementOf{element, std::move(index), std::move(owner)}, depths);
}

ExpressionPtr ExpressionParser::owner() {
  return _tokens.accept("of") ? primary() : nullptr;
}

ExpressionPtr ExpressionParser::variable() {
  const Token& token = _tokens.peek();
  const bool isName = token.kind == Token::Kind::identifier ||
                      (token.kind == Token::Kind::word &&
                       std::ranges::find(kReserved, token.text) == std::end(kReserved));
  if (!isName) _tokens.fail("expression, etc.");
  _used.push_back(token);
  const size_t start = token.start;
  const std::string name = _tokens.take().text;
  return make(start, Variable{name});
}

std::string ExpressionParser::variableToSet() {
  const ExpressionPtr named = variable();
  const std::string& name = std::get<Variable>(named->content).name;
  _set.insert(name);
  return name;
}

void ExpressionParser::checkVariables() const {
  for (const Token& token : _used) {
    if (_set.contains(token.text)) continue;
    throw ScriptError{kSyntax,
                      "Expected expression, etc. but found identifier “" + token.text + "”.", "",
                      token.start, token.end};
  }
}

Type ExpressionParser::type() {
  if (_tokens.accept("text") || _tokens.accept("string") || _tokens.accept({"unicode", "text"})) {
    return Type::text;
  }
  if (_tokens.accept("integer")) return Type::integer;
  if (_tokens.accept("real")) return Type::real;
  if (_tokens.accept("number")) return Type::number;
  if (_tokens.accept("boolean")) return Type::boolean;
  _tokens.fail("class name");
}

// ---- commands of every script

ExpressionPtr ExpressionParser::command() {
  const size_t start = _tokens.peek().start;
  if (_tokens.accept({"get", "volume", "settings"})) return make(start, GetVolumeSettings());
  if (_tokens.accept("get")) return expression();
  if (_tokens.accept({"set", "volume"})) return setVolume(start);
  if (_tokens.accept({"open", "for", "access"})) {
    ExpressionPtr file = reference();
    const bool forWriting = _tokens.accept({"with", "write", "permission"});
    const auto depths = {depthOf(file)};
    return make(start, OpenForAccess{std::move(file), forWriting}, depths);
  }
  if (_tokens.accept({"close", "access"})) {
    ExpressionPtr file = reference();
    const auto depths = {depthOf(file)};
    return make(start, CloseAccess{std::move(file)}, depths);
  }
  if (_tokens.accept({"set", "eof"})) {
    _tokens.accept("of");
    ExpressionPtr file = reference();
    _tokens.expect("to");
    ExpressionPtr size = expression();
    const auto depths = {depthOf(file), depthOf(size)};
    return make(start, SetEof{std::move(file), std::move(size)}, depths);
  }
  if (_tokens.accept("write")) {
    ExpressionPtr data = expression();
    _tokens.expect("to");
    ExpressionPtr file = reference();
    const auto depths = {depthOf(data), depthOf(file)};
    return make(start, Write{std::move(data), std::move(file)}, depths);
  }
  if (_tokens.accept("delay")) {
    ExpressionPtr seconds = expression();
    const auto depths = {depthOf(seconds)};
    return make(start, Delay{std::move(seconds)}, depths);
  }
  return nullptr;
}

ExpressionPtr ExpressionParser::setVolume(size_t start) {
  SetVolume volume;
  for (;;) {
    const bool isWithout = _tokens.accept("without");
    const bool isWith = !isWithout && _tokens.accept("with");
    if (_tokens.accept({"output", "muted"})) {
      volume.muted = isWith || isWithout ? make(start, Literal{isWith}) : expression();
    } else if (!isWith && !isWithout && _tokens.accept({"output", "volume"})) {
      volume.level = expression();
    } else if (isWith || isWithout || (volume.level == nullptr && volume.muted == nullptr)) {
      _tokens.fail("output volume, output muted, etc.");
    } else {
      break;
    }
  }
  const auto depths = {depthOf(volume.level), depthOf(volume.muted)};
  return make(start, std::move(volume), depths);
}

}  // namespace tapdeck::applescript
