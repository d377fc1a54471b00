#include <spawn.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <thread>

#include "base/log.h"
#include "processes/file_manager.h"

extern char** environ;

namespace quillmark {
namespace {

// A file manager started by D-Bus activation may take a while to answer its first call.
constexpr std::uint64_t kShowItemsTimeoutMicroseconds = 10'000'000;

// org.freedesktop.FileManager1.ShowItems(as uris, s startupId): opens the folder with the file
// selected (Nautilus, Dolphin, Nemo, Thunar and Caja all serve it).
bool showItems(const std::string& path) {
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) < 0) return false;
  sd_bus_message* call = nullptr;
  sd_bus_message* reply = nullptr;
  sd_bus_error error{};  // SD_BUS_ERROR_NULL, without its C99 compound literal
  const std::string uri = fileUri(path);
  int r = sd_bus_message_new_method_call(bus, &call, "org.freedesktop.FileManager1",
                                         "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1",
                                         "ShowItems");
  if (r >= 0) r = sd_bus_message_append(call, "as", 1, uri.c_str());
  if (r >= 0) r = sd_bus_message_append(call, "s", "");
  if (r >= 0) r = sd_bus_call(bus, call, kShowItemsTimeoutMicroseconds, &error, &reply);
  if (r < 0 && error.name) Log::debug(std::string("File manager did not show the file: ") + error.name);
  sd_bus_error_free(&error);
  sd_bus_message_unref(reply);
  sd_bus_message_unref(call);
  sd_bus_flush_close_unref(bus);
  return r >= 0;
}

// Without a FileManager1 service the folder itself is opened; xdg-open runs it in the desktop's
// default file manager (without selecting the file, which only ShowItems can do).
void openContainingFolder(const std::string& path) {
  const std::string folder = path.substr(0, std::max<std::size_t>(1, path.rfind('/')));
  std::string program = "xdg-open";
  char* argv[] = {program.data(), const_cast<char*>(folder.c_str()), nullptr};
  pid_t pid = 0;
  if (posix_spawnp(&pid, "xdg-open", nullptr, nullptr, argv, environ) != 0) {
    Log::debug("Cannot reveal " + path + ": no file manager service and no xdg-open");
    return;
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

bool revealInFileManager(const std::string& path) {
  if (path.empty() || path.front() != '/') {
    Log::debug("Cannot reveal a path that is not absolute: " + path);
    return false;
  }
  // Off the main thread: the bus call may wait for the file manager to start, and xdg-open is
  // waited for here only to reap it.
  std::thread([path] {
    if (!showItems(path)) openContainingFolder(path);
  }).detach();
  return true;
}

}  // namespace quillmark
