#pragma once

#include <functional>
#include <vector>

#include "insights/notification_center.h"

namespace quillmark::testing {

// Records what would be shown and answers permission requests at once with `grant`.
class FakeNotificationCenter final : public NotificationCenter {
 public:
  void activate(std::function<void()> onClick) override { click = std::move(onClick); }
  void requestAuthorization(std::function<void(bool)> completion) override {
    ++requests;
    completion(grant);
  }
  void deliver(const Notification& n) override { delivered.push_back(n); }

  std::function<void()> click;
  bool grant = true;
  int requests = 0;
  std::vector<Notification> delivered;
};

}  // namespace quillmark::testing
