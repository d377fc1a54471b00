#pragma once

#include <chrono>
#include <thread>

namespace quillmark::testing {

template <class Pred>
bool waitForStates(const std::vector<pid_t>& pids, Pred pred, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  for (;;) {
    bool all = true;
    for (pid_t pid : pids) all = all && pred(processState(pid));
    if (all) return true;
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

}  // namespace quillmark::testing
