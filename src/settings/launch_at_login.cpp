#include "settings/launch_at_login.h"

#include "base/log.h"

namespace quillmark {

std::string LaunchAtLogin::statusText(long status) {
  switch (status) {
    case LoginItemService::kNotRegistered:
      return "notRegistered";
    case LoginItemService::kEnabled:
      return "enabled";
    case LoginItemService::kRequiresApproval:
      return "requiresApproval";
    case LoginItemService::kNotFound:
      return "notFound";
    default:
      return "unknown";
  }
}

std::string LaunchAtLogin::statusText() { return statusText(service_.status()); }

bool LaunchAtLogin::set(bool enabled) {
  if (isEnabled() == enabled) return true;
  const auto error = enabled ? service_.registerItem() : service_.unregisterItem();
  if (error) {
    Log::debug(std::string("Failed to ") + (enabled ? "enable" : "disable") + " launch at login: " + *error);
    return false;
  }
  const long status = service_.status();
  Log::debug(std::string("Launch at login ") + (enabled ? "enabled" : "disabled") +
             " successfully; status=" + statusText(status));
  return (status == LoginItemService::kEnabled) == enabled;
}

LaunchAtLogin& LaunchAtLogin::shared() {
  static LaunchAtLogin instance(LoginItemService::platform());
  return instance;
}

}  // namespace quillmark
