#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "base/paths.h"

namespace quillmark {

std::string homeDirectory() {
  if (const char* home = std::getenv("HOME"); home && home[0] == '/') return home;
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* result = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &result) == 0 && result && result->pw_dir) {
    return result->pw_dir;
  }
  return "/tmp";
}

}  // namespace quillmark
