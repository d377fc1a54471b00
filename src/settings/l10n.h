#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/defaults_store.h"
#include "base/string_format.h"
#include "settings/setting.h"

namespace quillmark {

// The interface language the user picked; `system` follows the system's preferred languages.
// The raw value is the stored string and the name of the table folder (<raw>.lproj).
enum class AppLanguage { system, en, zhHans, ja, de, fr, zhHant, es, ko, th };

// In picker order.
inline constexpr std::array<AppLanguage, 10> kAllAppLanguages = {
    AppLanguage::system, AppLanguage::en,     AppLanguage::zhHans, AppLanguage::ja, AppLanguage::de,
    AppLanguage::fr,     AppLanguage::zhHant, AppLanguage::es,     AppLanguage::ko, AppLanguage::th};

[[nodiscard]] std::string_view rawValue(AppLanguage language);
// Absent for an unknown string (the caller falls back to `system`).
[[nodiscard]] std::optional<AppLanguage> appLanguageFromRaw(std::string_view raw);
[[nodiscard]] std::string_view displayNameKey(AppLanguage language);

// One language's string table: key -> text.
class StringTable {
 public:
  explicit StringTable(std::unordered_map<std::string, std::string> entries) : entries_(std::move(entries)) {}
  // The text for key, or valueIfMissing when the table has none (the lookup passes a sentinel, so a
  // text that happens to equal its key still counts as found).
  [[nodiscard]] std::string_view localizedString(std::string_view key, std::string_view valueIfMissing) const;

 private:
  std::unordered_map<std::string, std::string> entries_;
};

// The localized texts of the program: the chosen language, its string table, English as the second
// choice and the number style of the language. One shared instance; `language` is assigned on the
// main thread, lookups may come from any thread (the tables are swapped whole under a lock).
class L10n {
 public:
  // The value a table reports for a key it does not have: NUL "L10N_MISSING" NUL.
  static constexpr std::string_view kMissingKeySentinel{"\0L10N_MISSING\0", 14};
  static constexpr std::string_view kDefaultsKey = "appLanguage";

  // tablesDirectory holds the <code>.lproj folders; preferredLanguages are the system's, best first
  // (BCP 47 tags such as "pt-BR", "zh-TW"), used when the language is `system`.
  L10n(DefaultsStore& defaults, std::string tablesDirectory, std::vector<std::string> preferredLanguages);
  L10n(const L10n&) = delete;
  L10n& operator=(const L10n&) = delete;

  // Wired to the platform's defaults, table folder and preferred languages.
  static L10n& shared();

  // Assigning stores the raw value under "appLanguage" and reloads the tables before subscribers
  // hear of the change, so a view that redraws on the notification already gets the new texts.
  Setting<AppLanguage> language;

  // Texts in `chosen` for this process only, without storing it or telling subscribers: for
  // renderings of the panel in a given language. The next assignment of `language` ends it.
  void useLanguageWithoutStoring(AppLanguage chosen) { reload(chosen); }

  // Chosen language, then English (from tablesDirectory, else the copy built into the program),
  // then the key itself. A missing table of the chosen language is logged once.
  [[nodiscard]] std::string string(std::string_view key) const;
  // string(key) used as a printf-style format (see formatString) with the language's number style.
  [[nodiscard]] std::string format(std::string_view key, std::span<const FormatArg> args) const;

  // The table code in use ("en", "zh-Hant", ...) and its number style.
  [[nodiscard]] std::string resolvedCode() const;
  [[nodiscard]] NumberStyle numberStyle() const;

 private:
  struct Tables {
    std::string code;
    std::shared_ptr<const StringTable> primary;   // may be absent
    std::shared_ptr<const StringTable> fallback;  // English; may be absent
    NumberStyle style;
  };

  void reload(AppLanguage language);
  [[nodiscard]] static std::string lookup(const Tables& tables, std::string_view key);
  [[nodiscard]] std::shared_ptr<const Tables> tables() const;
  [[nodiscard]] std::shared_ptr<const StringTable> loadTable(const std::string& code) const;

  DefaultsStore& defaults_;
  std::string tablesDirectory_;
  mutable std::vector<std::string> reportedMissing_;  // table codes already logged as missing
  std::vector<std::string> preferredLanguages_;
  mutable std::mutex mutex_;
  std::shared_ptr<const Tables> tables_;
};

// The lookups every view uses, on L10n::shared().
[[nodiscard]] std::string L(std::string_view key);

template <class... Args>
[[nodiscard]] std::string L(std::string_view key, const Args&... args) {
  const FormatArg list[] = {FormatArg(args)...};
  return L10n::shared().format(key, list);
}

// The same with an explicit L10n, for code that is handed one (and for tests).
[[nodiscard]] inline std::string L(const L10n& l10n, std::string_view key) { return l10n.string(key); }

template <class... Args>
[[nodiscard]] std::string L(const L10n& l10n, std::string_view key, const Args&... args) {
  const FormatArg list[] = {FormatArg(args)...};
  return l10n.format(key, list);
}

// The folder of string tables that belongs to the program at `executable`: the nearest
// share/quillmark/resources holding an English table among the folders above it (installed as
// <prefix>/bin and <prefix>/share; in the build tree, <build>/share beside <build>/src/...).
// Empty when there is none (the built-in English table is then used).
[[nodiscard]] std::string findStringTablesNear(const std::string& executable);

// Platform parts (l10n_linux.cpp, l10n_darwin.cpp).
// The system's preferred interface languages, best first, as BCP 47 tags.
[[nodiscard]] std::vector<std::string> systemPreferredLanguages();
// The folder that holds the <code>.lproj table folders.
[[nodiscard]] std::string stringTablesDirectory();
// The user's locale's time-of-day format in strftime conversions ("%I:%M:%S %p", "%H:%M:%S"),
// empty when the system will not say.
[[nodiscard]] std::string systemTimeFormat();

}  // namespace quillmark
