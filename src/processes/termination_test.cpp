#include "processes/termination.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "base/file_util.h"
#include "base/log.h"
#include "base/virtual_time.h"
#include "processes/testing/fake_process_os.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::SentSignal;

class TerminationTest : public ::testing::Test {
 protected:
  TerminationTest() {
    signals.groups = {{500, 500}, {42, 42}};
    starts.stamps = {{42, 1000}};
  }
  VirtualClock clock;
  VirtualMainLoop loop{clock};
  testing::FakeStartTimes starts;
  testing::FakeSignals signals;
  ProcessTerminator terminator{loop, starts, signals};
};

TEST_F(TerminationTest, RefusesPidOneZeroItselfAndItsGroup) {
  EXPECT_FALSE(terminator.terminate(0));
  EXPECT_FALSE(terminator.terminate(1));
  EXPECT_FALSE(terminator.terminate(500));
  EXPECT_FALSE(terminator.isKillable(500, "quillmark"));
  EXPECT_FALSE(terminator.isKillable(1, "init"));
  EXPECT_TRUE(terminator.isKillable(42, "worker"));
  signals.groups[43] = 500;  // the guardian, say
  EXPECT_FALSE(terminator.isKillable(43, "quillmark-guardian"));
  EXPECT_FALSE(terminator.terminate(43));
  loop.advance(5);
  EXPECT_THAT(signals.sent, IsEmpty());
}

TEST_F(TerminationTest, EscalatesOnlyAgainstTheSameLiveProcess) {
  // Ignores SIGTERM: killed exactly 3.0 s later, with the log line.
  ASSERT_TRUE(terminator.terminate(42));
  loop.advance(2.99);
  EXPECT_THAT(signals.sent, ElementsAre(SentSignal{42, SIGTERM, false}));
  loop.advance(0.02);
  EXPECT_THAT(signals.sent, ElementsAre(SentSignal{42, SIGTERM, false}, SentSignal{42, SIGKILL, false}));
  EXPECT_THAT(readWholeFile(Log::shared().path()).value_or(""),
              HasSubstr("SIGTERM had no effect; escalated to SIGKILL: 42"));

  // A process that exits, or one whose pid was reused, is the real-process test's concern; here,
  // the rule that needs no process at all: no first stamp, no escalation.
  starts.stamps.erase(42);
  signals.sent.clear();
  ASSERT_TRUE(terminator.terminate(42));
  loop.advance(3.0);
  EXPECT_THAT(signals.sent, ElementsAre(SentSignal{42, SIGTERM, false}));
}

}  // namespace
}  // namespace quillmark
