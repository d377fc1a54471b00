#include "sampling/monitor.h"
#include "settings/settings_manager.h"

namespace quillmark {

SettingsManager& SettingsManager::shared() {
  static SettingsManager instance(
      DefaultsStore::shared(), [](double interval) { Monitor::shared().setInterval(interval); },
      NotificationPermissionSlot::shared(), LaunchAtLogin::shared());
  return instance;
}

}  // namespace quillmark
