#include "app/frontend/frontend_settings.h"

#include "base/defaults_store.h"

namespace quillmark {

double frontEndRefreshInterval() {
  const auto stored = DefaultsStore::shared().getDouble("refreshInterval");
  // Only the intervals the settings offer are accepted; anything else is a damaged value.
  if (stored && (*stored == 1.0 || *stored == 2.0 || *stored == 5.0)) return *stored;
  return 2.0;
}

bool frontEndShowNetSpeed() { return DefaultsStore::shared().getBool("showNetSpeed").value_or(false); }

}  // namespace quillmark
