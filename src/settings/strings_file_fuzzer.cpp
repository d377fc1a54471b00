// libFuzzer target: string tables are files a translator or a damaged download can get wrong.
// Parses the input and uses every value as a format, as the lookup would.
#include <cstddef>
#include <cstdint>

#include "base/string_format.h"
#include "settings/strings_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const quillmark::StringsFile file = quillmark::parseStringsFile(bytes);
  for (const auto& [key, value] : file.entries) {
    (void)quillmark::formatString(value, {12.5, "name", 42, -1LL});
    (void)quillmark::formatString(value, {}, quillmark::NumberStyle{','});
  }
  return 0;
}
