#include "Platform/Linux/StandInEngine/StandInEngine.h"

#include <utility>

#include "Platform/Linux/StandInEngine/Server.h"

namespace tapdeck {

std::shared_ptr<StandInEngine> StandInEngine::start(const Options& options) {
  auto server = std::make_shared<standin::Server>(options);
  server->start();
  return std::shared_ptr<StandInEngine>(new StandInEngine(std::move(server)));
}

StandInEngine::StandInEngine(std::shared_ptr<standin::Server> server)
    : _server(std::move(server)) {}

StandInEngine::~StandInEngine() {
  stop();
}

void StandInEngine::setMethodCallHandler(const std::string& channel, MethodCallHandler handler) {
  _server->setMethodCallHandler(channel, std::move(handler));
}

void StandInEngine::invokeMethod(const std::string& channel, const std::string& method,
                                 const Value& arguments) {
  _server->invokeMethod(channel, {method, arguments});
}

bool StandInEngine::registerPlugin(const std::string&) {
  return false;
}

void StandInEngine::listenOn(const std::string& address) {
  _server->listenOn(address);
}

const std::string& StandInEngine::address() const {
  return _server->address();
}

void StandInEngine::setEncrypted(bool isEncrypted) {
  _server->setEncrypted(isEncrypted);
}

bool StandInEngine::isEncrypted() const {
  return _server->isEncrypted();
}

std::string StandInEngine::fingerprint() const {
  return _server->fingerprint();
}

std::vector<std::string> StandInEngine::pageAddresses() const {
  return _server->pageAddresses();
}

std::vector<StandInEngine::Peer> StandInEngine::peers() const {
  return _server->peers();
}

size_t StandInEngine::failedLogins() const {
  return _server->failedLogins();
}

void StandInEngine::observe(std::function<void()> changed) {
  _server->observe(std::move(changed));
}

std::vector<StandInEngine::Device> StandInEngine::devices() const {
  return _server->devices();
}

void StandInEngine::disconnect(standin::ConnectionNumber connection) {
  _server->disconnect(connection);
}

void StandInEngine::disconnectDevice(const std::string& device) {
  _server->disconnectDevice(device);
}

void StandInEngine::forgetDevice(const std::string& device) {
  _server->forgetDevice(device);
}

void StandInEngine::stop() {
  // A handler that lets go of a button may let go of the engine as well.
  const auto server = _server;
  server->stop();
}

}  // namespace tapdeck
