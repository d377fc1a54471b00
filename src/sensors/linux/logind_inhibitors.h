#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sampling/samples.h"

struct sd_bus;

namespace quillmark {

// One row of systemd-logind's ListInhibitors: what (a colon list: "sleep:idle"), who, why, mode
// ("block" or "delay"), uid, pid.
struct Inhibitor {
  std::string what;
  std::string who;
  std::string why;
  std::string mode;
  std::uint32_t uid = 0;
  std::uint32_t pid = 0;
};

// Blocking inhibitors as the power-assertion names the rest of the program knows: "sleep" as
// "PreventSystemSleep", "idle" as "PreventUserIdleSystemSleep", one name per inhibited word, in
// logind's order. Delay inhibitors (which only postpone sleep), other words (shutdown, lid
// switch), and pid 0 are left out. Pure; any thread.
[[nodiscard]] AssertionMap inhibitorsToAssertions(const std::vector<Inhibitor>& inhibitors);

// The sleep blockers logind knows, asked over the system bus with sd-bus (honours
// DBUS_SYSTEM_BUS_ADDRESS, which is how tests point it at a mock). The connection is opened on
// the first read and reopened after a failure; a call waits at most half a second, so a stuck
// bus cannot stall a tick. One thread (the monitor's queue).
class LogindInhibitors {
 public:
  LogindInhibitors() = default;
  ~LogindInhibitors();
  LogindInhibitors(const LogindInhibitors&) = delete;
  LogindInhibitors& operator=(const LogindInhibitors&) = delete;

  // Empty when the bus or logind cannot be reached.
  [[nodiscard]] AssertionMap read();
  // The raw list, for tests and diagnostics; empty on any failure.
  [[nodiscard]] std::vector<Inhibitor> list();

 private:
  bool connect();
  void disconnect();

  sd_bus* bus_ = nullptr;
};

}  // namespace quillmark
