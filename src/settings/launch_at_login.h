#pragma once

#include <optional>
#include <string>

namespace quillmark {

// The operating system's record of whether the program starts at login: SMAppService.mainApp on
// macOS, an XDG autostart entry on Linux. It is the only truth; nothing caches it.
class LoginItemService {
 public:
  // The registration states, with the numbers SMAppService.Status uses; other numbers may appear.
  static constexpr long kNotRegistered = 0;
  static constexpr long kEnabled = 1;
  static constexpr long kRequiresApproval = 2;
  static constexpr long kNotFound = 3;

  virtual ~LoginItemService() = default;
  [[nodiscard]] virtual long status() = 0;
  // Each returns absent on success or the error's description.
  [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;
  [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
  // Opens the system's login-items settings where there are any.
  virtual void openSystemSettings() = 0;

  // The service of this platform.
  static LoginItemService& platform();
};

// Launch at login over a login-item service: the rules of when to call it, what success means and
// what is logged are the same on every platform. Main thread only.
class LaunchAtLogin {
 public:
  explicit LaunchAtLogin(LoginItemService& service) : service_(service) {}

  [[nodiscard]] bool isEnabled() { return service_.status() == LoginItemService::kEnabled; }
  // Registered but waiting for the user's approval in the system settings.
  [[nodiscard]] bool requiresApproval() { return service_.status() == LoginItemService::kRequiresApproval; }
  // "notRegistered", "enabled", "requiresApproval", "notFound" or "unknown".
  [[nodiscard]] std::string statusText();
  // True when afterwards the system state matches the request. A request that already holds makes
  // no call; a registration that still needs approval reports false. Never shows an error: it is
  // logged.
  bool set(bool enabled);
  void openSystemSettings() { service_.openSystemSettings(); }

  [[nodiscard]] static std::string statusText(long status);
  static LaunchAtLogin& shared();

 private:
  LoginItemService& service_;
};

}  // namespace quillmark
