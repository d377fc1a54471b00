#include "settings/testing/temp_environment.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <string>

#include "base/file_util.h"

namespace quillmark::testing {
namespace {

// The test main has already pointed the XDG folders at a private temporary home; scratch folders
// live beside them so the whole run is removed together.
const std::string& root() {
  static const std::string path = parentDirectory(std::getenv("XDG_STATE_HOME"));
  return path;
}

}  // namespace

std::string makeTempDirectory() {
  static std::atomic<int> counter{0};
  const std::string path = root() + "/t" + std::to_string(counter++);
  if (!makeDirectories(path)) ADD_FAILURE() << "cannot create " << path;
  return path;
}

void writeTestFile(const std::string& path, const std::string& contents) {
  ASSERT_TRUE(makeDirectories(parentDirectory(path))) << path;
  ASSERT_TRUE(writeFileAtomically(path, contents, 0644)) << path;
}

}  // namespace quillmark::testing
