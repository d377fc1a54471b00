#pragma once

#include <functional>

namespace quillmark {

// Asks the system whether the program may post user notifications. The alert manager implements
// it (it owns the notification centre); the settings store asks when the user turns alerts on.
class NotificationPermission {
 public:
  virtual ~NotificationPermission() = default;
  // Asks once per call; completion runs later on the main thread (or at once) with the answer.
  virtual void requestAuthorization(std::function<void(bool granted)> completion) = 0;
};

// The permission the shared settings store asks. The settings library sits below the alert
// manager, so the alert manager plugs itself in at activation rather than being linked here.
// Until then (and on Linux, where notification servers have no permission model) it grants.
// Main thread only.
class NotificationPermissionSlot final : public NotificationPermission {
 public:
  void setTarget(NotificationPermission* target) { target_ = target; }
  void requestAuthorization(std::function<void(bool granted)> completion) override {
    if (target_)
      target_->requestAuthorization(std::move(completion));
    else
      completion(true);
  }

  static NotificationPermissionSlot& shared() {
    static NotificationPermissionSlot slot;
    return slot;
  }

 private:
  NotificationPermission* target_ = nullptr;
};

}  // namespace quillmark
