#pragma once

#include <functional>
#include <utility>

#include "base/published.h"

namespace quillmark {

// A published preference whose assignment has a side effect (store it, reschedule, ask the
// system). Readers use value() and subscribe() exactly as with Published<T>; set() is the one way to
// assign, so the side effect cannot be bypassed by assigning the published value directly.
//
// set(v), in this order: prepare(v) (state that subscribers will read, such as reloaded string
// tables), then the value is published to subscribers, then apply(v) (storing and other effects,
// which may assign the setting again, as a revert does). Main thread only.
template <class T>
class Setting {
 public:
  using Hook = std::function<void(const T&)>;
  using Callback = typename Published<T>::Callback;
  using Token = typename Published<T>::Token;

  explicit Setting(T initial, Hook apply = {}, Hook prepare = {})
      : published_(std::move(initial)), apply_(std::move(apply)), prepare_(std::move(prepare)) {}
  Setting(const Setting&) = delete;
  Setting& operator=(const Setting&) = delete;

  [[nodiscard]] const T& value() const { return published_.value(); }
  [[nodiscard]] const T& operator()() const { return published_.value(); }

  void set(T newValue) {
    if (prepare_) prepare_(newValue);
    published_.set(std::move(newValue));
    // Copied: apply may assign again, which replaces the published value under our feet.
    const T applied = published_.value();
    if (apply_) apply_(applied);
  }

  [[nodiscard]] Token subscribe(Callback callback) { return published_.subscribe(std::move(callback)); }
  void unsubscribe(Token token) { published_.unsubscribe(token); }

 private:
  Published<T> published_;
  Hook apply_;
  Hook prepare_;
};

}  // namespace quillmark
