#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillmark {

// One stored preference: the four kinds the program keeps (bool, double, string, string array).
// The kind is kept as stored, so a reader can tell a bool from a string that says "true".
using DefaultsValue = std::variant<bool, double, std::string, std::vector<std::string>>;

// The per-user key-value store of preferences (the defaults domain on macOS, a JSON file on
// Linux). Any thread may call it; writes reach storage before set() returns.
class DefaultsStore {
 public:
  virtual ~DefaultsStore() = default;

  [[nodiscard]] virtual std::optional<DefaultsValue> get(std::string_view key) const = 0;
  virtual void set(std::string_view key, DefaultsValue value) = 0;
  virtual void remove(std::string_view key) = 0;
  // Whether anything is stored under key, even a value of a kind get() cannot return.
  [[nodiscard]] virtual bool contains(std::string_view key) const { return get(key).has_value(); }
  // What went wrong opening the storage (a damaged file set aside, ...), one sentence each, for
  // the log. Whoever loads the settings logs them once.
  [[nodiscard]] virtual std::vector<std::string> loadProblems() const { return {}; }

  // Typed reads: absent when the key is missing or holds another kind.
  [[nodiscard]] std::optional<bool> getBool(std::string_view key) const;
  [[nodiscard]] std::optional<double> getDouble(std::string_view key) const;
  [[nodiscard]] std::optional<std::string> getString(std::string_view key) const;
  [[nodiscard]] std::optional<std::vector<std::string>> getStringArray(std::string_view key) const;

  // The process-wide store of the platform, opened on first use.
  static DefaultsStore& shared();
};

// A store that lives only in memory, for tests and for a run whose storage cannot be opened.
class MemoryDefaultsStore final : public DefaultsStore {
 public:
  std::optional<DefaultsValue> get(std::string_view key) const override;
  void set(std::string_view key, DefaultsValue value) override;
  void remove(std::string_view key) override;
  [[nodiscard]] int writeCount() const;  // how many set/remove calls reached the store

 private:
  mutable std::mutex mutex_;
  std::map<std::string, DefaultsValue, std::less<>> values_;
  int writes_ = 0;
};

}  // namespace quillmark
