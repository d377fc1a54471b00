#include "base/json_defaults_store.h"

#include <cmath>
#include <cstdio>
#include <ctime>

#include "base/file_util.h"

namespace quillmark {

JsonDefaultsStore::JsonDefaultsStore(std::string path) : path_(std::move(path)) {
  const auto text = readWholeFile(path_);
  if (!text) return;  // first run, or unreadable: start from defaults
  auto parsed = nlohmann::json::parse(*text, nullptr, /*allow_exceptions=*/false);
  if (!parsed.is_discarded() && parsed.is_object()) {
    document_ = std::move(parsed);
    return;
  }
  // Keep the damaged file for the user; a timestamp keeps earlier set-aside copies too.
  setAside_ = path_ + ".damaged-" + std::to_string(static_cast<long long>(std::time(nullptr)));
  if (std::rename(path_.c_str(), setAside_.c_str()) != 0) setAside_.clear();
}

std::optional<DefaultsValue> JsonDefaultsStore::get(std::string_view key) const {
  std::lock_guard lock(mutex_);
  const auto it = document_.find(key);
  if (it == document_.end()) return std::nullopt;
  const nlohmann::json& value = *it;
  if (value.is_boolean()) return DefaultsValue{value.get<bool>()};
  if (value.is_number()) return DefaultsValue{value.get<double>()};
  if (value.is_string()) return DefaultsValue{value.get<std::string>()};
  if (value.is_array()) {
    std::vector<std::string> strings;
    for (const auto& item : value) {
      if (!item.is_string()) return std::nullopt;
      strings.push_back(item.get<std::string>());
    }
    return DefaultsValue{std::move(strings)};
  }
  return std::nullopt;
}

void JsonDefaultsStore::set(std::string_view key, DefaultsValue value) {
  std::lock_guard lock(mutex_);
  nlohmann::json& slot = document_[std::string(key)];
  std::visit(
      [&slot](const auto& v) {
        using V = std::decay_t<decltype(v)>;
        // JSON has no infinities or NaN; storing null makes the next load fall back to the default.
        if constexpr (std::is_same_v<V, double>) {
          slot = std::isfinite(v) ? nlohmann::json(v) : nlohmann::json(nullptr);
        } else {
          slot = v;
        }
      },
      value);
  save();
}

void JsonDefaultsStore::remove(std::string_view key) {
  std::lock_guard lock(mutex_);
  const auto it = document_.find(key);
  if (it == document_.end()) return;
  document_.erase(it);
  save();
}

bool JsonDefaultsStore::lastWriteSucceeded() const {
  std::lock_guard lock(mutex_);
  return lastWriteOk_;
}

void JsonDefaultsStore::save() {
  // Invalid UTF-8 in a string is replaced rather than thrown on, so a write never fails for it.
  const std::string text = document_.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  lastWriteOk_ = writeFileAtomically(path_, text);
}

}  // namespace quillmark
