#pragma once

#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "base/defaults_store.h"

namespace quillmark {

// Preferences kept as one JSON object in a file (the Linux defaults domain). Every change rewrites
// the file atomically. A file that cannot be parsed is renamed aside (never overwritten) and the
// store starts empty, so the user's damaged settings can still be recovered by hand. Entries of
// kinds the program does not use are kept as they are when the file is rewritten.
class JsonDefaultsStore final : public DefaultsStore {
 public:
  explicit JsonDefaultsStore(std::string path);

  std::optional<DefaultsValue> get(std::string_view key) const override;
  void set(std::string_view key, DefaultsValue value) override;
  void remove(std::string_view key) override;

  [[nodiscard]] const std::string& path() const { return path_; }
  // Where a damaged file was moved at load, empty when it was not. For the log.
  [[nodiscard]] const std::string& setAsidePath() const { return setAside_; }
  // False when the last write could not reach the disk (the value is still held in memory).
  [[nodiscard]] bool lastWriteSucceeded() const;

 private:
  void save();  // with mutex_ held

  std::string path_;
  std::string setAside_;
  mutable std::mutex mutex_;
  nlohmann::json document_ = nlohmann::json::object();
  bool lastWriteOk_ = true;
};

}  // namespace quillmark
