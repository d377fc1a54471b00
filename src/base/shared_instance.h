#pragma once

#include "base/check.h"

namespace quillmark {

// The slot behind a service's shared(): the program's composition root (app/services) builds the
// service with its collaborators and installs it here; shared() hands out that instance. Asking
// before the root installed one is a wiring fault, not a reason to build a second, differently
// wired instance. Main thread only.
template <class T>
class SharedInstance {
 public:
  static void install(T* instance) { slot() = instance; }
  [[nodiscard]] static bool installed() { return slot() != nullptr; }
  [[nodiscard]] static T& get() {
    QM_CHECK(slot() != nullptr);
    return *slot();
  }

 private:
  static T*& slot() {
    static T* instance = nullptr;
    return instance;
  }
};

}  // namespace quillmark
