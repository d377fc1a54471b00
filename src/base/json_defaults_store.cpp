#include "base/json_defaults_store.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "base/file_util.h"

namespace quillmark {

JsonDefaultsStore::JsonDefaultsStore(std::string path) : path_(std::move(path)) { load(); }

void JsonDefaultsStore::load() {
  // Writers (this program's other instances too) replace the file by rename, so a read sees a
  // whole file; but one judged damaged may have been replaced by a good one before it is moved
  // aside. Then it is read again rather than the good one moved away.
  for (int attempt = 0; attempt < 5; ++attempt) {
    if (loadOnce()) return;
  }
  mayWrite_ = false;
  problems_.push_back("Settings file " + path_ +
                      " kept changing while it was read; defaults used and changes not saved this run");
}

bool JsonDefaultsStore::loadOnce() {
  problems_.clear();
  document_ = nlohmann::json::object();
  mayWrite_ = true;
  const RegularFileRead file = readRegularFile(path_, kMaxBytes);
  identity_ = file.identity;
  if (!file.content) {
    if (file.error == FileReadError::notFound) return true;  // first run
    if (file.error == FileReadError::notRegular) {
      mayWrite_ = false;
      problems_.push_back("Settings file " + path_ +
                          " ignored (not a regular file); defaults used and changes not saved this run");
      return true;
    }
    return setAside(file.error == FileReadError::tooLarge ? "larger than 1 MiB" : describe(file.error));
  }
  bool tooDeep = false;
  // Returning false drops what lies deeper, and the flag rejects the whole file, so the parser's
  // work stays bounded by the size cap instead of building millions of nested values.
  const nlohmann::json::parser_callback_t depthLimit = [&tooDeep](int depth, nlohmann::json::parse_event_t,
                                                                  nlohmann::json&) {
    if (depth <= kMaxDepth) return true;
    tooDeep = true;
    return false;
  };
  auto parsed = nlohmann::json::parse(*file.content, depthLimit, /*allow_exceptions=*/false);
  if (tooDeep) return setAside("nested too deeply");
  if (parsed.is_discarded()) return setAside("not valid JSON");
  if (!parsed.is_object()) return setAside("not a JSON object");
  document_ = std::move(parsed);
  return true;
}

bool JsonDefaultsStore::setAside(std::string_view what) {
  const std::string base = path_ + ".damaged-" + std::to_string(static_cast<long long>(std::time(nullptr)));
  const auto moved = moveAsideWithoutReplacing(path_, base, identity_);
  if (!moved && errno == ESTALE) return false;
  std::string line = "Settings file " + path_ + " is damaged (" + std::string(what) + "); defaults used; ";
  if (moved) {
    setAside_ = *moved;
    line += "copy kept at " + *moved;
  } else {
    mayWrite_ = false;
    line += "it could not be moved aside (" + std::string(std::strerror(errno)) +
            "), so changes are not saved this run";
  }
  problems_.push_back(std::move(line));
  return true;
}

bool JsonDefaultsStore::contains(std::string_view key) const {
  std::lock_guard lock(mutex_);
  return document_.contains(key);
}

std::vector<std::string> JsonDefaultsStore::loadProblems() const {
  std::lock_guard lock(mutex_);
  return problems_;
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
  if (!mayWrite_) {
    lastWriteOk_ = false;
    return;
  }
  // Invalid UTF-8 in a string is replaced rather than thrown on, so a write never fails for it.
  const std::string text = document_.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  lastWriteOk_ = writeFileAtomically(path_, text);
}

}  // namespace quillmark
