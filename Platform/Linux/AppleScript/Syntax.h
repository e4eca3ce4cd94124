#pragma once

#include <cstddef>
#include <memory>
#include <string>
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
struct PropertyOf {
  Property property;
  /// Null: of the application that the innermost `tell` addresses.
  ExpressionPtr owner;
};
struct ElementOf {
  Element element;
  ExpressionPtr index;
  ExpressionPtr owner;
};

enum class UnaryOperator { logicalNot, exists };
struct Unary {
  UnaryOperator operation;
  ExpressionPtr operand;
};

enum class BinaryOperator { add, subtract, concatenate, equal };
struct Binary {
  BinaryOperator operation;
  ExpressionPtr left;
  ExpressionPtr right;
};

struct AsText {
  ExpressionPtr operand;
};
struct PosixFile {
  ExpressionPtr path;
};
struct GetVolumeSettings {};
/// For writing.
struct OpenForAccess {
  ExpressionPtr file;
};

struct Expression {
  std::variant<Literal, Variable, PropertyOf, ElementOf, Unary, Binary, AsText, PosixFile,
               GetVolumeSettings, OpenForAccess>
      content;
};

struct Statement;
using Block = std::vector<Statement>;

struct Evaluate {
  ExpressionPtr value;
};
struct Perform {
  Application application;
  Command command;
};
struct SetVariable {
  std::string name;
  ExpressionPtr value;
};
/// Of the application that the innermost `tell` addresses.
struct SetProperty {
  Property property;
  ExpressionPtr value;
};
/// Either may be null.
struct SetVolume {
  ExpressionPtr level;
  ExpressionPtr muted;
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
struct Return {
  ExpressionPtr value;
};
struct Tell {
  Application application;
  Block body;
};
struct Try {
  Block body;
  Block handler;
};
struct If {
  ExpressionPtr condition;
  Block body;
};

struct Statement {
  using Content = std::variant<Evaluate, Perform, SetVariable, SetProperty, SetVolume, SetEof,
                               Write, CloseAccess, Return, Tell, Try, If>;

  Content content;
  /// In characters from the start of the source.
  size_t start = 0;
  size_t end = 0;
};

}  // namespace tapdeck::applescript
