#pragma once

#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "base/defaults_store.h"
#include "base/file_util.h"

namespace quillmark {

// Preferences kept as one JSON object in a file (the Linux defaults domain). Every change rewrites
// the file atomically (through a symbolic link, which is kept). A damaged file (not JSON, not an
// object, larger than kMaxBytes, nested deeper than kMaxDepth, unreadable) is moved aside under a
// name no earlier copy has and the store starts empty, so the user's settings can still be
// recovered by hand; when it cannot be moved the store never writes over it. Something that is
// not a regular file (a FIFO, a device) is left alone and ignored. Entries of kinds the program
// does not use are kept as they are when the file is rewritten.
class JsonDefaultsStore final : public DefaultsStore {
 public:
  explicit JsonDefaultsStore(std::string path);

  std::optional<DefaultsValue> get(std::string_view key) const override;
  void set(std::string_view key, DefaultsValue value) override;
  void remove(std::string_view key) override;
  bool contains(std::string_view key) const override;
  std::vector<std::string> loadProblems() const override;

  // Settings are a few hundred bytes of flat keys; far more is a damaged or hostile file.
  static constexpr std::size_t kMaxBytes = 1024 * 1024;
  static constexpr int kMaxDepth = 16;

  [[nodiscard]] const std::string& path() const { return path_; }
  // Where a damaged file was moved at load, empty when it was not. For the log.
  [[nodiscard]] const std::string& setAsidePath() const { return setAside_; }
  // False when the last write could not reach the disk (the value is still held in memory).
  [[nodiscard]] bool lastWriteSucceeded() const;

 private:
  void load();
  // False when the file changed under the read and should be read again.
  bool loadOnce();
  bool setAside(std::string_view what);
  void save();  // with mutex_ held

  std::string path_;
  std::string setAside_;
  std::optional<FileIdentity> identity_;  // of the file last read
  std::vector<std::string> problems_;
  bool mayWrite_ = true;  // false while a damaged file that could not be moved is still at path_
  mutable std::mutex mutex_;
  nlohmann::json document_ = nlohmann::json::object();
  bool lastWriteOk_ = true;
};

}  // namespace quillmark
