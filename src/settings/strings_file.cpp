#include "settings/strings_file.h"

#include <cstdint>

#include "base/utf8.h"

namespace quillmark {
namespace {

void appendUtf8(std::string& out, std::uint32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

bool isHighSurrogate(std::uint32_t u) { return u >= 0xD800 && u <= 0xDBFF; }
bool isLowSurrogate(std::uint32_t u) { return u >= 0xDC00 && u <= 0xDFFF; }

// UTF-16 (with its byte-order mark already removed) to UTF-8. Line numbers of errors count the
// newlines decoded so far.
std::optional<StringsParseError> decodeUtf16(std::string_view bytes, bool bigEndian, std::string& out) {
  if (bytes.size() % 2 != 0) return StringsParseError{1, "UTF-16 text with an odd number of bytes"};
  int line = 1;
  const auto unit = [&](std::size_t i) -> std::uint32_t {
    const auto a = static_cast<unsigned char>(bytes[i]);
    const auto b = static_cast<unsigned char>(bytes[i + 1]);
    return bigEndian ? (a << 8 | b) : (b << 8 | a);
  };
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    std::uint32_t cp = unit(i);
    if (isHighSurrogate(cp)) {
      if (i + 2 >= bytes.size() || !isLowSurrogate(unit(i + 2))) {
        return StringsParseError{line, "unpaired UTF-16 surrogate"};
      }
      cp = 0x10000 + ((cp - 0xD800) << 10) + (unit(i + 2) - 0xDC00);
      i += 2;
    } else if (isLowSurrogate(cp)) {
      return StringsParseError{line, "unpaired UTF-16 surrogate"};
    }
    if (cp == '\n') ++line;
    appendUtf8(out, cp);
  }
  return std::nullopt;
}

// Rejects malformed UTF-8 (overlong forms, surrogates, values past U+10FFFF, cut sequences),
// naming the line where it starts.
std::optional<StringsParseError> validateUtf8(std::string_view s) {
  int line = 1;
  for (std::size_t i = 0; i < s.size();) {
    if (s[i] == '\n') ++line;
    const std::size_t length = utf8CharacterLength(s, i);
    if (length == 0) return StringsParseError{line, "invalid UTF-8 sequence"};
    i += length;
  }
  return std::nullopt;
}

bool isUnquotedChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("_$+/:.-").find(c) != std::string_view::npos;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

class Parser {
 public:
  explicit Parser(std::string_view text) : s_(text) {}

  StringsFile run() {
    StringsFile file;
    for (;;) {
      if (!skipSpaceAndComments()) return fail(file);
      if (i_ >= s_.size()) return file;
      const int entryLine = line_;
      std::string key;
      if (!readString(key, "a key")) return fail(file);
      if (!skipSpaceAndComments()) return fail(file);
      std::string value;
      if (i_ < s_.size() && s_[i_] == ';') {
        value = key;  // "key"; is shorthand for "key" = "key";
      } else {
        if (i_ >= s_.size() || s_[i_] != '=') return fail(file, "expected '=' or ';' after the key");
        ++i_;
        if (!skipSpaceAndComments()) return fail(file);
        if (!readString(value, "a value")) return fail(file);
        if (!skipSpaceAndComments()) return fail(file);
      }
      if (i_ >= s_.size() || s_[i_] != ';') {
        return fail(file, "expected ';' after the entry that starts on line " + std::to_string(entryLine));
      }
      ++i_;
      file.entries.emplace_back(std::move(key), std::move(value));
    }
  }

 private:
  StringsFile fail(StringsFile& file, std::string message = {}) {
    file.entries.clear();
    file.error =
        StringsParseError{errorLine_ ? errorLine_ : line_, message.empty() ? error_ : std::move(message)};
    return std::move(file);
  }
  bool setError(std::string message, int line = 0) {
    error_ = std::move(message);
    errorLine_ = line ? line : line_;
    return false;
  }

  bool skipSpaceAndComments() {
    while (i_ < s_.size()) {
      const char c = s_[i_];
      if (c == '\n') {
        ++line_;
        ++i_;
      } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
        ++i_;
      } else if (s_.substr(i_, 2) == "//") {
        while (i_ < s_.size() && s_[i_] != '\n') ++i_;
      } else if (s_.substr(i_, 2) == "/*") {
        const int startLine = line_;
        const std::size_t end = s_.find("*/", i_ + 2);
        if (end == std::string_view::npos) return setError("unterminated /* comment", startLine);
        for (std::size_t k = i_; k < end; ++k) line_ += s_[k] == '\n';
        i_ = end + 2;
      } else {
        return true;
      }
    }
    return true;
  }

  bool readString(std::string& out, const char* what) {
    if (i_ >= s_.size()) return setError(std::string("expected ") + what + ", found the end of the file");
    if (s_[i_] == '"') return readQuoted(out);
    if (!isUnquotedChar(s_[i_])) {
      return setError(std::string("expected ") + what + " in double quotes, found '" + describeChar(s_[i_]) +
                      "'");
    }
    while (i_ < s_.size() && isUnquotedChar(s_[i_])) out += s_[i_++];
    return true;
  }

  static std::string describeChar(char c) {
    const auto u = static_cast<unsigned char>(c);
    if (u < 0x20 || u >= 0x7F) {
      static const char* const hex = "0123456789ABCDEF";
      return std::string("\\x") + hex[u >> 4] + hex[u & 0xF];
    }
    return std::string(1, c);
  }

  bool readQuoted(std::string& out) {
    const int startLine = line_;
    ++i_;  // opening quote
    while (i_ < s_.size()) {
      const char c = s_[i_++];
      if (c == '"') return true;
      if (c == '\n') ++line_;
      if (c != '\\') {
        out += c;
        continue;
      }
      if (!readEscape(out)) return false;
    }
    return setError("unterminated string (opened on line " + std::to_string(startLine) + ")", startLine);
  }

  bool readEscape(std::string& out) {
    if (i_ >= s_.size()) return setError("'\\' at the end of the file");
    const char c = s_[i_++];
    switch (c) {
      case '"':
      case '\\':
      case '\'':
        out += c;
        return true;
      case 'n':
        out += '\n';
        return true;
      case 't':
        out += '\t';
        return true;
      case 'r':
        out += '\r';
        return true;
      case 'a':
        out += '\a';
        return true;
      case 'b':
        out += '\b';
        return true;
      case 'f':
        out += '\f';
        return true;
      case 'v':
        out += '\v';
        return true;
      case '\n':
        ++line_;
        out += '\n';
        return true;  // a backslash-newline keeps the newline
      case 'U':
      case 'u':
        return readUnicodeEscape(out);
      default:
        break;
    }
    if (c >= '0' && c <= '7') {
      std::uint32_t value = static_cast<std::uint32_t>(c - '0');
      for (int k = 0; k < 2 && i_ < s_.size() && s_[i_] >= '0' && s_[i_] <= '7'; ++k) {
        value = value * 8 + static_cast<std::uint32_t>(s_[i_++] - '0');
      }
      appendUtf8(out, value);
      return true;
    }
    return setError("unknown escape '\\" + describeChar(c) + "'");
  }

  bool readUtf16Unit(std::uint32_t& unit) {
    unit = 0;
    for (int k = 0; k < 4; ++k) {
      const int digit = i_ < s_.size() ? hexValue(s_[i_]) : -1;
      if (digit < 0) return setError("\\U must be followed by four hexadecimal digits");
      unit = unit * 16 + static_cast<std::uint32_t>(digit);
      ++i_;
    }
    return true;
  }

  bool readUnicodeEscape(std::string& out) {
    std::uint32_t unit = 0;
    if (!readUtf16Unit(unit)) return false;
    if (isLowSurrogate(unit)) return setError("\\U escape is a lone low surrogate");
    if (isHighSurrogate(unit)) {
      if (s_.substr(i_, 2) != "\\U" && s_.substr(i_, 2) != "\\u") {
        return setError("\\U escape is a high surrogate without its low half");
      }
      i_ += 2;
      std::uint32_t low = 0;
      if (!readUtf16Unit(low)) return false;
      if (!isLowSurrogate(low)) return setError("\\U escape is a high surrogate without its low half");
      unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    appendUtf8(out, unit);
    return true;
  }

  std::string_view s_;
  std::size_t i_ = 0;
  int line_ = 1;
  std::string error_;
  int errorLine_ = 0;
};

}  // namespace

StringsFile parseStringsFile(std::string_view bytes) {
  std::string decoded;
  std::string_view text = bytes;
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
    if (auto error = decodeUtf16(bytes.substr(2), bytes[0] == '\xFE', decoded)) return StringsFile{{}, error};
    text = decoded;
  } else if (bytes.starts_with("\xEF\xBB\xBF")) {
    text = bytes.substr(3);
  } else if (bytes.starts_with("bplist")) {
    // A bundle build that converted the table to a binary property list.
    return StringsFile{{}, StringsParseError{1, "binary property list; expected a text strings table"}};
  }
  if (auto error = validateUtf8(text)) return StringsFile{{}, error};
  return Parser(text).run();
}

}  // namespace quillmark
