#include "processes/desktop_entries.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "base/file_util.h"
#include "processes/process_visual_cache.h"

extern char** environ;

namespace quillmark {
namespace {

TEST(DesktopEntriesTest, ParsesTheEntryGroupOnly) {
  const auto entry = parseDesktopEntry(
      "[Desktop Entry]\nName=Files\nName[de]=Dateien\nName[de_CH]=Dateie\nIcon=org.gnome.Nautilus\r\n"
      "Exec=env GTK_THEME=x /usr/bin/nautilus --new-window %U\n"
      "[Desktop Action new]\nName=New Window\nExec=other\n",
      "de_AT.UTF-8");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->name, "Dateien");
  EXPECT_EQ(entry->icon, "org.gnome.Nautilus");
  EXPECT_EQ(entry->execBasename, "nautilus");
  EXPECT_EQ(parseDesktopEntry("[Desktop Entry]\nName=Files\nName[de_CH]=Dateie\n", "de_CH")->name, "Dateie");
  EXPECT_EQ(parseDesktopEntry("[Desktop Entry]\nName=A\nExec=\"/opt/My App/run\" x\n", "")->execBasename,
            "run");
  EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nName=A\nHidden=true\n", ""));
  EXPECT_FALSE(parseDesktopEntry("Name=A\n", ""));
}

// A temporary data folder with one application entry and its icon in two sizes; a real child
// process of that executable gets the entry's name and the icon nearest 32 px.
TEST(DesktopEntriesTest, NamesARunningProcessFromItsEntry) {
  const std::string root = std::filesystem::temp_directory_path() / ("qm-xdg-" + std::to_string(::getpid()));
  ASSERT_TRUE(makeDirectories(root + "/applications") &&
              makeDirectories(root + "/icons/hicolor/48x48/apps") &&
              makeDirectories(root + "/icons/hicolor/16x16/apps") && makeDirectories(root + "/pixmaps"));
  ASSERT_TRUE(
      writeFileAtomically(root + "/applications/sleeper.desktop",
                          "[Desktop Entry]\nType=Application\nName=Sleeper\nIcon=sleeper\nExec=sleep 10\n"));
  for (const char* size : {"48x48", "16x16"})
    ASSERT_TRUE(writeFileAtomically(root + "/icons/hicolor/" + size + "/apps/sleeper.png", "png"));
  ASSERT_TRUE(writeFileAtomically(root + "/pixmaps/other.xpm", "xpm"));
  ASSERT_TRUE(writeFileAtomically(root + "/pixmaps/other.png", "png"));
  ASSERT_TRUE(makeDirectories(root + "/icons/Adwaita/32x32/legacy") &&
              makeDirectories(root + "/icons/hicolor/scalable/apps"));
  ASSERT_TRUE(writeFileAtomically(root + "/icons/Adwaita/32x32/legacy/terminal.png", "png"));
  ASSERT_TRUE(writeFileAtomically(root + "/icons/hicolor/scalable/apps/vector.svg", "svg"));
  EXPECT_EQ(findIcon("sleeper", {root}), root + "/icons/hicolor/48x48/apps/sleeper.png");
  EXPECT_EQ(findIcon("sleeper.png", {root}), root + "/icons/hicolor/48x48/apps/sleeper.png");
  EXPECT_EQ(findIcon("other", {"/nonexistent", root}), root + "/pixmaps/other.png");  // PNG, not XPM
  EXPECT_EQ(findIcon("terminal", {root}), root + "/icons/Adwaita/32x32/legacy/terminal.png");
  EXPECT_FALSE(findIcon("vector", {root}));  // SVG only: no icon we can draw
  EXPECT_FALSE(findIcon(root + "/pixmaps/other.xpm", {root}));
  EXPECT_FALSE(findIcon("../pixmaps/other", {root}));
  // An entry found by its window class, whatever the case, when neither file name nor Exec match.
  ASSERT_TRUE(
      writeFileAtomically(root + "/applications/com.example.Chat.desktop",
                          "[Desktop Entry]\nName=Chat\nExec=/opt/chat/launch.sh\nStartupWMClass=ChatApp\n"));
  DesktopEntries entries({root}, "");
  ASSERT_TRUE(entries.byExecutable("chatapp"));
  EXPECT_EQ(entries.byExecutable("chatapp")->name, "Chat");
  EXPECT_EQ(entries.byExecutable("launch.sh")->name, "Chat");
  EXPECT_FALSE(entries.byExecutable("chat"));

  ::setenv("XDG_DATA_HOME", root.c_str(), 1);
  ::setenv("XDG_DATA_DIRS", "/nonexistent", 1);
  auto source = VisualSource::makePlatform();
  pid_t child = -1;
  char* argv[] = {const_cast<char*>("sleep"), const_cast<char*>("10"), nullptr};
  ASSERT_EQ(::posix_spawnp(&child, "sleep", nullptr, nullptr, argv, environ), 0);
  const ProcessVisual visual = source->lookup(child, "sleep");
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(visual, (ProcessVisual{"Sleeper", root + "/icons/hicolor/48x48/apps/sleeper.png"}));
  EXPECT_EQ(source->lookup(::getpid(), "tests"), (ProcessVisual{"tests", std::nullopt}));
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("XDG_DATA_DIRS");
  std::filesystem::remove_all(root);
}

}  // namespace
}  // namespace quillmark
