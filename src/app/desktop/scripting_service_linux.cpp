#include <systemd/sd-bus.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>

#include "app/desktop/scripting_service.h"
#include "base/log.h"

namespace quillmark {

// The method handlers: C callbacks that sd-bus calls from sd_bus_process() on the main thread.
struct ScriptingMethods {
  static constexpr const char* kRefused = "com.quillmark.Quillmark1.Error.Refused";
  static constexpr const char* kNoSuchProcess = "com.quillmark.Quillmark1.Error.NoSuchProcess";
  static constexpr const char* kNeedsConfirmation = "com.quillmark.Quillmark1.Error.NeedsConfirmation";
  static constexpr const char* kFailed = "com.quillmark.Quillmark1.Error.Failed";
  static constexpr const char* kNotReady = "com.quillmark.Quillmark1.Error.NotReady";

  static ScriptingService::Services& services(void* userdata) {
    return *static_cast<ScriptingService*>(userdata)->services_;
  }

  static int fail(sd_bus_error* error, const char* name, const std::string& message) {
    return sd_bus_error_set(error, name, message.c_str());
  }

  // The name the panel would show for pid: the scan's, else the kernel's short name.
  static std::optional<std::string> nameOf(ScriptingService::Services& s, std::int32_t pid) {
    for (const auto& process : s.monitor.latestProcesses()) {
      if (process.pid == pid) return process.name;
    }
    std::ifstream comm("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    if (pid > 0 && std::getline(comm, name) && !name.empty()) return name;
    return std::nullopt;
  }

  static int readPid(sd_bus_message* m, std::int32_t& pid) { return sd_bus_message_read(m, "i", &pid); }

  static int snapshot(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    const auto line = services(userdata).snapshotJson();
    if (!line) return fail(error, kNotReady, "Quillmark has not finished its first measurement yet");
    return sd_bus_reply_method_return(m, "s", line->c_str());
  }

  static int processes(sd_bus_message* m, void* userdata, sd_bus_error*) {
    auto& s = services(userdata);
    nlohmann::json list = nlohmann::json::array();
    for (const auto& p : s.monitor.latestProcesses()) {
      list.push_back({{"pid", p.pid},
                      {"name", p.name},
                      {"cpuPercent", p.cpuPercent},
                      {"memoryBytes", p.memoryBytes},
                      {"paused", s.pauses.entry(p.pid).has_value()},
                      {"pinned", s.pins.isPinned(p.name)}});
    }
    // Names come from the kernel and need not be UTF-8.
    const auto text = list.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    return sd_bus_reply_method_return(m, "s", text.c_str());
  }

  static int pause(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    std::int32_t pid = 0;
    if (const int r = readPid(m, pid); r < 0) return r;
    auto& s = services(userdata);
    const auto name = nameOf(s, pid);
    if (!name) return fail(error, kNoSuchProcess, "no process " + std::to_string(pid));
    if (s.pauses.entry(pid)) return sd_bus_reply_method_return(m, "");
    if (!s.pauses.canPause(pid, *name)) {
      return fail(error, kRefused, "Quillmark does not pause " + *name + " (" + std::to_string(pid) + ")");
    }
    if (!s.pauses.pause(pid, *name)) {
      return fail(error, kFailed, "could not pause " + *name + " (" + std::to_string(pid) + ")");
    }
    Log::debug("Paused " + *name + " (" + std::to_string(pid) + ") for a script");
    return sd_bus_reply_method_return(m, "");
  }

  static int resume(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    std::int32_t pid = 0;
    if (const int r = readPid(m, pid); r < 0) return r;
    auto& s = services(userdata);
    const auto group = s.pauses.entry(pid);
    if (!group) return fail(error, kRefused, "Quillmark has not paused " + std::to_string(pid));
    s.pauses.resume(*group);
    return sd_bus_reply_method_return(m, "");
  }

  static int resumeAll(sd_bus_message* m, void* userdata, sd_bus_error*) {
    auto& s = services(userdata);
    const auto count = static_cast<std::uint32_t>(s.pauses.paused().size());
    s.pauses.resumeAll();
    return sd_bus_reply_method_return(m, "u", count);
  }

  static int terminate(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    std::int32_t pid = 0;
    int force = 0;
    if (const int r = sd_bus_message_read(m, "ib", &pid, &force); r < 0) return r;
    auto& s = services(userdata);
    const auto name = nameOf(s, pid);
    if (!name) return fail(error, kNoSuchProcess, "no process " + std::to_string(pid));
    const std::string who = *name + " (" + std::to_string(pid) + ")";
    if (!s.terminator.isKillable(pid, *name)) return fail(error, kRefused, "Quillmark does not end " + who);
    // The same rule as the panel: a name on the pre-authorised list needs no confirmation.
    if (!force && !s.settings.isPreauthorized(*name)) {
      return fail(error, kNeedsConfirmation,
                  *name + " is not on the pre-authorised list; confirm with the force flag");
    }
    if (!s.terminator.terminate(pid)) return fail(error, kFailed, "could not end " + who);
    Log::debug("Ended " + who + " for a script");
    return sd_bus_reply_method_return(m, "");
  }

  static int pin(sd_bus_message* m, void* userdata, sd_bus_error* error, bool on) {
    const char* name = nullptr;
    if (const int r = sd_bus_message_read(m, "s", &name); r < 0) return r;
    auto& pins = services(userdata).pins;
    if (*name == '\0') return fail(error, kRefused, "a pin needs a process name");
    if (pins.isPinned(name) != on) {
      if (on && pins.isFull()) {
        return fail(error, kRefused,
                    std::to_string(PinStore::kMaxPins) + " names are pinned already; unpin one first");
      }
      pins.toggle(name);
    }
    return sd_bus_reply_method_return(m, "");
  }
  static int openPanel(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    auto& s = services(userdata);
    if (!s.openPanel)
      return fail(error, kRefused, "this Quillmark has no panel (it was started with --serve)");
    s.openPanel();
    return sd_bus_reply_method_return(m, "");
  }

  static int pinOn(sd_bus_message* m, void* u, sd_bus_error* e) { return pin(m, u, e, true); }
  static int pinOff(sd_bus_message* m, void* u, sd_bus_error* e) { return pin(m, u, e, false); }
};

namespace {

constexpr auto kUnprivileged = SD_BUS_VTABLE_UNPRIVILEGED;
const sd_bus_vtable kVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Snapshot", "", "s", &ScriptingMethods::snapshot, kUnprivileged),
    SD_BUS_METHOD("Processes", "", "s", &ScriptingMethods::processes, kUnprivileged),
    SD_BUS_METHOD("Pause", "i", "", &ScriptingMethods::pause, kUnprivileged),
    SD_BUS_METHOD("Resume", "i", "", &ScriptingMethods::resume, kUnprivileged),
    SD_BUS_METHOD("ResumeAll", "", "u", &ScriptingMethods::resumeAll, kUnprivileged),
    SD_BUS_METHOD("Terminate", "ib", "", &ScriptingMethods::terminate, kUnprivileged),
    SD_BUS_METHOD("Pin", "s", "", &ScriptingMethods::pinOn, kUnprivileged),
    SD_BUS_METHOD("Unpin", "s", "", &ScriptingMethods::pinOff, kUnprivileged),
    SD_BUS_METHOD("OpenPanel", "", "", &ScriptingMethods::openPanel, kUnprivileged),
    SD_BUS_VTABLE_END,
};

}  // namespace

std::unique_ptr<ScriptingService> ScriptingService::claim(LinuxMainLoop& loop, std::string& error) {
  sd_bus* bus = nullptr;
  if (const int r = sd_bus_open_user(&bus); r < 0) {
    error = std::string("no session bus: ") + std::strerror(-r);
    return nullptr;
  }
  // Without queueing, a name held by someone else is refused at once.
  if (const int r = sd_bus_request_name(bus, kBusName, 0); r < 0) {
    error = r == -EEXIST ? std::string("another Quillmark is running (it owns ") + kBusName + ")"
                         : std::string("could not claim ") + kBusName + ": " + std::strerror(-r);
    sd_bus_flush_close_unref(bus);
    return nullptr;
  }
  return std::unique_ptr<ScriptingService>(new ScriptingService(loop, bus));
}

ScriptingService::ScriptingService(LinuxMainLoop& loop, sd_bus* bus) : loop_(loop), bus_(bus) {}

ScriptingService::~ScriptingService() {
  if (fd_ >= 0) loop_.unwatch(fd_);
  sd_bus_slot_unref(slot_);
  sd_bus_flush_close_unref(bus_);
}

bool ScriptingService::serve(Services services, std::string& error) {
  services_.emplace(std::move(services));
  if (const int r = sd_bus_add_object_vtable(bus_, &slot_, kObjectPath, kInterface, kVtable, this); r < 0) {
    error = std::string("could not export ") + kObjectPath + ": " + std::strerror(-r);
    return false;
  }
  fd_ = sd_bus_get_fd(bus_);
  if (fd_ < 0) {
    error = std::string("no bus descriptor: ") + std::strerror(-fd_);
    return false;
  }
  loop_.watchReadable(fd_, [this] { pump(); });
  // The synchronous name request may already have read messages that no poll will announce.
  loop_.post([this] { pump(); });
  return true;
}

void ScriptingService::pump() {
  int r = 0;
  while ((r = sd_bus_process(bus_, nullptr)) > 0) {
  }
  // Replies are small and the peer is local: writing them out now keeps the loop free of a
  // writability watch.
  if (r >= 0) r = sd_bus_flush(bus_);
  if (r < 0 && fd_ >= 0) {
    Log::debug(std::string("Session bus connection lost: ") + std::strerror(-r));
    loop_.unwatch(fd_);
    fd_ = -1;
    if (onDisconnected) onDisconnected();
  }
}

}  // namespace quillmark
