#include "processes/pause_guardian.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "base/file_util.h"
#include "base/json_defaults_store.h"
#include "base/paths.h"
#include "processes/process_os_linux.h"
#include "processes/testing/child_group.h"

extern char** environ;

namespace quillmark {
namespace {

using testing::ChildGroup;
using testing::waitForStates;

auto isStopped = [](char state) { return state == 'T'; };
auto isRunning = [](char state) { return state == 'S' || state == 'R'; };

TEST(PauseGuardianTest, RunsExactlyWhileSomethingIsPaused) {
  testing::becomeSubreaper();
  PauseGuardian guardian(QM_GUARDIAN_PATH);
  EXPECT_FALSE(guardian.running());
  guardian.update({PausedGroup{4242, 4242, "x", 1, 0, PauseMethod::signal, "", ""}});
  ASSERT_TRUE(guardian.running());
  const pid_t pid = guardian.pid();
  guardian.update({});
  EXPECT_FALSE(guardian.running());
  EXPECT_EQ(::kill(pid, 0), -1) << "the guardian was reaped";
}

// Quillmark killed with SIGKILL while it holds a stopped group: the guardian thaws the group
// within two seconds and clears the stored record.
TEST(PauseGuardianTest, ThawsTheGroupWhenQuillmarkIsKilled) {
  ChildGroup group;
  ASSERT_EQ(group.all().size(), 3u);
  int out[2];
  ASSERT_EQ(::pipe(out), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, out[0]);
  std::string pid = std::to_string(group.leader());
  char* argv[] = {const_cast<char*>(QM_GUARDIAN_HOST), const_cast<char*>(QM_GUARDIAN_PATH), pid.data(),
                  nullptr};
  pid_t host = -1;
  ASSERT_EQ(::posix_spawn(&host, QM_GUARDIAN_HOST, &actions, nullptr, argv, environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  ::close(out[1]);
  FILE* reply = ::fdopen(out[0], "r");
  int guardian = -1;
  const bool paused = std::fscanf(reply, "paused %d", &guardian) == 1;
  std::fclose(reply);
  if (!paused) {
    ::kill(host, SIGKILL);
    ::waitpid(host, nullptr, 0);
    FAIL() << "the stand-in for Quillmark did not pause the group";
  }
  EXPECT_TRUE(waitForStates(group.all(), isStopped));
  EXPECT_GT(guardian, 0);

  ASSERT_EQ(::kill(host, SIGKILL), 0);
  ::waitpid(host, nullptr, 0);
  EXPECT_TRUE(waitForStates(group.all(), isRunning, 2.0));
  if (guardian > 0) ::waitpid(guardian, nullptr, 0);  // it comes back to us as the subreaper
  JsonDefaultsStore stored(configDirectory() + "/settings.json");
  EXPECT_EQ(stored.getString("pausedGroups"), "[]");
  EXPECT_THAT(readWholeFile(logFilePath()).value_or(""),
              ::testing::HasSubstr("guardian resumed app group: "));
}

// Quillmark killed in the middle of sending a list: the guardian acts on the last whole one.
TEST(PauseGuardianTest, IgnoresALineCutShortByTheCrash) {
  ChildGroup group;
  ASSERT_EQ(::kill(-group.leader(), SIGSTOP), 0);
  ASSERT_TRUE(waitForStates(group.all(), isStopped));
  const auto start = LinuxStartTimeSource().startTime(group.leader());
  ASSERT_TRUE(start);
  const std::string whole = PausedGroupCodec::encode(
      {PausedGroup{group.leader(), group.leader(), "child", *start, 0, PauseMethod::signal, "", ""}});
  int input[2];
  ASSERT_EQ(::pipe2(input, O_CLOEXEC), 0);  // the guardian must hold no write end of its own input
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
  char* argv[] = {const_cast<char*>(QM_GUARDIAN_PATH), nullptr};
  pid_t guardian = -1;
  ASSERT_EQ(::posix_spawn(&guardian, QM_GUARDIAN_PATH, &actions, nullptr, argv, environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  ::close(input[0]);
  const std::string sent = whole + "\n" + whole.substr(0, whole.size() / 2);
  EXPECT_EQ(::write(input[1], sent.data(), sent.size()), static_cast<ssize_t>(sent.size()));
  ::close(input[1]);
  ::waitpid(guardian, nullptr, 0);
  EXPECT_TRUE(waitForStates(group.all(), isRunning));
}

}  // namespace
}  // namespace quillmark
