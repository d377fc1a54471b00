#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/main_loop.h"

namespace quillmark {

// The system's user-notification service, as the alert manager uses it: UNUserNotificationCenter
// on macOS, org.freedesktop.Notifications on the session bus on Linux. Every call comes from the
// main thread; every callback runs on the main thread.
class NotificationCenter {
 public:
  // identifier names the notification's slot: a new one with the same identifier replaces the old.
  struct Notification {
    std::string identifier;
    std::string title;
    std::string body;
  };

  virtual ~NotificationCenter() = default;

  // Becomes the program's notification handler: clears what an earlier run left, shows ours even
  // while the program is frontmost, and calls onClick when the user clicks one.
  virtual void activate(std::function<void()> onClick) = 0;
  // Asks whether notifications may be shown (alert and sound); answers once.
  virtual void requestAuthorization(std::function<void(bool granted)> completion) = 0;
  // Shows it at once with the default sound.
  virtual void deliver(const Notification& notification) = 0;

  // The platform's centre, answering on loop.
  [[nodiscard]] static std::unique_ptr<NotificationCenter> makePlatform(MainLoop& loop);
};

}  // namespace quillmark
