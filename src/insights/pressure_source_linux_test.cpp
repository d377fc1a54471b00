#include "insights/pressure_source_linux.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <vector>

#include "base/file_util.h"
#include "base/poll_main_loop.h"
#include "base/virtual_time.h"
#include "insights/testing/log_lines.h"

namespace quillmark {
namespace {

std::string psiText(double some10, double full10) {
  return "some avg10=" + std::to_string(some10) +
         " avg60=0.00 avg300=0.00 total=100\nfull avg10=" + std::to_string(full10) +
         " avg60=0.00 avg300=0.00 total=10\n";
}

class PsiSourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* state = std::getenv("XDG_STATE_HOME");
    ASSERT_NE(state, nullptr);
    path = std::string(state) + "/psi/memory";
    ASSERT_TRUE(makeDirectories(parentDirectory(path)));
    write(psiText(0, 0));
  }
  void write(const std::string& text) { ASSERT_TRUE(writeFileAtomically(path, text)); }

  VirtualClock clock;
  VirtualMainLoop loop{clock};
  std::string path;
  std::vector<PressureLevel> levels;
};

TEST_F(PsiSourceTest, PollingReadsEveryTwoSecondsAndReportsChanges) {
  PsiPressureSource source(loop, clock, path, /*allowTrigger=*/false);
  const int polls = testing::logLinesWith("trigger not tried; polling avg10 of " + path + " every 2 s");
  source.start([&](PressureLevel level) { levels.push_back(level); });
  EXPECT_EQ(source.mode(), PsiPressureSource::Mode::polling);
  EXPECT_EQ(testing::logLinesWith("trigger not tried; polling avg10 of " + path), polls + 1);
  ASSERT_EQ(loop.activeTimers(), 1u);

  write(psiText(3, 12));
  loop.advance(2);
  write("garbage");  // a damaged read keeps the level
  loop.advance(2);
  write(psiText(0, 0));
  loop.advance(10);
  EXPECT_EQ(levels, std::vector<PressureLevel>{PressureLevel::critical});
  loop.advance(2);
  EXPECT_EQ(levels, (std::vector<PressureLevel>{PressureLevel::critical, PressureLevel::normal}));
  EXPECT_TRUE(source.polling()) << "polling never stops without a trigger";
}

TEST_F(PsiSourceTest, TriggerModePollsOnlyFromAFiringUntilCalm) {
  // A regular file accepts the trigger text and never signals POLLPRI, so the watcher thread just
  // waits; the firing is delivered by hand, as the thread would post it.
  {
    PsiPressureSource source(loop, clock, path);
    source.start([&](PressureLevel level) { levels.push_back(level); });
    ASSERT_EQ(source.mode(), PsiPressureSource::Mode::trigger);
    EXPECT_FALSE(source.polling());
    write(psiText(15, 0));
    source.triggerFired();
    EXPECT_TRUE(source.polling());
    EXPECT_EQ(levels, std::vector<PressureLevel>{PressureLevel::warning});
    write(psiText(1, 0));
    loop.advance(12);
    EXPECT_EQ(levels, (std::vector<PressureLevel>{PressureLevel::warning, PressureLevel::normal}));
    EXPECT_FALSE(source.polling());
  }
  EXPECT_EQ(loop.activeTimers(), 0u);  // and the watcher thread was joined
}

TEST_F(PsiSourceTest, MissingFileLeavesTheLevelNormalAndSaysSo) {
  PsiPressureSource source(loop, clock, path + ".absent");
  source.start([&](PressureLevel level) { levels.push_back(level); });
  EXPECT_EQ(source.mode(), PsiPressureSource::Mode::unavailable);
  EXPECT_EQ(loop.activeTimers(), 0u);
  EXPECT_GE(testing::logLinesWith(".absent is missing or unreadable"), 1);
}

// This machine's kernel: Linux 6.5+ accepts an unprivileged 2 s trigger, older ones refuse it
// without CAP_SYS_RESOURCE. Either way the source must end up listening, and the log must say how.
TEST(PsiKernelTest, RealKernelTakesTheTriggerOrFallsBackToPolling) {
  if (access("/proc/pressure/memory", R_OK) != 0) GTEST_SKIP() << "no PSI in this kernel";
  PollMainLoop loop;  // never run: a firing trigger may post from the watcher thread
  const int registered = testing::logLinesWith("PSI trigger \"some 200000 2000000\" registered");
  const int refused = testing::logLinesWith("PSI trigger refused (");
  PsiPressureSource source(loop, Clock::system());
  source.start([](PressureLevel) {});
  if (source.mode() == PsiPressureSource::Mode::trigger) {
    std::cout << "[ path     ] PSI trigger accepted by this kernel\n";
    EXPECT_EQ(testing::logLinesWith("PSI trigger \"some 200000 2000000\" registered"), registered + 1);
    EXPECT_FALSE(source.polling());
  } else {
    std::cout << "[ path     ] PSI trigger refused; polling\n";
    ASSERT_EQ(source.mode(), PsiPressureSource::Mode::polling);
    EXPECT_EQ(testing::logLinesWith("PSI trigger refused ("), refused + 1);
    EXPECT_TRUE(source.polling());
  }
}

}  // namespace
}  // namespace quillmark
