#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillmark {

// Where and why a string table could not be read.
struct StringsParseError {
  int line = 0;  // 1-based line of the offending text
  std::string message;

  [[nodiscard]] std::string describe() const { return "line " + std::to_string(line) + ": " + message; }
};

// The content of one Localizable.strings file: its entries in file order (a key given twice
// appears twice; the later one wins in a lookup), or the first error. Texts are UTF-8.
struct StringsFile {
  std::vector<std::pair<std::string, std::string>> entries;
  std::optional<StringsParseError> error;  // set: entries is empty

  [[nodiscard]] bool ok() const { return !error.has_value(); }
};

// Parses the text form of a strings table, as Apple tools write it:
//   "key" = "value";      /* block comment */      // line comment
//   "key";                (the value equals the key)
// Strings may also be unquoted words of letters, digits and _$+/:.- . Escapes in quoted strings:
// \" \\ \' \n \t \r \a \b \f \v, octal \0 to \377, \Uxxxx and \uxxxx (a UTF-16 unit; surrogate
// pairs are joined). Input is UTF-8 (an initial UTF-8 byte-order mark is skipped) or UTF-16 with
// a byte-order mark. Anything else is an error with its line; the parser never crashes, whatever
// the bytes, and uses no recursion.
[[nodiscard]] StringsFile parseStringsFile(std::string_view bytes);

}  // namespace quillmark
