// The main of every unit-test program. Tests never read or write the real user's settings, log or
// autostart folder, and never depend on the language of the desktop they run on: each run gets a
// fresh temporary home for its XDG folders and an English environment. A test that needs another
// environment sets it itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
  char pattern[] = "/tmp/quillmark-test-XXXXXX";
  const char* home = mkdtemp(pattern);
  if (home == nullptr) return 1;
  const std::string root = home;
  setenv("XDG_CONFIG_HOME", (root + "/config").c_str(), 1);
  setenv("XDG_STATE_HOME", (root + "/state").c_str(), 1);
  setenv("LANGUAGE", "en", 1);
  setenv("LANG", "en_US.UTF-8", 1);
  unsetenv("LC_ALL");
  unsetenv("LC_MESSAGES");

  ::testing::InitGoogleMock(&argc, argv);
  const int result = RUN_ALL_TESTS();
  std::error_code ignored;
  std::filesystem::remove_all(root, ignored);
  return result;
}
