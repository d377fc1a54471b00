#include "processes/file_manager.h"

namespace quillmark {

std::string fileUri(std::string_view absolutePath) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string uri = "file://";
  for (const char c : absolutePath) {
    const auto byte = static_cast<unsigned char>(c);
    const bool unreserved = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                            (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_' ||
                            byte == '~' || byte == '/';
    if (unreserved) {
      uri += c;
    } else {
      uri += '%';
      uri += kHex[byte >> 4];
      uri += kHex[byte & 0xf];
    }
  }
  return uri;
}

}  // namespace quillmark
