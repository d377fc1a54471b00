// quillmark-guardian: started by Quillmark at the first pause and fed the paused list on its
// standard input, one JSON line per change. When the input ends with records still listed,
// Quillmark died without resuming them: thaw each one whose leader is unchanged, and remove them
// from the stored list. Signals nothing that is not in the list; exits as soon as its input ends.

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "base/defaults_store.h"
#include "base/log.h"
#include "processes/pause_actions.h"
#include "processes/paused_group.h"
#include "processes/process_os.h"

int main() {
  using namespace quillmark;
  // Keyboard and hang-up signals go to the whole terminal group, ours included; this process must
  // outlive Quillmark, not share its fate.
  for (int signalNumber : {SIGINT, SIGHUP, SIGTERM, SIGTSTP, SIGTTIN, SIGTTOU, SIGPIPE})
    std::signal(signalNumber, SIG_IGN);

  ProcessOS os{StartTimeSource::platform(), ProcessSignals::platform(), CgroupFreezer::platform()};
  const std::int32_t ownGroup = os.signals.ownGroup();
  std::vector<PausedGroup> groups;
  std::string line;
  // A line cut short by Quillmark's death (no newline before the end) is not a list: the last
  // whole one stands.
  while (std::getline(std::cin, line) && !std::cin.eof()) groups = PausedGroupCodec::decode(line, ownGroup);
  if (groups.empty()) return 0;

  std::vector<PausedGroup> handled;
  for (const auto& group : groups) {
    const auto result = PauseActions::resume(group, os);
    const std::string what = group.name + " pgid=" + std::to_string(group.pgid);
    if (result.outcome == PauseActions::ResumeOutcome::resumed)
      Log::debug("Quillmark ended without resuming; guardian resumed app group: " + what);
    else if (result.outcome == PauseActions::ResumeOutcome::reused)
      Log::debug("Guardian skipped resume after PGID reuse: " + what);
    else
      Log::debug("Guardian resume failed errno=" + std::to_string(result.error) + ": " + what);
    handled.push_back(group);
  }

  // The stored list now names groups that run again (or were never ours to touch).
  DefaultsStore& defaults = DefaultsStore::shared();
  if (auto text = defaults.getString(PausedGroupCodec::kDefaultsKey)) {
    auto stored = PausedGroupCodec::decode(*text, ownGroup);
    std::erase_if(stored, [&handled](const PausedGroup& s) {
      for (const auto& h : handled)
        if (h.pgid == s.pgid && h.leadStart == s.leadStart) return true;
      return false;
    });
    defaults.set(PausedGroupCodec::kDefaultsKey, PausedGroupCodec::encode(stored));
  }
  return 0;
}
