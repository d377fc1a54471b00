#pragma once

#include <string_view>

#include "base/defaults_store.h"
#include "base/shared_instance.h"
#include "settings/setting.h"
#include "settings/settings_types.h"

namespace quillmark {

// The panel's look (glass or vitals). Read once from "panelSkin" ("vitals" selects vitals, anything
// else, including nothing, glass); every assignment writes the raw value back at once. Main thread
// only.
class SkinManager {
 public:
  static constexpr std::string_view kDefaultsKey = "panelSkin";

  explicit SkinManager(DefaultsStore& defaults);
  SkinManager(const SkinManager&) = delete;
  SkinManager& operator=(const SkinManager&) = delete;

  static SkinManager& shared() { return SharedInstance<SkinManager>::get(); }

  Setting<PanelSkin> skin;
};

}  // namespace quillmark
