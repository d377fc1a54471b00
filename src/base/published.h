#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace quillmark {

// An observable value. Owned by one main-thread object; subscribers are called synchronously on
// the main thread, in subscription order, after every assignment (also when the new value equals
// the old one: a tick that measured the same figure is still a tick).
template <class T>
class Published {
 public:
  using Callback = std::function<void(const T&)>;
  using Token = std::uint64_t;

  Published() = default;
  explicit Published(T initial) : value_(std::move(initial)) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  [[nodiscard]] const T& value() const { return value_; }
  [[nodiscard]] const T& operator()() const { return value_; }

  void set(T newValue) {
    value_ = std::move(newValue);
    // A subscriber may unsubscribe itself (or another) while being notified.
    for (auto it = subscribers_.begin(); it != subscribers_.end();) {
      const Token token = it->first;
      Callback callback = it->second;
      callback(value_);
      it = subscribers_.upper_bound(token);
    }
  }

  [[nodiscard]] Token subscribe(Callback callback) {
    const Token token = next_++;
    subscribers_.emplace(token, std::move(callback));
    return token;
  }
  void unsubscribe(Token token) { subscribers_.erase(token); }

 private:
  T value_{};
  std::map<Token, Callback> subscribers_;
  Token next_ = 1;
};

}  // namespace quillmark
