#include "app/frontend/frontend_settings.h"

#include "settings/settings_manager.h"

namespace quillmark {

double frontEndRefreshInterval() { return SettingsManager::shared().refreshInterval(); }

bool frontEndShowNetSpeed() { return SettingsManager::shared().showNetSpeed(); }

}  // namespace quillmark
