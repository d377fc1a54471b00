#include "processes/testing/child_group.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "base/file_util.h"
#include "sampling/linux/proc_parsers.h"

namespace quillmark::testing {

void becomeSubreaper() { ::prctl(PR_SET_CHILD_SUBREAPER, 1); }

ChildGroup::ChildGroup(int members, bool ignoreTerm) {
  becomeSubreaper();
  int fds[2];
  if (::pipe(fds) != 0) return;
  leader_ = ::fork();
  if (leader_ == 0) {
    // Only async-signal-safe calls from here on.
    ::setpgid(0, 0);
    if (ignoreTerm) ::signal(SIGTERM, SIG_IGN);
    ::close(fds[0]);
    for (int i = 0; i < members; ++i) {
      const pid_t member = ::fork();
      if (member == 0) {
        for (;;) ::pause();
      }
      (void)!::write(fds[1], &member, sizeof member);
    }
    ::close(fds[1]);
    for (;;) ::pause();
  }
  ::close(fds[1]);
  if (leader_ < 0) {
    ::close(fds[0]);
    return;
  }
  ::setpgid(leader_, leader_);  // either side may win the race; both ask for the same
  all_.push_back(leader_);
  pid_t member = 0;
  for (int i = 0; i < members && ::read(fds[0], &member, sizeof member) == sizeof member; ++i)
    all_.push_back(member);
  ::close(fds[0]);
  // The members are forked; wait until each sits in the leader's group and is asleep.
  waitForStates(all_, [](char state) { return state == 'S'; });
}

ChildGroup::~ChildGroup() {
  if (leader_ <= 0) return;
  for (pid_t pid : all_) {
    ::kill(pid, SIGKILL);
    ::kill(pid, SIGCONT);
  }
  for (pid_t pid : all_) {
    if (pid == leader_ && reaped_) continue;
    ::waitpid(pid, nullptr, 0);  // members come back to us as the subreaper
  }
}

int ChildGroup::reapLeader() {
  int status = 0;
  if (::waitpid(leader_, &status, 0) != leader_) return -1;
  reaped_ = true;
  return status;
}

char processState(pid_t pid) {
  const auto text = readWholeFile("/proc/" + std::to_string(pid) + "/stat");
  if (!text) return '?';
  const auto stat = procfs::parsePidStat(*text);
  return stat ? stat->state : '?';
}

}  // namespace quillmark::testing
