#include "settings/testing/temp_environment.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <string>

#include "base/file_util.h"

namespace quillmark::testing {
namespace {

std::string makeRoot() {
  char pattern[] = "/tmp/quillmark-settings-test-XXXXXX";
  const char* root = mkdtemp(pattern);
  if (!root) std::abort();
  // Set before main(): the shared log and defaults read these on first use.
  setenv("XDG_STATE_HOME", (std::string(root) + "/state").c_str(), 1);
  setenv("XDG_CONFIG_HOME", (std::string(root) + "/config").c_str(), 1);
  return root;
}

const std::string& root() {
  static const std::string path = makeRoot();
  return path;
}

// Forces the environment to be set during static initialisation of the test binary.
const bool kRootReady = !root().empty();

}  // namespace

std::string makeTempDirectory() {
  static std::atomic<int> counter{0};
  (void)kRootReady;
  const std::string path = root() + "/t" + std::to_string(counter++);
  if (!makeDirectories(path)) ADD_FAILURE() << "cannot create " << path;
  return path;
}

std::string testLogPath() { return root() + "/state/quillmark/Quillmark.log"; }

void writeTestFile(const std::string& path, const std::string& contents) {
  ASSERT_TRUE(makeDirectories(parentDirectory(path))) << path;
  ASSERT_TRUE(writeFileAtomically(path, contents, 0644)) << path;
}

}  // namespace quillmark::testing
