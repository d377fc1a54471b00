#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "processes/paused_group.h"

namespace quillmark {

// Keeps a small guardian process of ours running exactly while something is paused, so that no
// application stays frozen when Quillmark dies without resuming (a crash, SIGKILL). The guardian
// holds the current paused list, fed over a socket at every change; when the socket closes with
// records still listed, Quillmark is gone, and the guardian resumes those records with the
// start-stamp guard and removes them from the stored list. When the list empties it is told so
// and exits. A guardian that cannot be started is logged, and pausing goes on without one.
//
// Main thread only (it follows PauseManager::paused).
class PauseGuardian {
 public:
  // guardianPath: the quillmark-guardian executable.
  explicit PauseGuardian(std::string guardianPath);
  // With records still listed this behaves like a crash: the guardian resumes them.
  ~PauseGuardian();
  PauseGuardian(const PauseGuardian&) = delete;
  PauseGuardian& operator=(const PauseGuardian&) = delete;

  void update(const std::vector<PausedGroup>& groups);
  [[nodiscard]] bool running() const { return pid_ > 0; }
  [[nodiscard]] pid_t pid() const { return pid_; }

  // Beside the running program, then the installed libexec folder; empty when neither exists.
  [[nodiscard]] static std::string findExecutable();

 private:
  bool start();
  void stop();
  bool send(const std::string& line);

  std::string path_;
  pid_t pid_ = -1;
  int socket_ = -1;
  bool warned_ = false;
};

}  // namespace quillmark
