// The freedesktop notification centre against a mock server (python3-dbusmock's
// notification_daemon template) on a private session bus. notification_bus_test.sh starts the bus
// and the mock; run outside it, every test skips.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "base/poll_main_loop.h"
#include "insights/notification_center.h"
#include "insights/testing/log_lines.h"

namespace quillmark {
namespace {

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

bool onPrivateBus() {
  const char* flag = std::getenv("QM_PRIVATE_BUS");
  return flag && std::string(flag) == "1" && std::getenv("DBUS_SESSION_BUS_ADDRESS");
}

// Runs the loop until done() or 10 s have passed (a fault, not a timing rule).
bool runUntil(PollMainLoop& loop, const std::function<bool()>& done) {
  int rounds = 0;
  const auto timer = loop.addRepeatingTimer(0.02, [&] {
    if (done() || ++rounds > 500) loop.quit();
  });
  loop.run();
  loop.cancelTimer(timer);
  return done();
}

// A test's own connection, for the mock's control interface.
class MockControl {
 public:
  MockControl() { EXPECT_GE(sd_bus_open_user(&bus_), 0); }
  ~MockControl() { sd_bus_flush_close_unref(bus_); }

  bool serverPresent() {
    sd_bus_error error{};  // SD_BUS_ERROR_NULL is a C compound literal
    sd_bus_message* reply = nullptr;
    int has = 0;
    if (sd_bus_call_method(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "NameHasOwner", &error, &reply, "s", kName) >= 0)
      (void)sd_bus_message_read(reply, "b", &has);
    sd_bus_message_unref(reply);
    sd_bus_error_free(&error);
    return has != 0;
  }

  void emitActionInvoked(std::uint32_t id, const char* key) {
    sd_bus_error error{};  // SD_BUS_ERROR_NULL is a C compound literal
    const int r = sd_bus_call_method(bus_, kName, kPath, "org.freedesktop.DBus.Mock", "EmitSignal", &error,
                                     nullptr, "sssav", kName, "ActionInvoked", "us", 2, "u", id, "s", key);
    EXPECT_GE(r, 0) << (error.message ? error.message : "");
    sd_bus_error_free(&error);
  }

  // How many Notify calls the mock has recorded (their arguments are checked by the script).
  int notifyCount() {
    sd_bus_error error{};
    sd_bus_message* reply = nullptr;
    int count = 0;
    if (sd_bus_call_method(bus_, kName, kPath, "org.freedesktop.DBus.Mock", "GetMethodCalls", &error, &reply,
                           "s", "Notify") >= 0 &&
        sd_bus_message_enter_container(reply, 'a', "(tav)") >= 0) {
      while (sd_bus_message_skip(reply, "(tav)") > 0) ++count;
    }
    sd_bus_message_unref(reply);
    sd_bus_error_free(&error);
    return count;
  }

 private:
  sd_bus* bus_ = nullptr;
};

class NotificationBusTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!onPrivateBus()) GTEST_SKIP() << "needs the private bus of notification_bus_test.sh";
  }
  std::optional<bool> ask(NotificationCenter& center) {
    std::optional<bool> answer;
    center.requestAuthorization([&](bool granted) { answer = granted; });
    EXPECT_TRUE(runUntil(loop, [&] { return answer.has_value(); }));
    return answer;
  }

  PollMainLoop loop;
};

// Run first, before the script starts the mock.
TEST_F(NotificationBusTest, NoServerRefusesAndLogsWhy) {
  MockControl control;
  ASSERT_FALSE(control.serverPresent());
  auto center = NotificationCenter::makePlatform(loop);
  EXPECT_EQ(ask(*center), false);
  EXPECT_EQ(testing::logLinesWith("Notifications unavailable: no notification server answers "
                                  "(org.freedesktop.DBus.Error.ServiceUnknown"),
            1);
}

TEST_F(NotificationBusTest, WithServerNotifiesReplacesPerMetricAndReportsClicks) {
  MockControl control;
  ASSERT_TRUE(runUntil(loop, [&] { return control.serverPresent(); })) << "the mock never appeared";
  auto center = NotificationCenter::makePlatform(loop);
  int clicks = 0;
  center->activate([&] { ++clicks; });
  EXPECT_EQ(ask(*center), true);

  center->deliver({"alert.cpu", "High CPU Load", "first"});
  center->deliver({"alert.cpu", "High CPU Load", "second"});  // sent once the first id is known
  center->deliver({"alert.memory", "High Memory Use", "third"});
  ASSERT_TRUE(runUntil(loop, [&] { return control.notifyCount() == 3; }));

  control.emitActionInvoked(99, "default");  // not ours
  control.emitActionInvoked(1, "close");     // not a click
  control.emitActionInvoked(1, "default");
  EXPECT_TRUE(runUntil(loop, [&] { return clicks > 0; }));
  EXPECT_EQ(clicks, 1);
}

}  // namespace
}  // namespace quillmark
