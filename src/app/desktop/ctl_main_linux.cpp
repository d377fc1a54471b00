#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "app/desktop/desktop_commands.h"
#include "app/desktop/scripting_service.h"

namespace quillmark {
namespace {

constexpr const char* kCtlUsage =
    "usage: quillmark ctl <verb> [arguments]\n"
    "\n"
    "Asks the running Quillmark (the desktop program or quillmark --serve) over the session bus.\n"
    "  snapshot            the latest measurement as one JSON line (as --json prints it)\n"
    "  processes           the ranked process list as JSON\n"
    "  pause PID           freeze the application (process group) of PID\n"
    "  resume PID          thaw it again\n"
    "  resume-all          thaw everything Quillmark froze; prints how many groups\n"
    "  terminate PID [--force]\n"
    "                      end PID; without --force only names on the pre-authorised list\n"
    "  pin NAME, unpin NAME\n"
    "  open-panel          open the panel under the tray item (the desktop program)\n"
    "Exit status: 0 done, 1 refused or failed, 2 bad command line, 3 no running instance.\n";

constexpr int kRefused = 1;
constexpr int kUsage = 2;
constexpr int kNoInstance = 3;

int usage(const std::string& message) {
  std::fprintf(stderr, "quillmark ctl: %s\n%s", message.c_str(), kCtlUsage);
  return kUsage;
}

std::optional<std::int32_t> parsePid(const char* text) {
  char* end = nullptr;
  errno = 0;
  const long pid = std::strtol(text, &end, 10);
  if (errno != 0 || end == text || *end != '\0' || pid < 1 || pid > INT32_MAX) return std::nullopt;
  return static_cast<std::int32_t>(pid);
}

// One call and its reply, owned; sd-bus objects are released on every path.
struct Call {
  sd_bus* bus = nullptr;
  sd_bus_message* reply = nullptr;
  sd_bus_error error{nullptr, nullptr, 0};  // SD_BUS_ERROR_NULL is a C compound literal
  ~Call() {
    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
    sd_bus_flush_close_unref(bus);
  }
};

bool noInstance(const sd_bus_error& error) {
  return sd_bus_error_has_name(&error, "org.freedesktop.DBus.Error.ServiceUnknown") ||
         sd_bus_error_has_name(&error, "org.freedesktop.DBus.Error.NameHasNoOwner");
}

// Calls method with the verb's arguments (types "", "i", "ib" or "s"); prints the reply's string or
// number, if any.
int call(const char* method, const char* types, std::int32_t pid, int force, const char* name) {
  Call c;
  if (const int r = sd_bus_open_user(&c.bus); r < 0) {
    std::fprintf(stderr, "quillmark ctl: no session bus (%s)\n", std::strerror(-r));
    return kNoInstance;
  }
  const char* const service = ScriptingService::kBusName;
  const char* const path = ScriptingService::kObjectPath;
  const char* const iface = ScriptingService::kInterface;
  // A fresh instance answers Snapshot only after its first measurement (about a second).
  for (int attempt = 0;; ++attempt) {
    sd_bus_error_free(&c.error);
    c.reply = sd_bus_message_unref(c.reply);
    int r = 0;
    const std::string_view t = types;
    if (t.empty()) {
      r = sd_bus_call_method(c.bus, service, path, iface, method, &c.error, &c.reply, "");
    } else if (t == "i") {
      r = sd_bus_call_method(c.bus, service, path, iface, method, &c.error, &c.reply, "i", pid);
    } else if (t == "ib") {
      r = sd_bus_call_method(c.bus, service, path, iface, method, &c.error, &c.reply, "ib", pid, force);
    } else {
      r = sd_bus_call_method(c.bus, service, path, iface, method, &c.error, &c.reply, "s", name);
    }
    if (r >= 0) break;
    if (sd_bus_error_has_name(&c.error, "com.quillmark.Quillmark1.Error.NotReady") && attempt < 30) {
      usleep(100'000);
      continue;
    }
    if (noInstance(c.error)) {
      std::fprintf(stderr, "quillmark ctl: no Quillmark is running (nothing owns %s on the session bus)\n",
                   service);
      return kNoInstance;
    }
    std::fprintf(stderr, "quillmark ctl: %s\n",
                 sd_bus_error_is_set(&c.error) ? c.error.message : std::strerror(-r));
    return kRefused;
  }
  const char* signature = sd_bus_message_get_signature(c.reply, 1);
  if (signature && std::string_view(signature) == "s") {
    const char* text = nullptr;
    if (sd_bus_message_read(c.reply, "s", &text) >= 0) std::puts(text);
  } else if (signature && std::string_view(signature) == "u") {
    std::uint32_t count = 0;
    if (sd_bus_message_read(c.reply, "u", &count) >= 0) std::printf("%u\n", count);
  }
  return 0;
}

}  // namespace

int ctlMain(int argc, const char* const* argv) {
  if (argc < 2) return usage("which verb?");
  const std::string_view verb = argv[1];
  const int extra = argc - 2;
  if (verb == "--help" || verb == "-h" || verb == "help") {
    std::fputs(kCtlUsage, stdout);
    return 0;
  }
  if (verb == "snapshot" || verb == "processes" || verb == "resume-all" || verb == "open-panel") {
    if (extra != 0) return usage(std::string(verb) + " takes no arguments");
    const char* method = verb == "snapshot"     ? "Snapshot"
                         : verb == "processes"  ? "Processes"
                         : verb == "open-panel" ? "OpenPanel"
                                                : "ResumeAll";
    return call(method, "", 0, 0, nullptr);
  }
  if (verb == "pause" || verb == "resume" || verb == "terminate") {
    const bool force = verb == "terminate" && extra == 2 && std::string_view(argv[3]) == "--force";
    if (extra != 1 && !force)
      return usage(std::string(verb) + " takes one PID" + (verb == "terminate" ? " [--force]" : ""));
    const auto pid = parsePid(argv[2]);
    if (!pid) return usage(std::string("not a process id: \"") + argv[2] + "\"");
    if (verb == "terminate") return call("Terminate", "ib", *pid, force ? 1 : 0, nullptr);
    return call(verb == "pause" ? "Pause" : "Resume", "i", *pid, 0, nullptr);
  }
  if (verb == "pin" || verb == "unpin") {
    if (extra != 1) return usage(std::string(verb) + " takes one process name");
    return call(verb == "pin" ? "Pin" : "Unpin", "s", 0, 0, argv[2]);
  }
  return usage("unknown verb \"" + std::string(verb) + "\"");
}

}  // namespace quillmark
