#include "fans/fan_helper_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "base/paths.h"
#include "base/virtual_time.h"
#include "fans/testing/fake_fan_transport.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Status = FanHelperTransport::ServiceStatus;
using State = FanHelperClient::State;

class FanHelperClientTest : public ::testing::Test {
 protected:
  VirtualClock clock;
  VirtualMainLoop loop{clock};
  testing::FakeFanTransport transport;
};

TEST_F(FanHelperClientTest, StateFollowsTheServiceAndAFailedRegistrationIsLogged) {
  const std::pair<Status, State> table[] = {{Status::notRegistered, State::notRegistered},
                                            {Status::enabled, State::enabled},
                                            {Status::requiresApproval, State::requiresApproval},
                                            {Status::notFound, State::unavailable}};
  FanHelperClient client(transport, loop);
  for (const auto& [status, state] : table) {
    transport.serviceStatus = status;
    client.refreshState();
    EXPECT_EQ(client.state(), state);
  }
  transport.serviceStatus = Status::notRegistered;
  transport.statusAfterRegister = Status::requiresApproval;
  transport.registerError = "Operation not permitted";
  EXPECT_FALSE(client.registerDaemon());
  EXPECT_EQ(client.state(), State::requiresApproval);
  EXPECT_THAT(readWholeFile(logFilePath()).value_or(""),
              HasSubstr("Helper registration failed: Operation not permitted; state=requiresApproval"));
}

TEST_F(FanHelperClientTest, UnreachableDaemonAnswersAtOnceAndStartsNoHeartbeat) {
  transport.reachable = false;
  FanHelperClient client(transport, loop);
  std::vector<bool> answers;
  std::optional<std::vector<FanReading>> fans;
  client.setFanFloor(3000, [&](bool ok) { answers.push_back(ok); });
  client.readFans([&](std::vector<FanReading> list) { fans = list; });
  EXPECT_THAT(answers, ElementsAre(false));
  ASSERT_TRUE(fans);
  EXPECT_THAT(*fans, IsEmpty());
  EXPECT_FALSE(client.heartbeatRunning());
  loop.advance(10.0);
  EXPECT_THAT(transport.sent, IsEmpty());
}

TEST_F(FanHelperClientTest, OneHeartbeatTimerEveryTwoSecondsUntilTheReleaseReachesTheDaemon) {
  FanHelperClient client(transport, loop);
  client.setFanFloor(3000, [](bool) {});
  client.setFanFloor(3200, [](bool) {});
  EXPECT_EQ(loop.activeTimers(), 1u);
  loop.advance(1.9);
  EXPECT_EQ(transport.count(FanOp::heartbeat), 0);
  loop.advance(6.1);  // t = 8.0
  EXPECT_EQ(transport.count(FanOp::heartbeat), 4);
  EXPECT_EQ(transport.opened, 1);  // one lazily opened connection carries everything

  // The daemon died: the next heartbeat opens a fresh connection by itself.
  transport.invalidate(1);
  loop.advance(2.0);
  EXPECT_EQ(transport.opened, 2);
  EXPECT_EQ(transport.sent.back().connection, 2);

  // A release while unreachable fails and keeps the heartbeat; one that is sent stops it.
  transport.invalidate(2);
  loop.runUntilIdle();
  transport.reachable = false;
  bool released = true;
  client.releaseControl([&](bool ok) { released = ok; });
  EXPECT_FALSE(released);
  EXPECT_TRUE(client.heartbeatRunning());
  transport.reachable = true;
  client.releaseControl([](bool) {});
  EXPECT_EQ(transport.sent.back().request.op, FanOp::releaseControl);
  EXPECT_EQ(transport.sent.back().connection, 3);
  EXPECT_FALSE(client.heartbeatRunning());
  EXPECT_EQ(loop.activeTimers(), 0u);
  const auto before = transport.sent.size();
  loop.advance(10.0);
  EXPECT_EQ(transport.sent.size(), before);
}

TEST_F(FanHelperClientTest, RepliesArriveOnTheMainLoopAndErrorsAreLoggedWithoutOne) {
  auto client = std::make_unique<FanHelperClient>(transport, loop);
  std::vector<std::string> events;
  client->setFanFloor(2500, [&](bool ok) { events.push_back(ok ? "floor ok" : "floor refused"); });
  client->readFans(
      [&](std::vector<FanReading> fans) { events.push_back("fans " + std::to_string(fans.size())); });
  transport.answerAll(true, {{0, 2500, 2500, 1000, 6000, true}});
  EXPECT_THAT(events, IsEmpty());  // not on the transport's thread
  loop.runUntilIdle();
  EXPECT_THAT(events, ElementsAre("floor ok", "fans 1"));
  // Every command carries its own id so answers can be matched.
  EXPECT_NE(transport.sent[0].request.id, transport.sent[1].request.id);
  EXPECT_EQ(transport.sent[0].request.rpm, 2500);

  client->version([&](std::optional<std::string>) { events.push_back("version"); });
  transport.sent.back().onError("Couldn't communicate with a helper application.");
  loop.runUntilIdle();
  EXPECT_EQ(events.size(), 2u);
  EXPECT_THAT(readWholeFile(logFilePath()).value_or(""),
              HasSubstr("Helper XPC error: Couldn't communicate with a helper application."));

  // An answer that arrives after the client is gone reaches nobody.
  client->releaseControl([&](bool) { events.push_back("late"); });
  client.reset();
  transport.answerAll(true);
  transport.invalidate(1);
  loop.runUntilIdle();
  EXPECT_EQ(events.size(), 2u);
}

TEST_F(FanHelperClientTest, UnregisterDropsConnectionAndHeartbeat) {
  FanHelperClient client(transport, loop);
  client.setFanFloor(2000, [](bool) {});
  transport.serviceStatus = Status::notRegistered;
  client.unregister();
  EXPECT_EQ(transport.unregistrations, 1);
  EXPECT_FALSE(client.heartbeatRunning());
  EXPECT_EQ(client.state(), State::notRegistered);
  // The dropped connection's late invalidation must not drop the next one.
  client.readFans([](std::vector<FanReading>) {});
  transport.invalidate(1);
  loop.runUntilIdle();
  client.readFans([](std::vector<FanReading>) {});
  EXPECT_EQ(transport.opened, 2);
}

}  // namespace
}  // namespace quillmark
