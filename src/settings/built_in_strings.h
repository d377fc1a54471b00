#pragma once

#include <string_view>

namespace quillmark {

// The English string table (resources/en.lproj/Localizable.strings) compiled into the program at
// build time, in the file's own format, so that a binary that finds no tables on disk still shows
// texts rather than keys. Any thread.
[[nodiscard]] std::string_view builtInEnglishStrings();

}  // namespace quillmark
