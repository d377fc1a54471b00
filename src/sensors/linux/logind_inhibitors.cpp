#include "sensors/linux/logind_inhibitors.h"

#include <systemd/sd-bus.h>

#include <string_view>

namespace quillmark {
namespace {

constexpr std::uint64_t kCallTimeoutMicroseconds = 500'000;

// Owns one sd-bus message and error for the length of a call.
struct Call {
  sd_bus_error error{};  // SD_BUS_ERROR_NULL, without its C99 compound literal
  sd_bus_message* reply = nullptr;
  ~Call() {
    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
  }
};

bool readInhibitor(sd_bus_message* reply, Inhibitor& out) {
  const char *what = nullptr, *who = nullptr, *why = nullptr, *mode = nullptr;
  const int r = sd_bus_message_read(reply, "(ssssuu)", &what, &who, &why, &mode, &out.uid, &out.pid);
  if (r <= 0) return false;
  out.what = what;
  out.who = who;
  out.why = why;
  out.mode = mode;
  return true;
}

}  // namespace

AssertionMap inhibitorsToAssertions(const std::vector<Inhibitor>& inhibitors) {
  AssertionMap map;
  for (const auto& inhibitor : inhibitors) {
    if (inhibitor.mode != "block" || inhibitor.pid == 0) continue;
    std::vector<std::string> names;
    std::string_view what = inhibitor.what;
    while (!what.empty()) {
      const auto colon = what.find(':');
      const std::string_view word = what.substr(0, colon);
      if (word == "sleep") names.emplace_back("PreventSystemSleep");
      if (word == "idle") names.emplace_back("PreventUserIdleSystemSleep");
      what = colon == std::string_view::npos ? std::string_view{} : what.substr(colon + 1);
    }
    if (names.empty()) continue;
    auto& list = map[static_cast<std::int32_t>(inhibitor.pid)];
    list.insert(list.end(), names.begin(), names.end());
  }
  return map;
}

LogindInhibitors::~LogindInhibitors() { disconnect(); }

bool LogindInhibitors::connect() {
  if (bus_) return true;
  if (sd_bus_open_system(&bus_) < 0) {
    bus_ = nullptr;
    return false;
  }
  sd_bus_set_method_call_timeout(bus_, kCallTimeoutMicroseconds);
  return true;
}

void LogindInhibitors::disconnect() { bus_ = sd_bus_flush_close_unref(bus_); }

std::vector<Inhibitor> LogindInhibitors::list() {
  std::vector<Inhibitor> inhibitors;
  if (!connect()) return inhibitors;
  Call call;
  if (sd_bus_call_method(bus_, "org.freedesktop.login1", "/org/freedesktop/login1",
                         "org.freedesktop.login1.Manager", "ListInhibitors", &call.error, &call.reply,
                         "") < 0) {
    // A bus that went away (dbus restarted) stays broken; the next read starts afresh.
    if (!sd_bus_is_open(bus_)) disconnect();
    return inhibitors;
  }
  if (sd_bus_message_enter_container(call.reply, 'a', "(ssssuu)") <= 0) return inhibitors;
  for (Inhibitor inhibitor; readInhibitor(call.reply, inhibitor);) inhibitors.push_back(inhibitor);
  return inhibitors;
}

AssertionMap LogindInhibitors::read() { return inhibitorsToAssertions(list()); }

}  // namespace quillmark
