#pragma once

// Scripted stand-ins for the process-control OS interfaces: tests set the facts (groups, start
// stamps, stopped states, frozen units, the front application) and read back every signal sent.

#include <cerrno>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "processes/process_os.h"

namespace quillmark::testing {

class FakeStartTimes final : public StartTimeSource {
 public:
  std::map<std::int32_t, std::uint64_t> stamps;
  std::string boot = "boot-1";
  std::optional<std::uint64_t> startTime(std::int32_t pid) override {
    const auto it = stamps.find(pid);
    return it == stamps.end() ? std::nullopt : std::optional(it->second);
  }
  std::string bootId() override { return boot; }
};

struct SentSignal {
  std::int32_t target;  // pgid for group signals, pid for handle signals
  int signal;
  bool group;
  bool operator==(const SentSignal&) const = default;
};

class FakeSignals final : public ProcessSignals {
 public:
  std::int32_t self = 500;
  std::map<std::int32_t, std::int32_t> groups;  // pid -> pgid
  std::map<std::int32_t, std::string> names;
  std::map<std::int32_t, bool> stopped;
  std::map<std::int32_t, bool> foreground;  // pid -> its terminal's foreground job
  int groupError = 0;
  std::vector<SentSignal> sent;  // signal 0 probes and is not recorded

  std::int32_t processGroup(std::int32_t pid) override {
    const auto it = groups.find(pid);
    return it == groups.end() ? -1 : it->second;
  }
  std::int32_t ownPid() override { return self; }
  std::optional<std::string> shortName(std::int32_t pid) override {
    const auto it = names.find(pid);
    return it == names.end() ? std::nullopt : std::optional(it->second);
  }
  std::optional<bool> isStopped(std::int32_t pid) override {
    const auto it = stopped.find(pid);
    return it == stopped.end() ? std::nullopt : std::optional(it->second);
  }
  bool isTerminalForegroundJob(std::int32_t pid) override { return foreground[pid]; }
  int signalGroup(std::int32_t pgid, int signalNumber) override {
    if (groupError != 0) return groupError;
    sent.push_back({pgid, signalNumber, true});
    return 0;
  }
  std::unique_ptr<ProcessHandle> open(std::int32_t pid) override {
    if (!groups.contains(pid)) return nullptr;
    return std::make_unique<Handle>(*this, pid);
  }

 private:
  class Handle final : public ProcessHandle {
   public:
    Handle(FakeSignals& owner, std::int32_t pid) : owner_(owner), pid_(pid) {}
    int signal(int signalNumber) override {
      if (!owner_.groups.contains(pid_)) return ESRCH;  // it has ended
      if (signalNumber != 0) owner_.sent.push_back({pid_, signalNumber, false});
      return 0;
    }
    bool boundToProcess() const override { return false; }

   private:
    FakeSignals& owner_;
    std::int32_t pid_;
  };
};

class FakeFreezer final : public CgroupFreezer {
 public:
  std::map<std::int32_t, std::string> units;  // pid -> freezable unit
  std::map<std::string, bool> frozen;
  int error = 0;
  std::vector<std::pair<std::string, bool>> writes;

  std::optional<std::string> freezableUnit(std::int32_t pid) override {
    const auto it = units.find(pid);
    return it == units.end() ? std::nullopt : std::optional(it->second);
  }
  int setFrozen(const std::string& cgroup, bool value) override {
    if (error != 0) return error;
    writes.emplace_back(cgroup, value);
    frozen[cgroup] = value;
    return 0;
  }
  std::optional<bool> isFrozen(const std::string& cgroup) override {
    const auto it = frozen.find(cgroup);
    return it == frozen.end() ? std::nullopt : std::optional(it->second);
  }
};

class FakeFrontmost final : public FrontmostAppSource {
 public:
  std::optional<std::int32_t> front;
  std::vector<std::int32_t> activated;
  std::optional<std::int32_t> frontmostPid() override { return front; }
  void activate(std::int32_t pid) override { activated.push_back(pid); }
};

}  // namespace quillmark::testing
