#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "settings/launch_at_login.h"
#include "settings/notification_permission.h"

namespace quillmark::testing {

// Answers permission requests with a fixed answer, at once or when told to.
class FakePermission final : public NotificationPermission {
 public:
  bool answer = true;
  bool answerLater = false;
  int requests = 0;
  std::vector<std::function<void(bool)>> pending;

  void requestAuthorization(std::function<void(bool)> completion) override {
    ++requests;
    if (answerLater)
      pending.push_back(std::move(completion));
    else
      completion(answer);
  }
};

// A login-item registry held in memory. registerItem moves to statusAfterRegister unless an
// error is scripted.
class FakeLoginItems final : public LoginItemService {
 public:
  long current = kNotRegistered;
  long statusAfterRegister = kEnabled;
  std::optional<std::string> registerError;
  std::optional<std::string> unregisterError;
  int registerCalls = 0;
  int unregisterCalls = 0;
  int settingsOpened = 0;

  long status() override { return current; }
  std::optional<std::string> registerItem() override {
    ++registerCalls;
    if (registerError) return registerError;
    current = statusAfterRegister;
    return std::nullopt;
  }
  std::optional<std::string> unregisterItem() override {
    ++unregisterCalls;
    if (unregisterError) return unregisterError;
    current = kNotRegistered;
    return std::nullopt;
  }
  void openSystemSettings() override { ++settingsOpened; }
};

}  // namespace quillmark::testing
