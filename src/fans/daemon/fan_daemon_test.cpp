#include "fans/daemon/fan_daemon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/virtual_time.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;

class RecordingBackend final : public FanBackend {
 public:
  std::vector<std::string> calls;
  bool floorWorks = true;
  bool hot = false;

  std::vector<FanReading> readFans() override { return {{0, 1800, 0, 1200, 6000, !calls.empty()}}; }
  bool holdFloor(int rpm) override {
    calls.push_back("floor " + std::to_string(rpm));
    return floorWorks;
  }
  bool restore() override {
    calls.push_back("restore");
    return true;
  }
  bool overheating() override { return hot; }
  void fullSpeed() override { calls.push_back("full"); }
};

class FanDaemonTest : public ::testing::Test {
 protected:
  VirtualClock clock;
  RecordingBackend backend;
  std::vector<std::string> log;
  FanDaemon daemon{backend, clock, [this](std::string_view line) { log.emplace_back(line); }};

  void floor(FanDaemon::ClientId client, int rpm) {
    const auto reply = daemon.handle(client, {FanOp::setFanFloor, 5, rpm});
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->id, 5u);
  }
  // Polls once a second for the given time, as the daemon's loop does.
  void run(double seconds) {
    for (double t = 0; t < seconds; t += 1.0) {
      clock.advance(1.0);
      daemon.poll();
    }
  }
};

TEST_F(FanDaemonTest, TheHolderMustKeepSignallingOrTheFansGoBackAfterTenSeconds) {
  floor(1, 3000);
  run(9.0);
  EXPECT_EQ(daemon.holder(), 1u);
  // A heartbeat from a client that holds nothing does not keep the floor alive.
  EXPECT_FALSE(daemon.handle(2, {FanOp::heartbeat}));
  run(1.0);
  EXPECT_EQ(daemon.holder(), std::nullopt);
  EXPECT_THAT(backend.calls, ElementsAre("floor 3000", "restore"));
  EXPECT_EQ(log.back(), "fans handed back (no heartbeat for 10 s)");

  floor(1, 3000);
  for (int i = 0; i < 10; ++i) {
    run(2.0);
    (void)daemon.handle(1, {FanOp::heartbeat});
  }
  EXPECT_EQ(daemon.holder(), 1u);  // 20 s of heartbeats every 2 s
}

TEST_F(FanDaemonTest, OnlyTheHoldersDisconnectReleasesAndASpareReleaseIsHarmless) {
  const auto spare = daemon.handle(3, {FanOp::releaseControl, 1});
  ASSERT_TRUE(spare);
  EXPECT_TRUE(spare->ok);
  floor(1, 2500);
  floor(2, 2600);  // the later client takes the floor over
  EXPECT_FALSE(daemon.handle(1, {FanOp::releaseControl, 2})->ok);
  daemon.clientGone(1);
  EXPECT_EQ(daemon.holder(), 2u);
  daemon.clientGone(2);
  EXPECT_EQ(daemon.holder(), std::nullopt);
  EXPECT_THAT(backend.calls, ElementsAre("restore", "floor 2500", "floor 2600", "restore"));
}

TEST_F(FanDaemonTest, AFailedFloorReleasesAndAnOverheatingCpuGetsFullSpeedOnce) {
  floor(1, 2000);
  backend.floorWorks = false;
  const auto failed = daemon.handle(1, {FanOp::setFanFloor, 6, 2100});
  EXPECT_FALSE(failed->ok);
  EXPECT_EQ(daemon.holder(), std::nullopt);
  backend.floorWorks = true;
  backend.calls.clear();

  floor(1, 2000);
  backend.hot = true;
  run(3.0);
  EXPECT_THAT(backend.calls, ElementsAre("floor 2000", "full"));
  floor(1, 2000);  // a new floor while still hot goes straight back to full speed
  EXPECT_THAT(backend.calls, ElementsAre("floor 2000", "full", "floor 2000", "full"));
  // Not holding: the daemon leaves a hot machine's fans to the system.
  daemon.releaseAll("test");
  backend.calls.clear();
  run(3.0);
  EXPECT_TRUE(backend.calls.empty());
}

}  // namespace
}  // namespace quillmark
