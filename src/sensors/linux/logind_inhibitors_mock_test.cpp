// LogindInhibitors against a mock logind on a private bus (run by run_with_mock_logind.sh).
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cstdlib>

#include "sensors/linux/logind_inhibitors.h"

namespace quillmark {
namespace {

// Takes an inhibitor the way an application does; it lasts while the returned descriptor is open.
int inhibit(sd_bus* bus, const char* what, const char* mode) {
  sd_bus_error error{};  // SD_BUS_ERROR_NULL, without its C99 compound literal
  sd_bus_message* reply = nullptr;
  int fd = -1;
  if (sd_bus_call_method(bus, "org.freedesktop.login1", "/org/freedesktop/login1",
                         "org.freedesktop.login1.Manager", "Inhibit", &error, &reply, "ssss", what,
                         "quillmark-test", "testing", mode) >= 0) {
    int borrowed = -1;
    if (sd_bus_message_read(reply, "h", &borrowed) > 0) fd = dup(borrowed);
  }
  sd_bus_error_free(&error);
  sd_bus_message_unref(reply);
  return fd;
}

TEST(LogindInhibitorsOnMockBus, ListsBlockingSleepInhibitorsByPid) {
  if (!std::getenv("QM_LOGIND_MOCK")) GTEST_SKIP() << "run through run_with_mock_logind.sh";
  sd_bus* bus = nullptr;
  ASSERT_GE(sd_bus_open_system(&bus), 0);
  const int sleepBlock = inhibit(bus, "sleep", "block");
  const int idleBlock = inhibit(bus, "idle:shutdown", "block");
  const int sleepDelay = inhibit(bus, "sleep", "delay");
  ASSERT_GE(sleepBlock, 0);
  ASSERT_GE(idleBlock, 0);
  ASSERT_GE(sleepDelay, 0);

  LogindInhibitors reader;
  const auto listed = reader.list();
  ASSERT_EQ(listed.size(), 3u);
  EXPECT_EQ(listed[1].what, "idle:shutdown");
  EXPECT_EQ(listed[2].mode, "delay");
  // The mock records every inhibitor under pid 123456.
  const AssertionMap expected = {{123456, {"PreventSystemSleep", "PreventUserIdleSystemSleep"}}};
  EXPECT_EQ(reader.read(), expected);

  close(sleepBlock);
  close(idleBlock);
  close(sleepDelay);
  sd_bus_flush_close_unref(bus);
}

}  // namespace
}  // namespace quillmark
