#include "processes/process_os_linux.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <tuple>

#include "base/file_util.h"
#include "base/log.h"
#include "base/virtual_time.h"
#include "processes/pause_manager.h"
#include "processes/termination.h"
#include "processes/testing/child_group.h"
#include "processes/testing/fake_process_os.h"

namespace quillmark {
namespace {

using testing::ChildGroup;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::processState;
using testing::waitForStates;

auto isStopped = [](char state) { return state == 'T'; };
auto isRunning = [](char state) { return state == 'S' || state == 'R'; };

class LinuxProcessControlTest : public ::testing::Test {
 protected:
  std::unique_ptr<PauseManager> makeManager(CgroupFreezer& freezer) {
    return std::make_unique<PauseManager>(
        PauseManager::Environment{defaults, loop, clock, ProcessOS{starts, signals, freezer}, nullptr});
  }

  VirtualClock clock;
  VirtualMainLoop loop{clock};
  MemoryDefaultsStore defaults;
  LinuxStartTimeSource starts;
  LinuxProcessSignals signals;
  LinuxCgroupFreezer noFreezer{"/nonexistent-cgroup-root"};
};

// A leader and two members: every one is stopped and continued; a thaw by someone else is noticed.
TEST_F(LinuxProcessControlTest, PausesAndResumesEveryMemberOfAGroup) {
  ChildGroup group;
  ASSERT_EQ(group.all().size(), 3u);
  auto manager = makeManager(noFreezer);
  ASSERT_TRUE(manager->pause(group.all()[2], "member"));
  EXPECT_TRUE(waitForStates(group.all(), isStopped));
  const PausedGroup record = manager->paused()[0];
  EXPECT_EQ(std::tie(record.pgid, record.leadPid), std::tie(group.all()[0], group.all()[0]));
  EXPECT_EQ(record.leadStart, starts.startTime(group.leader()));
  EXPECT_EQ(record.boot, starts.bootId());
  EXPECT_EQ(manager->entry(group.all()[1])->pgid, group.leader());
  manager->reconcile();  // still stopped: kept
  ASSERT_EQ(manager->paused().size(), 1u);
  manager->resumeAll();
  EXPECT_TRUE(waitForStates(group.all(), isRunning));
  EXPECT_THAT(manager->paused(), IsEmpty());

  ASSERT_TRUE(manager->pause(group.leader(), "leader"));
  ASSERT_TRUE(waitForStates(group.all(), isStopped));
  ASSERT_EQ(::kill(-group.leader(), SIGCONT), 0);
  ASSERT_TRUE(waitForStates(group.all(), isRunning));
  manager->reconcile();
  EXPECT_THAT(manager->paused(), IsEmpty());
}

TEST_F(LinuxProcessControlTest, RefusesInitAndOurselves) {
  auto manager = makeManager(noFreezer);
  ProcessTerminator terminator(loop, starts, signals);
  EXPECT_FALSE(manager->pause(1, "init"));
  EXPECT_FALSE(manager->pause(::getpid(), "tests"));
  EXPECT_FALSE(terminator.terminate(1));
  EXPECT_FALSE(terminator.terminate(::getpid()));
  // A child left in our own group is refused as well.
  const pid_t child = ::fork();
  if (child == 0) {
    for (;;) ::pause();
  }
  EXPECT_FALSE(manager->canPause(child, "child"));
  EXPECT_FALSE(manager->pause(child, "child"));
  EXPECT_FALSE(terminator.terminate(child));
  EXPECT_NE(processState(child), 'T');
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_THAT(manager->paused(), IsEmpty());
}

// A job in the foreground of a terminal (here a pseudo-terminal the child controls) is not
// stopped by signal: its shell would take the terminal back and strand it in the background.
TEST_F(LinuxProcessControlTest, LeavesATerminalsForegroundJobAlone) {
  const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(master, 0);
  ASSERT_EQ(::grantpt(master) | ::unlockpt(master), 0);
  const std::string terminal = ::ptsname(master);
  const pid_t child = ::fork();
  if (child == 0) {
    ::setsid();
    ::open(terminal.c_str(), O_RDWR);  // a session leader's first terminal becomes its own
    for (;;) ::pause();
  }
  bool foreground = false;
  for (int i = 0; i < 400 && !foreground; ++i, ::usleep(5000))
    foreground = signals.isTerminalForegroundJob(child);
  EXPECT_TRUE(foreground);
  auto manager = makeManager(noFreezer);
  EXPECT_FALSE(manager->pause(child, "htop"));
  EXPECT_NE(processState(child), 'T');
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  ::close(master);
}

TEST_F(LinuxProcessControlTest, TerminationEscalatesOnlyAgainstTheSameProcess) {
  ProcessTerminator terminator(loop, starts, signals);
  {
    ChildGroup stubborn(0, /*ignoreTerm=*/true);
    ASSERT_TRUE(terminator.terminate(stubborn.leader()));
    loop.advance(3.0);
    const int status = stubborn.reapLeader();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
  }
  {
    ChildGroup polite(0);
    ASSERT_TRUE(terminator.terminate(polite.leader()));
    const int status = polite.reapLeader();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    const std::string line = "escalated to SIGKILL: " + std::to_string(polite.leader()) + "\n";
    loop.advance(3.0);
    EXPECT_THAT(readWholeFile(Log::shared().path()).value_or(""), Not(HasSubstr(line)));
  }
  {
    // The pid's start stamp changes under us: the process there now is not the one we asked to end.
    ChildGroup stubborn(0, /*ignoreTerm=*/true);
    testing::FakeStartTimes fakeStarts;
    fakeStarts.stamps[stubborn.leader()] = 1;
    ProcessTerminator guarded(loop, fakeStarts, signals);
    ASSERT_TRUE(guarded.terminate(stubborn.leader()));
    fakeStarts.stamps[stubborn.leader()] = 2;
    loop.advance(3.0);
    EXPECT_TRUE(isRunning(processState(stubborn.leader())));
  }
}

TEST_F(LinuxProcessControlTest, AHandleNeverReachesAReapedProcess) {
  ChildGroup child(0);
  auto handle = signals.open(child.leader());
  ASSERT_NE(handle, nullptr);
  if (!handle->boundToProcess()) GTEST_SKIP() << "this kernel has no pidfd_open";
  ASSERT_EQ(::kill(child.leader(), SIGKILL), 0);
  child.reapLeader();
  EXPECT_EQ(handle->signal(0), ESRCH);
  EXPECT_FALSE(starts.startTime(child.leader()));
}

// A cgroup2 hierarchy mounted by the test, with one app unit holding two processes that sit in
// different process groups: the freezer stops both, which a group signal could not.
class CgroupFreezerTest : public LinuxProcessControlTest {
 protected:
  void SetUp() override {
    mount_ = std::filesystem::temp_directory_path() / ("qm-cgroup-" + std::to_string(::getpid()));
    std::filesystem::create_directories(mount_);
    if (::mount("none", mount_.c_str(), "cgroup2", 0, nullptr) != 0) {
      std::filesystem::remove(mount_);
      mount_.clear();
      GTEST_SKIP() << "cannot mount a cgroup2 hierarchy here (needs CAP_SYS_ADMIN and cgroup v2)";
    }
    unit_ = "/app-test-qm\\x2dfreeze-" + std::to_string(::getpid()) + ".scope";
    if (::mkdir((mount_.string() + unit_).c_str(), 0755) != 0) GTEST_SKIP() << "cannot create a cgroup";
  }
  void TearDown() override {
    groups_.clear();  // kills and reaps the children before the cgroup goes
    if (mount_.empty()) return;
    ::rmdir((mount_.string() + unit_).c_str());
    ::umount(mount_.c_str());
    std::filesystem::remove(mount_);
  }
  bool moveIntoUnit(pid_t pid) {
    std::ofstream procs(mount_.string() + unit_ + "/cgroup.procs");
    procs << pid;
    procs.flush();
    return procs.good();
  }

  std::filesystem::path mount_;
  std::string unit_;
  std::vector<std::unique_ptr<ChildGroup>> groups_;
};

TEST_F(CgroupFreezerTest, FreezesEveryProcessOfTheUnit) {
  groups_.push_back(std::make_unique<ChildGroup>(0));
  groups_.push_back(std::make_unique<ChildGroup>(0));
  const pid_t app = groups_[0]->leader();
  const pid_t helper = groups_[1]->leader();
  if (!moveIntoUnit(app) || !moveIntoUnit(helper))
    GTEST_SKIP() << "cannot move processes into a cgroup of the mounted hierarchy (delegation rules)";
  LinuxCgroupFreezer freezer(mount_.string());
  ASSERT_EQ(freezer.freezableUnit(app), unit_);

  auto manager = makeManager(freezer);
  ASSERT_TRUE(manager->pause(app, "app"));
  ASSERT_EQ(manager->paused()[0].method, PauseMethod::freezer);
  auto frozen = [&] {
    return freezer.isFrozen(unit_) == true &&
           readWholeFile(mount_.string() + unit_ + "/cgroup.events")->find("frozen 1") != std::string::npos;
  };
  for (int i = 0; i < 400 && !frozen(); ++i) ::usleep(5000);
  ASSERT_TRUE(frozen());
  // Frozen tasks sleep in the freezer; none is in the job-control stop a shell would notice.
  EXPECT_EQ(processState(app), 'S');
  EXPECT_EQ(processState(helper), 'S');
  manager->reconcile();
  ASSERT_EQ(manager->paused().size(), 1u);

  manager->resumeAll();
  EXPECT_EQ(freezer.isFrozen(unit_), false);
  EXPECT_THAT(manager->paused(), IsEmpty());
}

}  // namespace
}  // namespace quillmark
