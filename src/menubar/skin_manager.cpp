#include "menubar/skin_manager.h"

#include <string>

namespace quillmark {
namespace {

PanelSkin storedSkin(const DefaultsStore& defaults) {
  return defaults.getString(SkinManager::kDefaultsKey) == "vitals" ? PanelSkin::vitals : PanelSkin::glass;
}

}  // namespace

SkinManager::SkinManager(DefaultsStore& defaults)
    : skin(storedSkin(defaults), [&defaults](const PanelSkin& value) {
        defaults.set(kDefaultsKey, std::string(rawValue(value)));
      }) {}

}  // namespace quillmark
