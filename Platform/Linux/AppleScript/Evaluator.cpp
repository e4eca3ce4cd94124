#include "Platform/Linux/AppleScript/Evaluator.h"

#include <algorithm>
#include <utility>

#include "Platform/Linux/AppleScript/Objects.h"
#include "Platform/Linux/AppleScript/Operators.h"

namespace tapdeck::applescript {
namespace {

[[noreturn]] void failToGet(const std::string& what) {
  throw ScriptError{kNotFound, "Can’t get " + what + ".", ""};
}

template <typename T>
Value orMissing(const std::optional<T>& value) {
  return value ? Value(*value) : Value(Missing());
}

}  // namespace

Value Evaluator::run(const Block& program) {
  execute(program);
  return std::move(_result);
}

// ---- statements

Evaluator::Flow Evaluator::execute(const Block& block) {
  for (const Statement& statement : block) {
    if (execute(statement) == Flow::returned) return Flow::returned;
  }
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const Statement& statement) {
  try {
    return std::visit([this](const auto& content) { return execute(content); }, statement.content);
  } catch (ScriptError& error) {
    // the innermost statement that has failed is where the error is
    if (error.end == 0) {
      error.start = statement.start;
      error.end = statement.end;
    }
    throw;
  }
}

Evaluator::Flow Evaluator::execute(const Evaluate& statement) {
  _result = evaluate(*statement.value);
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const Perform& statement) {
  perform(_desktop, statement.application, statement.command);
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const SetVariable& statement) {
  _variables[statement.name] = evaluate(*statement.value);
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const SetProperty& statement) {
  const Value value = evaluate(*statement.value);
  setProperty(_desktop, told(), statement.property, value);
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const SetVolume& statement) {
  constexpr int64_t kMaxLevel = 100;
  Volume volume;
  if (statement.level != nullptr) {
    const int64_t level = asInteger(evaluate(*statement.level));
    volume.level = static_cast<int>(std::clamp<int64_t>(level, 0, kMaxLevel));
  }
  if (statement.muted != nullptr) volume.muted = asBoolean(evaluate(*statement.muted));
  _desktop.setVolume(volume);
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const SetEof& statement) {
  const Value file = evaluate(*statement.file);
  _files.setSize(file, asInteger(evaluate(*statement.size)));
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const Write& statement) {
  const Value data = evaluate(*statement.data);
  _files.write(data, evaluate(*statement.file));
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const CloseAccess& statement) {
  _files.close(evaluate(*statement.file));
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const Return& statement) {
  _result = evaluate(*statement.value);
  return Flow::returned;
}

Evaluator::Flow Evaluator::execute(const Tell& statement) {
  const auto outer = std::exchange(_told, statement.application);
  try {
    const Flow flow = execute(statement.body);
    _told = outer;
    return flow;
  } catch (...) {
    _told = outer;
    throw;
  }
}

Evaluator::Flow Evaluator::execute(const Try& statement) {
  try {
    return execute(statement.body);
  } catch (const ScriptError&) {
    return execute(statement.handler);
  }
}

Evaluator::Flow Evaluator::execute(const If& statement) {
  return asBoolean(evaluate(*statement.condition)) ? execute(statement.body) : Flow::next;
}

// ---- expressions

Value Evaluator::evaluate(const Expression& expression) {
  return std::visit([this](const auto& content) { return value(content); }, expression.content);
}

Value Evaluator::value(const Variable& variable) {
  const auto found = _variables.find(variable.name);
  if (found == _variables.end()) {
    throw ScriptError{kNotDefined, "The variable " + variable.name + " is not defined.", ""};
  }
  return found->second;
}

Object Evaluator::told() const {
  if (!_told) failToGet("it");
  return {.application = *_told, .kind = Object::Kind::application, .track = nullptr};
}

Value Evaluator::value(const PropertyOf& property) {
  const Value owner = ownerOf(property.owner);
  if (const auto* object = owner.getIf<Object>()) {
    return propertyOf(_desktop, *object, property.property);
  }
  if (const auto* record = owner.getIf<Record>()) {
    for (const auto& [name, value] : record->fields) {
      if (name == property.property) return value;
    }
  }
  failToGet(std::string(wordsOf(property.property)) + " of " + quoted(owner));
}

Value Evaluator::value(const ElementOf& element) {
  const Value index = evaluate(*element.index);
  const Value owner = ownerOf(element.owner);
  const auto* object = owner.getIf<Object>();
  if (object == nullptr) failToGet("artwork of " + quoted(owner));
  return elementOf(*object, element.element, index);
}

bool Evaluator::exists(const Expression& expression) {
  try {
    return evaluate(expression).getIf<Missing>() == nullptr;
  } catch (const ScriptError& error) {
    if (error.number == kNotFound) return false;
    throw;
  }
}

Value Evaluator::value(const Unary& unary) {
  return unary.operation == UnaryOperator::exists ? exists(*unary.operand)
                                                  : !asBoolean(evaluate(*unary.operand));
}

Value Evaluator::value(const Binary& binary) {
  const Value left = evaluate(*binary.left);
  return operate(binary.operation, left, evaluate(*binary.right));
}

Value Evaluator::value(const GetVolumeSettings&) {
  const Volume volume = _desktop.volume();
  const auto level = volume.level ? std::optional<int64_t>(*volume.level) : std::nullopt;
  return Record{{{Property::outputVolume, orMissing(level)},
                 {Property::outputMuted, orMissing(volume.muted)}}};
}

}  // namespace tapdeck::applescript
