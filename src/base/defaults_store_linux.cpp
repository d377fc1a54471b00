#include "base/defaults_store.h"
#include "base/json_defaults_store.h"
#include "base/paths.h"

namespace quillmark {

DefaultsStore& DefaultsStore::shared() {
  static JsonDefaultsStore store(configDirectory() + "/settings.json");
  return store;
}

}  // namespace quillmark
