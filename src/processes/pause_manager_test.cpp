#include "processes/pause_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "base/file_util.h"
#include "base/log.h"
#include "base/virtual_time.h"
#include "processes/process_names.h"
#include "processes/testing/fake_process_os.h"

namespace quillmark {
namespace {

using ::testing::ElementsAre;
using testing::FakeFreezer;
using testing::FakeFrontmost;
using testing::FakeSignals;
using testing::FakeStartTimes;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::SentSignal;

class PauseManagerTest : public ::testing::Test {
 protected:
  PauseManagerTest() {
    // Our own process 500 in group 500; an application group 700 with leader 700 and member 701.
    signals.groups = {{500, 500}, {700, 700}, {701, 700}, {800, 800}};
    signals.names = {{700, "Safari"}, {701, "Safari Helper"}, {800, "Mail"}};
    starts.stamps = {{700, 111}, {701, 112}, {800, 222}};
  }

  std::unique_ptr<PauseManager> make() {
    return std::make_unique<PauseManager>(
        PauseManager::Environment{defaults, loop, clock, ProcessOS{starts, signals, freezer}, &frontmost});
  }

  std::string storedText() { return defaults.getString(PausedGroupCodec::kDefaultsKey).value_or(""); }

  VirtualClock clock;
  VirtualMainLoop loop{clock};
  MemoryDefaultsStore defaults;
  FakeStartTimes starts;
  FakeSignals signals;
  FakeFreezer freezer;
  FakeFrontmost frontmost;
};

TEST_F(PauseManagerTest, RefusesDangerousTargets) {
  auto manager = make();
  EXPECT_FALSE(manager->canPause(1, "launchd"));
  EXPECT_FALSE(manager->canPause(500, "quillmark"));
  signals.groups[600] = 500;  // another process in our own group
  EXPECT_FALSE(manager->canPause(600, "child"));
  EXPECT_FALSE(manager->canPause(999, "gone"));  // getpgid fails
  EXPECT_TRUE(manager->canPause(700, "Safari"));
  signals.groups[901] = 900;  // a launcher that kept its child in its own group
  signals.names[900] = "gnome-shell";
  EXPECT_FALSE(manager->canPause(901, "gedit"));
  signals.foreground[800] = true;  // `mail` running in a terminal: only its unit may be frozen
  EXPECT_FALSE(manager->canPause(800, "Mail"));
  freezer.units[800] = "/app-Mail-1.scope";
  EXPECT_TRUE(manager->canPause(800, "Mail"));
  EXPECT_FALSE(manager->pause(600, "child"));
  EXPECT_THAT(signals.sent, IsEmpty());

  // The name rules, on both platforms' tables.
  EXPECT_TRUE(ProcessNames::isPauseBlocked("Dock", ProcessNames::kDarwinPauseBlocked));
  EXPECT_TRUE(ProcessNames::isPauseBlocked("WindowServer -daemon", ProcessNames::kDarwinPauseBlocked));
  EXPECT_FALSE(ProcessNames::isPauseBlocked("backboardd", ProcessNames::kDarwinPauseBlocked));
  EXPECT_TRUE(ProcessNames::isProtected("backboardd", ProcessNames::kDarwinProtected));
  EXPECT_FALSE(ProcessNames::isProtected("Finder", ProcessNames::kDarwinProtected));
  EXPECT_TRUE(ProcessNames::isPauseBlocked("  gnome-shell  --mode", ProcessNames::kLinuxPauseBlocked));
  EXPECT_FALSE(ProcessNames::isPauseBlocked("Gnome-shell", ProcessNames::kLinuxPauseBlocked));
}

TEST_F(PauseManagerTest, PausesAGroupOnceAndStoresTheRecord) {
  auto manager = make();
  clock.advance(5);
  EXPECT_TRUE(manager->pause(701, "Safari Helper"));
  EXPECT_FALSE(manager->pause(700, "Safari"));  // same group: no second record, no second signal
  EXPECT_THAT(signals.sent, ElementsAre(SentSignal{700, SIGSTOP, true}));
  ASSERT_EQ(manager->paused().size(), 1u);
  const PausedGroup& group = manager->paused()[0];
  EXPECT_EQ(group.leadPid, 700);  // the leader lives, so it identifies the group
  EXPECT_EQ(group.leadStart, 111u);
  EXPECT_EQ(group.name, "Safari");
  EXPECT_EQ(group.at, clock.absoluteNow());
  EXPECT_EQ(PausedGroupCodec::decode(storedText(), 500), manager->paused());
  EXPECT_EQ(manager->entry(701)->pgid, 700);
  EXPECT_FALSE(manager->entry(800));

  // A group whose leader is gone is identified by the chosen process.
  signals.groups[900] = 901;
  starts.stamps[900] = 333;
  EXPECT_TRUE(manager->pause(900, "orphan"));
  EXPECT_EQ(manager->paused()[1].leadPid, 900);

  // A failed stop leaves no record.
  signals.groupError = EPERM;
  EXPECT_FALSE(manager->pause(800, "Mail"));
  EXPECT_EQ(manager->paused().size(), 2u);
}

TEST_F(PauseManagerTest, ResumeNeverSignalsAReusedGroup) {
  auto manager = make();
  ASSERT_TRUE(manager->pause(700, "Safari"));
  ASSERT_TRUE(manager->pause(800, "Mail"));
  starts.stamps[700] = 999;  // the leader exited and pid 700 now belongs to someone else
  signals.sent.clear();
  manager->resumeAll();
  EXPECT_THAT(signals.sent, ElementsAre(SentSignal{800, SIGCONT, true}));
  EXPECT_THAT(manager->paused(), IsEmpty());
  EXPECT_EQ(storedText(), "[]");
  EXPECT_THAT(readWholeFile(Log::shared().path()).value_or(""),
              HasSubstr("Skipped resume after PGID reuse; removed record: Safari pgid=700"));
}

TEST_F(PauseManagerTest, ReconcileForgetsGroupsThawedBehindOurBack) {
  {
    auto manager = make();
    ASSERT_TRUE(manager->pause(700, "Safari"));
    ASSERT_TRUE(manager->pause(800, "Mail"));
  }
  signals.stopped = {{700, true}, {800, false}};  // someone ran kill -CONT on Mail
  starts.boot = "boot-1";
  signals.sent.clear();
  auto manager = make();  // a new launch reconciles what was stored
  ASSERT_EQ(manager->paused().size(), 1u);
  EXPECT_EQ(manager->paused()[0].pgid, 700);
  EXPECT_THAT(signals.sent, IsEmpty());

  // After a reboot no stamp of the old boot names a live process, whatever its value.
  starts.boot = "boot-2";
  manager->reconcile();
  EXPECT_THAT(manager->paused(), IsEmpty());
  EXPECT_THAT(signals.sent, IsEmpty());
}

TEST_F(PauseManagerTest, ADamagedStoredListLoadsEmptyAndSignalsNothing) {
  signals.stopped = {{1, true}, {500, true}, {700, true}};
  starts.stamps[1] = 5;
  starts.stamps[500] = 6;
  for (const DefaultsValue& value : std::vector<DefaultsValue>{
           true, std::string("not json"), std::vector<std::string>{"[]"},
           std::string(R"([{"pgid":1,"leadPid":1,"name":"init","leadStart":5,"at":0}])"),
           std::string(R"([{"pgid":500,"leadPid":500,"name":"us","leadStart":6,"at":0}])"),
           std::string(R"([{"pgid":700,"leadPid":700,"name":"Safari","leadStart":"111","at":0}])")}) {
    defaults.set(PausedGroupCodec::kDefaultsKey, value);
    auto manager = make();
    EXPECT_THAT(manager->paused(), IsEmpty());
    manager->resumeAll();
    frontmost.front = 700;
    loop.advance(1);
  }
  EXPECT_THAT(signals.sent, IsEmpty());
}

TEST_F(PauseManagerTest, FreezesTheAppUnitWhenThereIsOne) {
  freezer.units[701] = "/user.slice/app-gnome-org.gnome.Safari-42.scope";
  auto manager = make();
  ASSERT_TRUE(manager->pause(701, "Safari Helper"));
  EXPECT_THAT(signals.sent, IsEmpty());
  const PausedGroup group = manager->paused()[0];
  EXPECT_EQ(group.method, PauseMethod::freezer);
  EXPECT_EQ(group.leadPid, 701);      // the process in the unit, not the group's leader
  freezer.units[800] = group.cgroup;  // another group of the same app: already frozen with it
  EXPECT_FALSE(manager->pause(800, "Mail"));
  manager->reconcile();
  EXPECT_EQ(manager->paused().size(), 1u);  // "frozen", although no member is in state T

  manager->resume(group);
  EXPECT_THAT(signals.sent, IsEmpty());
  EXPECT_EQ(freezer.writes.back(), std::make_pair(group.cgroup, false));

  // A unit that refuses the freeze: no record, and no group stop in its place.
  freezer.error = EACCES;
  EXPECT_FALSE(manager->pause(701, "Safari Helper"));
  EXPECT_THAT(manager->paused(), IsEmpty());
  EXPECT_THAT(signals.sent, IsEmpty());
}

TEST_F(PauseManagerTest, BringingAFrozenAppForwardThawsAndActivatesIt) {
  auto manager = make();
  EXPECT_EQ(loop.activeTimers(), 0u);
  ASSERT_TRUE(manager->pause(700, "Safari"));
  EXPECT_EQ(loop.activeTimers(), 1u);

  frontmost.front = 800;  // another app in front: nothing happens
  loop.advance(1.0);
  EXPECT_EQ(manager->paused().size(), 1u);

  frontmost.front = 701;
  signals.sent.clear();
  loop.advance(0.5);
  EXPECT_THAT(signals.sent, ElementsAre(SentSignal{700, SIGCONT, true}));
  EXPECT_THAT(manager->paused(), IsEmpty());
  EXPECT_EQ(loop.activeTimers(), 0u);
  loop.advance(0.29);
  EXPECT_THAT(frontmost.activated, IsEmpty());
  loop.advance(0.02);
  EXPECT_THAT(frontmost.activated, ElementsAre(701));
}

}  // namespace
}  // namespace quillmark
