#include "settings/launch_at_login_linux.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include "base/file_util.h"
#include "base/paths.h"
#include "settings/testing/temp_environment.h"

namespace quillmark {
namespace {

using ::testing::HasSubstr;

// Points XDG_CONFIG_HOME at a fresh folder for one test and restores it afterwards.
class AutostartTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* old = getenv("XDG_CONFIG_HOME");
    saved = old ? old : "";
    config = testing::makeTempDirectory();
    setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    entry = config + "/autostart/quillmark.desktop";
  }
  void TearDown() override { setenv("XDG_CONFIG_HOME", saved.c_str(), 1); }

  std::string saved;
  std::string config;
  std::string entry;
  XdgAutostartService service;
};

TEST_F(AutostartTest, EntryPathFollowsXdgConfigHomeAndIgnoresRelativeValues) {
  EXPECT_EQ(service.entryPath(), entry);
  setenv("XDG_CONFIG_HOME", "relative/dir", 1);
  EXPECT_THAT(service.entryPath(), ::testing::EndsWith("/.config/autostart/quillmark.desktop"));
  EXPECT_EQ(service.entryPath().front(), '/');
}

TEST_F(AutostartTest, EnableWritesAnEntryForThisBinaryAndDisableRemovesIt) {
  LaunchAtLogin launch(service);
  EXPECT_FALSE(launch.isEnabled());
  EXPECT_EQ(launch.statusText(), "notRegistered");
  ASSERT_TRUE(launch.set(true));
  const auto text = readWholeFile(entry);
  ASSERT_TRUE(text);
  EXPECT_THAT(*text, HasSubstr("[Desktop Entry]\nType=Application\n"));
  EXPECT_THAT(*text, HasSubstr("Exec=" + service.executable() + "\n"));
  EXPECT_THAT(service.executable(), HasSubstr("settings_tests"));
  EXPECT_EQ(launch.statusText(), "enabled");
  struct stat info {};
  ASSERT_EQ(stat(entry.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0644u);

  ASSERT_TRUE(launch.set(false));
  EXPECT_FALSE(readWholeFile(entry));
  EXPECT_FALSE(launch.isEnabled());
}

TEST_F(AutostartTest, HiddenOrGnomeDisabledEntriesCountAsOff) {
  testing::writeTestFile(entry, "[Desktop Entry]\nType=Application\nExec=x\nHidden = true\n");
  EXPECT_EQ(service.status(), LoginItemService::kNotRegistered);
  testing::writeTestFile(entry, "[Desktop Entry]\nExec=x\nX-GNOME-Autostart-enabled=false\n");
  EXPECT_EQ(service.status(), LoginItemService::kNotRegistered);
  testing::writeTestFile(entry, "[Desktop Entry]\nExec=x\nHidden=false\n[Desktop Action x]\nHidden=true\n");
  EXPECT_EQ(service.status(), LoginItemService::kEnabled);
  testing::writeTestFile(entry, "# Hidden=true\n[Desktop Entry]\nExec=x\n");
  EXPECT_EQ(service.status(), LoginItemService::kEnabled);

  // Enabling over a switched-off entry replaces it with ours.
  testing::writeTestFile(entry, "[Desktop Entry]\nExec=/old\nHidden=true\n");
  LaunchAtLogin launch(service);
  EXPECT_TRUE(launch.set(true));
  EXPECT_THAT(readWholeFile(entry).value_or(""), ::testing::Not(HasSubstr("Hidden=true")));
  // Disabling an entry that is already switched off leaves it alone.
  testing::writeTestFile(entry, "[Desktop Entry]\nHidden=true\n");
  EXPECT_TRUE(launch.set(false));
  EXPECT_TRUE(readWholeFile(entry));
}

TEST_F(AutostartTest, UnwritableFolderReportsFailure) {
  testing::writeTestFile(config + "/autostart", "a file where the folder should be");
  LaunchAtLogin launch(service);
  EXPECT_FALSE(launch.set(true));
  EXPECT_THAT(readWholeFile(logFilePath()).value_or(""),
              HasSubstr("Failed to enable launch at login: cannot create " + config + "/autostart"));
}

TEST(AutostartEntryTest, ExecPathsAreQuotedAndEscaped) {
  EXPECT_THAT(*XdgAutostartService::entryText("/opt/q/bin/quillmark"),
              HasSubstr("Exec=/opt/q/bin/quillmark\n"));
  EXPECT_THAT(*XdgAutostartService::entryText("/home/a b/quill$mark"),
              HasSubstr("Exec=\"/home/a b/quill\\\\$mark\"\n"));
  EXPECT_THAT(*XdgAutostartService::entryText("/x/100%/q"), HasSubstr("Exec=/x/100%%/q\n"));
  EXPECT_FALSE(XdgAutostartService::entryText("/x/evil\nHidden=true"));
  EXPECT_FALSE(XdgAutostartService::entryText(""));
}

// The written entry must satisfy the desktop-entry validator where it is installed
// (desktop-file-utils); session managers silently skip invalid entries.
TEST(AutostartEntryTest, WrittenEntriesPassTheValidator) {
  const char* validator = "/usr/bin/desktop-file-validate";
  if (access(validator, X_OK) != 0) GTEST_SKIP() << "desktop-file-validate is not installed";
  const std::string dir = testing::makeTempDirectory();
  for (const char* program :
       {"/usr/bin/quillmark", "/home/a b/quill$mark", "/x/100%/q\"x", "/x/back\\slash"}) {
    XdgAutostartService service(dir + "/quillmark.desktop", program);
    ASSERT_EQ(service.registerItem(), std::nullopt);
    const std::string command = std::string(validator) + " '" + dir + "/quillmark.desktop' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string output;
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe)) output += buffer;
    EXPECT_EQ(pclose(pipe), 0) << program << ": " << output;
  }
}

}  // namespace
}  // namespace quillmark
