#include "Platform/Linux/AppleScript/Evaluator.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "Platform/Linux/AppleScript/Objects.h"
#include "Platform/Linux/AppleScript/Operators.h"

namespace tapdeck::applescript {
namespace {

[[noreturn]] void failToGet(const std::string& what) {
  throw ScriptError{kNotFound, "Can’t get " + what + ".", ""};
}

/// The innermost expression that has failed is where the error is.
void locate(ScriptError& error, const Expression& expression) {
  if (error.end != 0) return;
  error.start = expression.start;
  error.end = expression.end;
}

template <typename Known>
Value orMissing(const std::optional<Known>& known) {
  return known ? Value(*known) : Value(Missing());
}

}  // namespace

Value Evaluator::run(const Block& program) {
  execute(program);
  return std::move(_result);
}

// ---- statements

Evaluator::Flow Evaluator::execute(const Block& block) {
  for (const Statement& statement : block) {
    const Flow flow =
        std::visit([this](const auto& content) { return execute(content); }, statement.content);
    if (flow == Flow::returned) return flow;
  }
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const Evaluate& statement) {
  _result = evaluate(*statement.value);
  return Flow::next;
}

Evaluator::Flow Evaluator::execute(const Set& statement) {
  const Value value = evaluate(*statement.value);
  if (const auto* variable = std::get_if<Variable>(&statement.target->content)) {
    _result = _variables[variable->name] = value;
    return Flow::next;
  }
  try {
    set(std::get<PropertyOf>(statement.target->content), value);
  } catch (ScriptError& error) {
    locate(error, *statement.target);
    throw;
  }
  _result = Nothing();
  return Flow::next;
}

void Evaluator::set(const PropertyOf& place, const Value& value) {
  const Value owner = ownerOf(place.owner);
  const auto* object = owner.getIf<Object>();
  if (object == nullptr) {
    throw ScriptError{kCannotSet, "Can’t set " + std::string(wordsOf(place.property)) + ".", ""};
  }
  setProperty(_desktop, *object, place.property, value);
}

Evaluator::Flow Evaluator::execute(const Return& statement) {
  _result = statement.value != nullptr ? evaluate(*statement.value) : Value();
  return Flow::returned;
}

Evaluator::Flow Evaluator::execute(const Raise& statement) {
  const Value number =
      statement.number != nullptr ? evaluate(*statement.number) : int64_t{kScriptsOwn};
  const std::string message = statement.message != nullptr
                                  ? asText(evaluate(*statement.message))
                                  : "An error of type " + display(number) + " has occurred.";
  throw ScriptError{static_cast<int>(asInteger(number)), message, ""};
}

Evaluator::Flow Evaluator::execute(const Tell& statement) {
  _targets.push_back(evaluate(*statement.target));
  try {
    const Flow flow = execute(statement.body);
    _targets.pop_back();
    return flow;
  } catch (...) {
    _targets.pop_back();
    throw;
  }
}

Evaluator::Flow Evaluator::execute(const Try& statement) {
  try {
    return execute(statement.body);
  } catch (const ScriptError& error) {
    if (!statement.message.empty()) _variables[statement.message] = error.message;
    if (!statement.number.empty()) _variables[statement.number] = int64_t{error.number};
  }
  return execute(statement.handler);
}

Evaluator::Flow Evaluator::execute(const If& statement) {
  for (const auto& [condition, block] : statement.branches) {
    if (asBoolean(evaluate(*condition))) return execute(block);
  }
  return execute(statement.otherwise);
}

// ---- expressions

Value Evaluator::evaluate(const Expression& expression) {
  try {
    return std::visit([this](const auto& content) { return value(content); }, expression.content);
  } catch (ScriptError& error) {
    locate(error, expression);
    throw;
  }
}

Value Evaluator::value(const Variable& variable) {
  const auto found = _variables.find(variable.name);
  if (found == _variables.end()) {
    throw ScriptError{kNotDefined, "The variable " + variable.name + " is not defined.", ""};
  }
  return found->second;
}

Value Evaluator::value(const It&) {
  if (_targets.empty()) failToGet("it");
  return _targets.back();
}

Value Evaluator::value(const ApplicationNamed& named) {
  const auto application = applicationNamed(named.name);
  if (!application) failToGet("application \"" + named.name + "\"");
  return Object{.application = *application, .kind = Object::Kind::application, .track = nullptr};
}

Value Evaluator::ownerOf(const ExpressionPtr& owner) {
  return owner != nullptr ? evaluate(*owner) : value(It());
}

Value Evaluator::value(const PropertyOf& property) {
  const Value owner = ownerOf(property.owner);
  if (const auto* object = owner.getIf<Object>()) {
    return propertyOf(_desktop, *object, property.property);
  }
  const auto* record = owner.getIf<Record>();
  if (record != nullptr) {
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
  switch (unary.operation) {
    case UnaryOperator::exists:
      return exists(*unary.operand);
    case UnaryOperator::logicalNot:
      return !asBoolean(evaluate(*unary.operand));
    case UnaryOperator::negate:
      return negated(evaluate(*unary.operand));
  }
  return Missing();
}

Value Evaluator::value(const Binary& binary) {
  const Value left = evaluate(*binary.left);
  if (binary.operation == BinaryOperator::logicalAnd) {
    return asBoolean(left) && asBoolean(evaluate(*binary.right));
  }
  if (binary.operation == BinaryOperator::logicalOr) {
    return asBoolean(left) || asBoolean(evaluate(*binary.right));
  }
  return operate(binary.operation, left, evaluate(*binary.right));
}

// ---- commands

Value Evaluator::value(const Perform& command) {
  perform(_desktop, command.application, command.command);
  return Nothing();
}

Value Evaluator::value(const GetVolumeSettings&) {
  const Volume volume = _desktop.volume();
  const auto level = volume.level ? std::optional<int64_t>(*volume.level) : std::nullopt;
  return Record{{{Property::outputVolume, orMissing(level)},
                 {Property::inputVolume, Missing()},
                 {Property::alertVolume, Missing()},
                 {Property::outputMuted, orMissing(volume.muted)}}};
}

Value Evaluator::value(const SetVolume& command) {
  constexpr int64_t kLoudest = 100;
  Volume volume;
  if (command.level != nullptr) {
    const int64_t level = asInteger(evaluate(*command.level));
    volume.level = static_cast<int>(std::clamp<int64_t>(level, 0, kLoudest));
  }
  if (command.muted != nullptr) volume.muted = asBoolean(evaluate(*command.muted));
  _desktop.setVolume(volume);
  return Nothing();
}

Value Evaluator::value(const OpenForAccess& command) {
  return _files.open(evaluate(*command.file), command.forWriting);
}

Value Evaluator::value(const SetEof& command) {
  const Value file = evaluate(*command.file);
  _files.setSize(file, asInteger(evaluate(*command.size)));
  return Nothing();
}

Value Evaluator::value(const Write& command) {
  const Value data = evaluate(*command.data);
  _files.write(data, evaluate(*command.file));
  return Nothing();
}

Value Evaluator::value(const CloseAccess& command) {
  _files.close(evaluate(*command.file));
  return Nothing();
}

Value Evaluator::value(const Delay& command) {
  constexpr double kLongest = 3600;
  const double seconds = asReal(evaluate(*command.seconds));
  if (seconds > 0)
    std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, kLongest)));
  return Nothing();
}

}  // namespace tapdeck::applescript
