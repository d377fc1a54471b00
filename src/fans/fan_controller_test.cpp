#include "fans/fan_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "base/file_util.h"
#include "base/paths.h"
#include "base/virtual_time.h"
#include "fans/comfort_law.h"
#include "fans/testing/fake_fan_transport.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Status = FanController::Status;

TEST(ComfortLawTest, FloorRisesFromFortyFivePercentToFullSpeedSixDegreesAboveTarget) {
  EXPECT_TRUE(ComfortLaw::decide(37.0, 38.0, 6000).release);
  const auto justAbove = ComfortLaw::decide(37.5, 38.0, 5000);
  EXPECT_FALSE(justAbove.release);
  EXPECT_EQ(justAbove.rpm, 2250);
  const auto warm = ComfortLaw::decide(41.3, 38.0, std::nullopt);
  EXPECT_DOUBLE_EQ(warm.duty, 0.7525);
  EXPECT_EQ(warm.rpm, 4515);
  EXPECT_EQ(ComfortLaw::logLine(41.3, 38.0, warm),
            "Comfort cooling: surface 41.3°C > target 38°C; fan floor 4515 rpm at 75% duty");
  EXPECT_EQ(ComfortLaw::decide(50.0, 38.0, 5800).rpm, 5800);
  // A top speed the SMC reports as 0 or garbage falls back like a missing one.
  EXPECT_EQ(ComfortLaw::decide(50.0, 38.0, 0.0).rpm, 6000);
  EXPECT_TRUE(ComfortLaw::decide(std::numeric_limits<double>::quiet_NaN(), 38.0, 6000).release);
  EXPECT_EQ(ComfortLaw::warmest({std::nullopt, 36.5, 36.5, std::nullopt}), 36.5);
  EXPECT_EQ(ComfortLaw::warmest({std::nullopt}), std::nullopt);
}

class FakeSensors final : public ComfortSensors {
 public:
  std::optional<double> surface;
  std::optional<double> maxRPM;
  std::optional<double> surfaceC() override { return surface; }
  std::optional<double> fanMaxRPM() override { return maxRPM; }
};

class FanControllerTest : public ::testing::Test {
 protected:
  VirtualClock clock;
  VirtualMainLoop loop{clock};
  testing::FakeFanTransport transport;
  std::vector<bool> stored;
  Setting<bool> enabled{false, [this](bool v) { stored.push_back(v); }};
  Setting<double> target{38.0};
  FakeSensors sensors;
  FanHelperClient client{transport, loop};
  FanController controller{client, enabled, target, sensors, loop};

  // Answers every command, including those the answers trigger, until the loop is quiet.
  void answer(bool ok, const std::vector<FanReading>& fans = {}) {
    do {
      transport.answerAll(ok, fans);
    } while (loop.runUntilIdle() > 0);
  }
};

TEST_F(FanControllerTest, WithoutApprovalItAsksOnceAndWaitsForTheUser) {
  transport.serviceStatus = FanHelperTransport::ServiceStatus::notRegistered;
  transport.statusAfterRegister = FanHelperTransport::ServiceStatus::requiresApproval;
  transport.registerError = "needs approval";
  controller.setEnabled(true);
  EXPECT_THAT(stored, ElementsAre(true));
  EXPECT_EQ(controller.status(), Status::needsApproval);
  EXPECT_EQ(transport.registrations, 1);
  EXPECT_FALSE(controller.running());
  loop.advance(20.0);
  EXPECT_TRUE(transport.sent.empty());

  controller.retryAfterApproval();  // still not approved
  EXPECT_FALSE(controller.running());
  transport.serviceStatus = FanHelperTransport::ServiceStatus::enabled;
  sensors.surface = 36.0;
  controller.retryAfterApproval();
  EXPECT_TRUE(controller.running());
  EXPECT_EQ(controller.status(), Status::cooling);  // ticked at once
}

TEST_F(FanControllerTest, EachTickFollowsTheSurfaceAndAFailedFloorRecoversByItself) {
  sensors.surface = 41.3;
  enabled.set(true);
  controller.startIfEnabled();
  controller.setEnabled(true);         // a second switch-on keeps the one control timer
  EXPECT_EQ(loop.activeTimers(), 2u);  // the control tick and the client's heartbeat
  ASSERT_EQ(transport.count(FanOp::setFanFloor), 1);
  EXPECT_EQ(transport.sent[0].request.rpm, 4515);
  EXPECT_THAT(readWholeFile(logFilePath()).value_or(""), HasSubstr("fan floor 4515 rpm at 75% duty"));

  answer(false);  // the daemon refused
  EXPECT_EQ(controller.status(), Status::needsApproval);
  loop.advance(4.9);
  EXPECT_EQ(transport.count(FanOp::setFanFloor), 1);
  loop.advance(0.1);  // the 5-second tick re-sends the floor
  EXPECT_EQ(transport.count(FanOp::setFanFloor), 2);
  answer(true, {{0, 4480, 4515, 1200, 6000, true}});
  EXPECT_EQ(controller.status(), Status::active);
  EXPECT_EQ(controller.fanRPM(), 4480);

  // Cooled into the release band: released on every tick, comfortable, fan speed refreshed.
  sensors.surface = 37.0;
  loop.advance(10.0);
  answer(true);
  EXPECT_EQ(transport.count(FanOp::releaseControl), 2);
  EXPECT_EQ(controller.status(), Status::cooling);
  EXPECT_EQ(controller.fanRPM(), std::nullopt);
  EXPECT_FALSE(client.heartbeatRunning());

  // The sensor vanished: unavailable, and the fans are released each time.
  sensors.surface.reset();
  loop.advance(10.0);
  EXPECT_EQ(controller.status(), Status::unavailable);
  EXPECT_EQ(controller.surfaceC(), std::nullopt);
  EXPECT_EQ(transport.count(FanOp::releaseControl), 4);
}

TEST_F(FanControllerTest, SwitchingOffStopsTheTimerAndHandsTheFansBack) {
  sensors.surface = 45.0;
  controller.setEnabled(true);
  answer(true, {{0, 5000, 5000, 1200, 6000, true}});
  ASSERT_EQ(controller.fanRPM(), 5000);
  controller.setEnabled(false);
  EXPECT_THAT(stored, ElementsAre(true, false));
  EXPECT_EQ(transport.sent.back().request.op, FanOp::releaseControl);
  EXPECT_EQ(controller.status(), Status::off);
  EXPECT_EQ(controller.fanRPM(), std::nullopt);
  EXPECT_EQ(controller.surfaceC(), 45.0);
  EXPECT_EQ(loop.activeTimers(), 0u);
  const auto before = transport.sent.size();
  loop.advance(30.0);
  EXPECT_EQ(transport.sent.size(), before);
  // The comfortable state is the one named cooling, shown as "comfortable".
  EXPECT_EQ(FanController::statusKey(Status::cooling, true), "settings.comfort.status.comfortableWithFan");
  EXPECT_EQ(FanController::statusKey(Status::active, false), "settings.comfort.status.active");
}

}  // namespace
}  // namespace quillmark
