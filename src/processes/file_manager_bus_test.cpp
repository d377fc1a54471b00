// revealInFileManager on a private session bus (run by file_manager_bus_test.sh): with a mock
// FileManager1 it asks ShowItems for the file's URI and opens nothing else; without one it opens
// the containing folder with xdg-open (a stand-in on PATH that writes down its argument).
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "base/file_util.h"
#include "processes/file_manager.h"

namespace quillmark {
namespace {

// The argument the fake xdg-open wrote down, waiting for the reveal's thread up to a generous limit
// (a loaded machine is slow; the wait ends as soon as the file is there).
std::optional<std::string> waitForFile(const std::string& path) {
  for (int i = 0; i < 300; ++i) {
    if (auto text = readWholeFile(path); text && !text->empty()) return text;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return std::nullopt;
}

// The ShowItems calls python3-dbusmock recorded, as their first argument's strings.
std::vector<std::string> showItemsCalls(sd_bus* bus) {
  std::vector<std::string> uris;
  sd_bus_message* reply = nullptr;
  sd_bus_error error{};
  if (sd_bus_call_method(bus, "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                         "org.freedesktop.DBus.Mock", "GetCalls", &error, &reply, "") >= 0 &&
      sd_bus_message_enter_container(reply, 'a', "(tsav)") > 0) {
    while (sd_bus_message_enter_container(reply, 'r', "tsav") > 0) {
      std::uint64_t time = 0;
      const char* method = nullptr;
      sd_bus_message_read(reply, "ts", &time, &method);
      sd_bus_message_enter_container(reply, 'a', "v");
      if (std::string(method) == "ShowItems" && sd_bus_message_enter_container(reply, 'v', "as") > 0) {
        char** strv = nullptr;
        if (sd_bus_message_read_strv(reply, &strv) >= 0 && strv) {
          for (char** s = strv; *s; ++s) {
            uris.emplace_back(*s);
            std::free(*s);
          }
          std::free(strv);
        }
        sd_bus_message_exit_container(reply);
      }
      while (sd_bus_message_skip(reply, "v") > 0) {
      }
      sd_bus_message_exit_container(reply);
      sd_bus_message_exit_container(reply);
    }
  }
  sd_bus_error_free(&error);
  sd_bus_message_unref(reply);
  return uris;
}

TEST(FileManagerBusTest, WithFileManagerAsksShowItems) {
  if (!std::getenv("QM_FILEMANAGER_MOCK")) GTEST_SKIP() << "run through file_manager_bus_test.sh";
  sd_bus* bus = nullptr;
  ASSERT_GE(sd_bus_open_user(&bus), 0);
  sd_bus_error error{};
  ASSERT_GE(sd_bus_call_method(bus, "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                               "org.freedesktop.DBus.Mock", "AddMethod", &error, nullptr, "sssss",
                               "org.freedesktop.FileManager1", "ShowItems", "ass", "", ""),
            0)
      << (error.message ? error.message : "");
  sd_bus_error_free(&error);

  ASSERT_TRUE(revealInFileManager("/opt/My Tools/bin/grün"));
  std::vector<std::string> uris;
  for (int i = 0; i < 300 && uris.empty(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    uris = showItemsCalls(bus);
  }
  EXPECT_EQ(uris, std::vector<std::string>{"file:///opt/My%20Tools/bin/gr%C3%BCn"});
  EXPECT_FALSE(readWholeFile(std::getenv("QM_XDG_OPEN_RECORD")));  // the folder was not opened too
  sd_bus_flush_close_unref(bus);
}

TEST(FileManagerBusTest, WithoutFileManagerOpensTheFolder) {
  if (!std::getenv("QM_FILEMANAGER_MOCK")) GTEST_SKIP() << "run through file_manager_bus_test.sh";
  ASSERT_TRUE(revealInFileManager("/opt/My Tools/bin/grün"));
  EXPECT_EQ(waitForFile(std::getenv("QM_XDG_OPEN_RECORD")), "/opt/My Tools/bin\n");
}

}  // namespace
}  // namespace quillmark
