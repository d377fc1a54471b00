#include "base/utf8.h"

#include <cstdint>

namespace quillmark {

std::size_t utf8CharacterLength(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  std::size_t length = 0;
  std::uint32_t smallest = 0;  // below this the same character has a shorter (overlong) form
  if (lead < 0x80) return 1;
  if ((lead & 0xE0) == 0xC0) {
    length = 2, smallest = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, smallest = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, smallest = 0x10000;
  } else {
    return 0;
  }
  if (at + length > text.size()) return 0;
  std::uint32_t code = lead & (0x7Fu >> length);
  for (std::size_t k = 1; k < length; ++k) {
    const auto next = static_cast<unsigned char>(text[at + k]);
    if ((next & 0xC0) != 0x80) return 0;
    code = (code << 6) | (next & 0x3Fu);
  }
  if (code < smallest || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
  return length;
}

std::string repairUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (const std::size_t length = utf8CharacterLength(text, i)) {
      out.append(text.substr(i, length));
      i += length;
    } else {
      out.append("\xEF\xBF\xBD");
      ++i;
    }
  }
  return out;
}

}  // namespace quillmark
