#include "Engine/MethodChannel.h"

#include <utility>

namespace tapdeck {

MethodChannel::MethodChannel(std::string name, std::shared_ptr<UIEngine> engine)
    : _name(std::move(name)), _engine(std::move(engine)) {}

void MethodChannel::setMethodCallHandler(MethodCallHandler handler) {
  _engine->setMethodCallHandler(_name, std::move(handler));
}

void MethodChannel::invokeMethod(const std::string& method, const Value& arguments) {
  _engine->invokeMethod(_name, method, arguments);
}

}  // namespace tapdeck
