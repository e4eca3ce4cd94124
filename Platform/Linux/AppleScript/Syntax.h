#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/AppleScript/Value.h"

namespace tapdeck::applescript {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Literal {
  Value value;
};
struct Variable {
  std::string name;
};
/// What the innermost `tell` addresses.
struct It {};
struct ApplicationNamed {
  std::string name;
};
struct PropertyOf {
  Property property;
  /// Null: of what the innermost `tell` addresses.
  ExpressionPtr owner;
};
struct ElementOf {
  Element element;
  ExpressionPtr index;
  ExpressionPtr owner;
};

enum class UnaryOperator { negate, logicalNot, exists };
struct Unary {
  UnaryOperator operation;
  ExpressionPtr operand;
};

enum class BinaryOperator {
  add,
  subtract,
  multiply,
  divide,
  wholeDivide,
  remainder,
  power,
  concatenate,
  equal,
  notEqual,
  less,
  lessOrEqual,
  greater,
  greaterOrEqual,
  contains,
  startsWith,
  endsWith,
  logicalAnd,
  logicalOr
};
struct Binary {
  BinaryOperator operation;
  ExpressionPtr left;
  ExpressionPtr right;
};

struct Coercion {
  ExpressionPtr operand;
  Type type;
};
struct PosixFile {
  ExpressionPtr path;
};

// Commands.
struct Perform {
  Application application;
  Command command;
};
struct GetVolumeSettings {};
struct SetVolume {
  ExpressionPtr level;
  ExpressionPtr muted;
};
struct OpenForAccess {
  ExpressionPtr file;
  bool forWriting;
};
struct SetEof {
  ExpressionPtr file;
  ExpressionPtr size;
};
struct Write {
  ExpressionPtr data;
  ExpressionPtr file;
};
struct CloseAccess {
  ExpressionPtr file;
};
struct Delay {
  ExpressionPtr seconds;
};

struct Expression {
  std::variant<Literal, Variable, It, ApplicationNamed, PropertyOf, ElementOf, Unary, Binary,
               Coercion, PosixFile, Perform, GetVolumeSettings, SetVolume, OpenForAccess, SetEof,
               Write, CloseAccess, Delay>
      content;
  /// In characters from the start of the source.
  size_t start = 0;
  size_t end = 0;
  /// How many expressions stand within one another, this one included.
  int depth = 1;
};

struct Statement;
using Block = std::vector<Statement>;

struct Evaluate {
  ExpressionPtr value;
};
struct Set {
  ExpressionPtr target;
  ExpressionPtr value;
};
struct Return {
  /// Null: nothing.
  ExpressionPtr value;
};
struct Raise {
  ExpressionPtr message;
  ExpressionPtr number;
};
struct Tell {
  ExpressionPtr target;
  Block body;
};
struct Try {
  Block body;
  /// Names of the variables that get the error; empty for none.
  std::string message;
  std::string number;
  Block handler;
};
struct If {
  std::vector<std::pair<ExpressionPtr, Block>> branches;
  Block otherwise;
};

struct Statement {
  std::variant<Evaluate, Set, Return, Raise, Tell, Try, If> content;
};

}  // namespace tapdeck::applescript
