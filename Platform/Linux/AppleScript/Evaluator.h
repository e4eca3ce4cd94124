#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Linux/AppleScript/OpenFiles.h"
#include "Platform/Linux/AppleScript/Syntax.h"

namespace tapdeck::applescript {

/// Runs one program on the desktop. Throws ScriptError for what the program does not catch.
class Evaluator {
 public:
  explicit Evaluator(Desktop& desktop) : _desktop(desktop) {}

  /// What it returns, else what its last statement came to.
  Value run(const Block& program);

 private:
  enum class Flow { next, returned };

  Flow execute(const Block& block);
  Flow execute(const Evaluate& statement);
  Flow execute(const Set& statement);
  Flow execute(const Return& statement);
  Flow execute(const Raise& statement);
  Flow execute(const Tell& statement);
  Flow execute(const Try& statement);
  Flow execute(const If& statement);

  Value evaluate(const Expression& expression);
  Value value(const Literal& literal) { return literal.value; }
  Value value(const Variable& variable);
  Value value(const It&);
  Value value(const ApplicationNamed& named);
  Value value(const PropertyOf& property);
  Value value(const ElementOf& element);
  Value value(const Unary& unary);
  Value value(const Binary& binary);
  Value value(const Coercion& coercion) {
    return coerce(evaluate(*coercion.operand), coercion.type);
  }
  Value value(const PosixFile& file) { return File{asText(evaluate(*file.path))}; }
  Value value(const Perform& command);
  Value value(const GetVolumeSettings&);
  Value value(const SetVolume& command);
  Value value(const OpenForAccess& command);
  Value value(const SetEof& command);
  Value value(const Write& command);
  Value value(const CloseAccess& command);
  Value value(const Delay& command);

  void set(const PropertyOf& place, const Value& value);
  Value ownerOf(const ExpressionPtr& owner);
  bool exists(const Expression& expression);

  Desktop& _desktop;
  OpenFiles _files;
  std::map<std::string, Value> _variables;
  std::vector<Value> _targets;
  Value _result;
};

}  // namespace tapdeck::applescript
