#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tapdeck {

/// Who wants to hear of something. Main thread only.
template <typename... Content>
class Notices {
 public:
  using Observer = std::function<void(Content...)>;

  /// Calls `observer` at each notice, after those that came before it, for as long as what is
  /// returned is kept.
  [[nodiscard]] std::shared_ptr<void> observe(Observer observer) {
    auto kept = std::make_shared<Observer>(std::move(observer));
    _observers.push_back(kept);
    return kept;
  }

  void send(Content... content) {
    std::erase_if(_observers, [](const auto& observer) { return observer.expired(); });
    const auto current = _observers;  // an observer may come or go while it is told
    for (const auto& observer : current) {
      if (const auto kept = observer.lock()) (*kept)(content...);
    }
  }

 private:
  std::vector<std::weak_ptr<Observer>> _observers;
};

/// Tells each observer the current value at once and every value that is sent from then on.
/// Main thread only.
template <typename Content>
class CurrentValuePublisher {
 public:
  explicit CurrentValuePublisher(Content value) : _value(std::move(value)) {}

  const Content& value() const { return _value; }

  void send(Content value) {
    _value = value;
    _notices.send(std::move(value));
  }

  /// Observing lasts for as long as what is returned is kept.
  [[nodiscard]] std::shared_ptr<void> observe(std::function<void(Content)> observer) {
    observer(_value);
    return _notices.observe(std::move(observer));
  }

 private:
  Content _value;
  Notices<Content> _notices;
};

}  // namespace tapdeck
