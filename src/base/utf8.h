#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillmark {

// Length in bytes of the well-formed UTF-8 character starting at text[at], or 0 when the bytes
// there are not one (a stray continuation byte, a cut sequence, an overlong form, an encoded
// surrogate, a value past U+10FFFF).
[[nodiscard]] std::size_t utf8CharacterLength(std::string_view text, std::size_t at);

// The text with every byte that does not start a well-formed character replaced by U+FFFD, so
// names the kernel cut mid-character still display and serialise.
[[nodiscard]] std::string repairUtf8(std::string_view text);

}  // namespace quillmark
