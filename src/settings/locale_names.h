#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillmark {

// Pure helpers that turn the names of locales the system reports into the codes of our string
// tables. No I/O; the platform files feed them.

// A POSIX locale name as found in LANG and friends ("zh_TW.UTF-8", "de_DE@euro") in the BCP 47
// shape the matcher expects ("zh-TW", "de-DE"). "C", "POSIX" and their codeset forms ("C.UTF-8")
// mean "no language" and give an empty string.
[[nodiscard]] std::string languageTagFromPosixLocale(std::string_view name);

// The user's preferred languages from a POSIX environment, best first:
// the colon-separated LANGUAGE list, then the locale that governs messages — the first set of
// LC_ALL, LC_MESSAGES, LANG (that is their precedence, so only the winner counts). As gettext does,
// LANGUAGE is ignored when that locale is C/POSIX: the user asked for untranslated text.
// getenv: returns the variable's value or nullptr.
[[nodiscard]] std::vector<std::string> preferredLanguagesFromEnvironment(
    const std::function<const char*(const char*)>& getenv);

// The table code for one preferred language ("zh-TW" -> "zh-Hant", "de-AT" -> "de"), or absent
// when we have no table for it.
[[nodiscard]] std::optional<std::string> tableCodeForLanguage(std::string_view tag);

// The first preferred language we have a table for, else "en".
[[nodiscard]] std::string tableCodeForPreferredLanguages(std::span<const std::string> preferred);

}  // namespace quillmark
