#pragma once

#include <map>
#include <optional>
#include <string>

#include "Platform/Linux/AppleScript/OpenFiles.h"
#include "Platform/Linux/AppleScript/Syntax.h"

namespace tapdeck::applescript {

/// Runs one program on the desktop. Throws ScriptError for what the program does not catch.
class Evaluator {
 public:
  explicit Evaluator(Desktop& desktop) : _desktop(desktop) {}

  /// The value that it returns, else that of its last statement.
  Value run(const Block& program);

 private:
  enum class Flow { next, returned };

  Flow execute(const Block& block);
  Flow execute(const Statement& statement);
  Flow execute(const Evaluate& statement);
  Flow execute(const Perform& statement);
  Flow execute(const SetVariable& statement);
  Flow execute(const SetProperty& statement);
  Flow execute(const SetVolume& statement);
  Flow execute(const SetEof& statement);
  Flow execute(const Write& statement);
  Flow execute(const CloseAccess& statement);
  Flow execute(const Return& statement);
  Flow execute(const Tell& statement);
  Flow execute(const Try& statement);
  Flow execute(const If& statement);

  Value evaluate(const Expression& expression);
  Value value(const Literal& literal) { return literal.value; }
  Value value(const Variable& variable);
  Value value(const PropertyOf& property);
  Value value(const ElementOf& element);
  Value value(const Unary& unary);
  Value value(const Binary& binary);
  Value value(const AsText& coercion) { return asText(evaluate(*coercion.operand)); }
  Value value(const PosixFile& file) { return File{asText(evaluate(*file.path))}; }
  Value value(const GetVolumeSettings&);
  Value value(const OpenForAccess& command) { return _files.open(evaluate(*command.file)); }

  /// The application of the innermost `tell`, which owns every property that is named without `of`.
  Object told() const;
  Value ownerOf(const ExpressionPtr& owner) { return owner != nullptr ? evaluate(*owner) : told(); }
  bool exists(const Expression& expression);

  Desktop& _desktop;
  OpenFiles _files;
  std::map<std::string, Value> _variables;
  std::optional<Application> _told;
  Value _result;
};

}  // namespace tapdeck::applescript
