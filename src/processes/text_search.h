#pragma once

#include <string_view>

namespace quillmark {

// The process list's search: does `text` contain `needle`, ignoring case the way the user's
// language does ("ä" finds "Ä", "straße" finds "STRASSE")? Both are UTF-8; invalid bytes read
// as U+FFFD. Stateless; any thread.
namespace TextSearch {

[[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view needle);

}  // namespace TextSearch
}  // namespace quillmark
