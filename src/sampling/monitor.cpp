#include "sampling/monitor.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "base/check.h"
#include "base/log.h"

namespace quillmark {
namespace {

std::string formatFixed1(double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.1f", value);
  return buffer;
}

}  // namespace

std::shared_ptr<Monitor> Monitor::create(Environment environment) {
  return std::shared_ptr<Monitor>(new Monitor(environment));
}

Monitor::Monitor(Environment environment) : env_(environment) {}

Monitor::~Monitor() {
  if (timer_ != 0) env_.loop.cancelTimer(timer_);
}

void Monitor::start(double interval) {
  refreshInterval_ = interval;
  std::weak_ptr<Monitor> weak = weak_from_this();
  // Read on the queue like every other reader (the readers share buffers and are not
  // thread-safe); the serial queue delivers it before the first measurement is applied.
  env_.queue.async([weak] {
    auto self = weak.lock();
    if (!self) return;
    const std::optional<double> boot = self->env_.counters.readBootTime();
    self->env_.loop.post([weak, boot] {
      if (auto monitor = weak.lock()) monitor->bootDate_ = boot;
    });
  });
  if (timer_ != 0) env_.loop.cancelTimer(timer_);
  timer_ = env_.loop.addRepeatingTimer(interval, [weak] {
    if (auto self = weak.lock()) self->sample();
  });
  sample();
}

void Monitor::setInterval(double interval) {
  if (std::fabs(interval - refreshInterval_) > 0.01) start(interval);
}

void Monitor::stop() {
  if (timer_ != 0) env_.loop.cancelTimer(timer_);
  timer_ = 0;
}

void Monitor::setPublishingPaused(bool paused) {
  if (paused == publishingPaused_) return;
  publishingPaused_ = paused;
  if (!paused) {
    // The opening panel gets a full, fresh measurement rather than the closed-panel leftovers.
    forceProcessScan_ = true;
    sample();
  }
}

double Monitor::uptime() const {
  if (!bootDate_) return 0;
  return env_.clock.unixNow() - *bootDate_;
}

Monitor::Plan Monitor::choosePlan() {
  Plan plan;
  if (publishingPaused_) {
    plan.scanProcesses = env_.consumers.insightWantsProcessScan();
    forceProcessScan_ = false;
    plan.collectTemp = env_.consumers.alertsEnabled() || env_.consumers.historyWantsTempSample();
  } else {
    plan.scanProcesses = (cycle_ % 2 == 1) || forceProcessScan_;
    forceProcessScan_ = false;
    plan.collectTemp = true;
  }
  plan.heavySampling = !publishingPaused_;
  plan.collectAssertions = plan.scanProcesses;
  return plan;
}

void Monitor::sample() {
  if (isSampling_) return;  // dropped: no catch-up, no queueing
  isSampling_ = true;
  cycle_ = checkedAdd<std::uint64_t>(cycle_, 1);
  const Plan plan = choosePlan();
  const double startTime = env_.clock.absoluteNow();
  const std::uint64_t cycle = cycle_;

  std::weak_ptr<Monitor> weak = weak_from_this();
  env_.queue.async([weak, plan, startTime, cycle] {
    auto self = weak.lock();
    if (!self) return;
    auto snapshot = std::make_shared<Snapshot>(self->collectSnapshot(plan));
    if (cycle % 30 == 1) {
      // Includes the wait in the queue: the figure is what the user waits for.
      const double elapsedMs = (self->env_.clock.absoluteNow() - startTime) * 1000.0;
      Log::verbose([&] {
        return "Sample duration: " + formatFixed1(elapsedMs) +
               "ms (scanProcesses=" + (plan.scanProcesses ? "true" : "false") + ")";
      });
    }
    self->env_.loop.post([weak, snapshot] {
      auto monitor = weak.lock();
      if (!monitor) return;
      monitor->isSampling_ = false;
      monitor->apply(*snapshot);
    });
  });
}

void Monitor::logReadFailureOnce(bool& logged, std::string_view what) {
  if (logged) return;
  logged = true;
  const std::string why = env_.counters.lastReadError();
  Log::debug(std::string(what) + " could not be read (" + (why.empty() ? "reason unknown" : why) +
             "); reported as absent until it can");
}

Monitor::Snapshot Monitor::collectSnapshot(const Plan& plan) {
  Snapshot snap;
  const double now = env_.clock.absoluteNow();
  const double elapsed = lastSampleTime_ > 0 ? now - lastSampleTime_ : 0;
  lastSampleTime_ = now;

  const CPUReading cpuReading = env_.counters.readCPU();
  snap.cpuRead = cpuReading.total.has_value();
  if (!snap.cpuRead) logReadFailureOnce(cpuFailureLogged_, "CPU load");
  snap.cpu = counters_.cpu(cpuReading);
  if (auto measured = env_.counters.readMemory()) {
    snap.memory = *measured;
  } else {
    snap.memoryRead = false;
    logReadFailureOnce(memoryFailureLogged_, "Memory");
  }
  snap.network = counters_.network(env_.counters.readNetworkBytes(), elapsed);

  if (plan.scanProcesses) {
    ProcessScanResult scan = scanner_.scan(now, env_.processes);
    snap.processes = std::move(scan.processes);
    snap.livePids = std::move(scan.livePids);
  } else {
    // lastProcesses_ is written only by apply(), which cannot run while this job is in flight.
    snap.processes = lastProcesses_;
    for (const auto& process : snap.processes) snap.livePids.insert(process.pid);
  }

  if (plan.collectAssertions) snap.assertions = env_.heavy.readSleepBlockers();

  if (plan.heavySampling) {
    const DiskSpace disk = env_.counters.readDiskSpace();
    snap.diskFree = disk.free;
    snap.diskTotal = disk.total;
    snap.fans = env_.heavy.readFanSpeeds();
    snap.thermal = env_.heavy.readThermal();
    snap.battery = env_.heavy.readBattery().value_or(BatterySample{});
    snap.gpu = env_.heavy.readGPU();
    if (plan.scanProcesses) snap.energyRows = env_.heavy.energyRows(snap.processes);
    heavyCache_ = HeavyCache{snap.diskFree, snap.diskTotal, snap.fans, snap.thermal, snap.battery};
    snap.gpuCollected = true;
    snap.tempFresh = true;
  } else {
    if (plan.collectTemp) {
      snap.thermal = env_.heavy.readThermal();
      heavyCache_.thermal = snap.thermal;
    } else {
      snap.thermal = heavyCache_.thermal;
    }
    snap.diskFree = heavyCache_.diskFree;
    snap.diskTotal = heavyCache_.diskTotal;
    snap.fans = heavyCache_.fans;
    snap.battery = heavyCache_.battery;
    snap.tempFresh = plan.collectTemp;
  }
  snap.processesScanned = plan.scanProcesses;
  return snap;
}

void Monitor::appendHistory(std::vector<double>& history, double value, std::size_t maxCount) {
  history.push_back(value);
  if (history.size() > maxCount)
    history.erase(history.begin(), history.end() - static_cast<std::ptrdiff_t>(maxCount));
}

void Monitor::apply(const Snapshot& snap) {
  lastProcesses_ = snap.processes;
  lastThermal_ = snap.thermal;
  // An unread figure keeps its last published value rather than showing a zero nobody measured.
  if (snap.cpuRead) cpu.set(snap.cpu);
  if (snap.memoryRead) memory.set(snap.memory);
  network.set(snap.network);
  if (onTick) onTick();

  const double memPct = snap.memory.usageFraction() * 100.0;
  env_.consumers.evaluateAlerts(snap.cpu.total, memPct, snap.thermal.cpuC);
  env_.consumers.recordHistory(snap.cpu.total, memPct, snap.tempFresh ? snap.thermal.cpuC : std::nullopt);
  if (snap.processesScanned) {
    env_.consumers.reconcilePausedGroups();
    env_.consumers.ingestInsights(snap.processes, snap.assertions);
    env_.consumers.recordPins(snap.processes);
  }

  if (!publishingPaused_) publishHeavy(snap);
  if (onSnapshot) onSnapshot(snap);
}

void Monitor::publishHeavy(const Snapshot& snap) {
  tickCount_ = checkedAdd<std::uint64_t>(tickCount_, 1);
  if (tickCount_ < 6 || tickCount_ % 50 == 0) {
    Log::verbose([&] {
      QM_CHECK(std::isfinite(snap.network.downBps));
      return "tick #" + std::to_string(tickCount_) + " CPU=" + formatFixed1(snap.cpu.total) +
             "% processes=" + std::to_string(snap.processes.size()) +
             " NET↓=" + std::to_string(static_cast<long long>(snap.network.downBps)) + "B/s";
    });
  }

  processes.set(snap.processes);
  diskFreeBytes.set(snap.diskFree);
  diskTotalBytes.set(snap.diskTotal);
  fans.set(snap.fans);
  thermal.set(snap.thermal);
  battery.set(snap.battery);
  if (snap.gpuCollected) {
    gpu.set(snap.gpu);
    if (snap.gpu) append(gpuHistory, snap.gpu->deviceUtil);
  }
  if (snap.processesScanned) energyRows.set(snap.energyRows);

  append(cpuHistory, snap.cpu.total);
  append(memHistory, snap.memory.usageFraction() * 100.0);
  append(downHistory, snap.network.downBps / 1024.0);
  append(upHistory, snap.network.upBps / 1024.0);
  if (snap.thermal.cpuC) append(tempHistory, *snap.thermal.cpuC);

  env_.consumers.pruneVisuals(snap.livePids);
}

void Monitor::append(Published<std::vector<double>>& history, double value) {
  std::vector<double> values = history.value();
  appendHistory(values, value, kHistoryCount);
  history.set(std::move(values));
}

}  // namespace quillmark
