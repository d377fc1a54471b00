#include "processes/pause_manager.h"

#include <algorithm>
#include <cerrno>
#include <csignal>

#include "base/log.h"
#include "processes/pause_actions.h"
#include "processes/process_names.h"

namespace quillmark {
namespace {

std::string groupText(const PausedGroup& group) { return group.name + " pgid=" + std::to_string(group.pgid); }

}  // namespace

PauseManager::PauseManager(Environment environment) : env_(environment) {
  std::vector<PausedGroup> stored;
  if (auto text = env_.defaults.getString(PausedGroupCodec::kDefaultsKey))
    stored = PausedGroupCodec::decode(*text, env_.os.signals.ownGroup());
  paused.set(std::move(stored));
  reconcile();
}

PauseManager::~PauseManager() {
  *alive_ = false;
  if (watchTimer_ != 0) env_.loop.cancelTimer(watchTimer_);
}

bool PauseManager::canPause(std::int32_t pid, std::string_view name) {
  if (pid < 2 || pid == env_.os.signals.ownPid()) return false;
  const std::int32_t pgid = env_.os.signals.processGroup(pid);
  if (pgid < 2) return false;
  const std::int32_t own = env_.os.signals.ownGroup();
  if (own < 2 || pgid == own) return false;
  if (ProcessNames::isPauseBlocked(name)) return false;
  // Freezing the app's own unit touches neither the process group nor the terminal.
  if (env_.os.freezer.freezableUnit(pid)) return true;
  // Some launchers leave what they start in their own group: stopping it would stop the launcher.
  if (const auto leader = env_.os.signals.shortName(pgid); leader && ProcessNames::isPauseBlocked(*leader))
    return false;
  return !env_.os.signals.isTerminalForegroundJob(pid);
}

bool PauseManager::pause(std::int32_t pid, std::string_view name) {
  if (!canPause(pid, name)) return false;
  const std::int32_t pgid = env_.os.signals.processGroup(pid);
  if (pgid <= 1) return false;
  // The app's unit when it has one: freezing it holds every process of the app, whatever group.
  const auto unit = env_.os.freezer.freezableUnit(pid);
  const auto& current = paused.value();
  if (std::any_of(current.begin(), current.end(),
                  [&](const auto& g) { return g.pgid == pgid || (unit && g.cgroup == *unit); }))
    return false;

  PausedGroup group;
  group.pgid = pgid;
  // A frozen unit is identified by the chosen process, which lives in it; a stopped group by its
  // leader while that lives.
  group.leadPid = !unit && env_.os.starts.startTime(pgid) ? pgid : pid;
  const auto leadStart = env_.os.starts.startTime(group.leadPid);
  if (!leadStart) return false;
  group.leadStart = *leadStart;
  group.boot = env_.os.starts.bootId();
  group.name = env_.os.signals.shortName(group.leadPid).value_or(std::string(name));
  if (group.name.empty()) group.name = std::string(name);
  if (unit) {
    group.method = PauseMethod::freezer;
    group.cgroup = *unit;
  }

  // No fallback from a refused freeze to a group stop: canPause allowed this app for its unit,
  // not for a signal to its group.
  const int error =
      unit ? env_.os.freezer.setFrozen(*unit, true) : env_.os.signals.signalGroup(pgid, SIGSTOP);
  if (error != 0) {
    Log::debug("Pause failed errno=" + std::to_string(error) + ": " + std::string(name) + " group " +
               std::to_string(pgid));
    return false;
  }
  group.at = env_.clock.absoluteNow();
  auto next = current;
  next.push_back(group);
  setPaused(std::move(next), /*store=*/true);
  Log::debug("Paused app group: " + groupText(group));
  return true;
}

void PauseManager::resume(const PausedGroup& group) {
  const auto result = PauseActions::resume(group, env_.os);
  switch (result.outcome) {
    case PauseActions::ResumeOutcome::reused:
      Log::debug("Skipped resume after PGID reuse; removed record: " + groupText(group));
      break;
    case PauseActions::ResumeOutcome::resumed:
      Log::debug("Resumed app group: " + groupText(group));
      break;
    case PauseActions::ResumeOutcome::failed:
      Log::debug("Resume signal failed errno=" + std::to_string(result.error) + ": " + groupText(group));
      break;
  }
  auto next = paused.value();
  std::erase_if(next, [&group](const auto& g) { return g.pgid == group.pgid; });
  setPaused(std::move(next), /*store=*/true);
}

void PauseManager::resumeAll() {
  // resume() changes the list; work through a copy, in pause order.
  const auto groups = paused.value();
  for (const auto& group : groups) resume(group);
}

std::optional<PausedGroup> PauseManager::entry(std::int32_t pid) {
  if (paused.value().empty()) return std::nullopt;
  const std::int32_t pgid = env_.os.signals.processGroup(pid);
  if (pgid < 2) return std::nullopt;
  for (const auto& group : paused.value())
    if (group.pgid == pgid) return group;
  return std::nullopt;
}

void PauseManager::reconcile() {
  auto kept = paused.value();
  const auto before = kept.size();
  std::erase_if(kept, [this](const auto& g) { return !PauseActions::stillPaused(g, env_.os); });
  const bool dropped = kept.size() != before;
  setPaused(std::move(kept), dropped);
}

void PauseManager::setPaused(std::vector<PausedGroup> groups, bool store) {
  if (store) env_.defaults.set(PausedGroupCodec::kDefaultsKey, PausedGroupCodec::encode(groups));
  paused.set(std::move(groups));
  syncWatch();
}

void PauseManager::syncWatch() {
  const bool want = !paused.value().empty() && env_.frontmost != nullptr;
  if (!want && watchTimer_ != 0) {
    env_.loop.cancelTimer(watchTimer_);
    watchTimer_ = 0;
  } else if (want && watchTimer_ == 0) {
    watchTimer_ = env_.loop.addRepeatingTimer(kWatchInterval, [this] { checkFrontmost(); });
  }
}

void PauseManager::checkFrontmost() {
  const auto front = env_.frontmost->frontmostPid();
  if (!front) return;
  const auto group = entry(*front);
  if (!group) return;
  Log::debug("User selected a frozen app; resuming automatically: " + group->name);
  resume(*group);
  const std::int32_t pid = *front;
  FrontmostAppSource* frontmost = env_.frontmost;
  env_.loop.postAfter(kActivateDelay, [alive = alive_, frontmost, pid] {
    if (*alive) frontmost->activate(pid);
  });
}

}  // namespace quillmark
