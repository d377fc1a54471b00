#include "app/frontend/snapshot_json.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "insights/insight_engine.h"
#include "insights/pressure_monitor.h"
#include "processes/pause_manager.h"
#include "processes/pin_store.h"
#include "sensors/sensor_inventory_json.h"

namespace quillmark {
namespace {

using nlohmann::json;

template <class T>
json optionalJson(const std::optional<T>& value) {
  return value ? json(*value) : json(nullptr);
}

// JSON has no NaN or infinity; a non-finite reading is reported as absent rather than as a lie.
json number(double value) { return std::isfinite(value) ? json(value) : json(nullptr); }

json processJson(const ProcessSample& process) {
  return {{"pid", process.pid},
          {"name", process.name},
          {"cpuPercent", number(process.cpuPercent)},
          {"memoryBytes", process.memoryBytes}};
}

json processesJson(const std::vector<ProcessSample>& processes) {
  json list = json::array();
  for (const auto& process : processes) list.push_back(processJson(process));
  return list;
}

json thermalJson(const ThermalSample& thermal) {
  return {{"cpuC", optionalJson(thermal.cpuC)},
          {"gpuC", optionalJson(thermal.gpuC)},
          {"batteryC", optionalJson(thermal.batteryC)},
          {"surfaceC", optionalJson(thermal.surfaceC)}};
}

json batteryJson(const BatterySample& battery) {
  return {{"percentage", optionalJson(battery.percentage)},
          {"isCharging", battery.isCharging},
          {"isCharged", battery.isCharged},
          {"externalConnected", battery.externalConnected},
          {"cycleCount", optionalJson(battery.cycleCount)},
          {"healthPercent", optionalJson(battery.healthPercent)},
          {"powerWatts", optionalJson(battery.powerWatts)}};
}

json gpuJson(const std::optional<GPUSample>& gpu) {
  if (!gpu) return nullptr;
  return {{"deviceUtil", number(gpu->deviceUtil)},
          {"rendererUtil", optionalJson(gpu->rendererUtil)},
          {"tilerUtil", optionalJson(gpu->tilerUtil)},
          {"allocBytes", optionalJson(gpu->allocBytes)},
          {"coreCount", optionalJson(gpu->coreCount)}};
}

json assertionsJson(const std::optional<AssertionMap>& assertions) {
  if (!assertions) return nullptr;
  json object = json::object();
  for (const auto& [pid, names] : *assertions) object[std::to_string(pid)] = names;
  return object;
}

json cpuJson(const CPUSample& cpu) {
  json perCore = json::array();
  for (double load : cpu.perCore) perCore.push_back(number(load));
  return {{"total", number(cpu.total)}, {"perCore", perCore}};
}

json memoryJson(const MemorySample& memory) {
  return {{"total", memory.total},   {"app", memory.app},
          {"wired", memory.wired},   {"compressed", memory.compressed},
          {"cached", memory.cached}, {"free", memory.free},
          {"used", memory.used()},   {"usageFraction", memory.usageFraction()}};
}

json networkJson(const NetSample& network) {
  return {{"downBps", number(network.downBps)}, {"upBps", number(network.upBps)}};
}

json fansJson(const std::vector<double>& fans) {
  json list = json::array();
  for (double rpm : fans) list.push_back(number(rpm));
  return list;
}

json livePidsJson(const PidSet& pids) {
  std::vector<std::int32_t> live(pids.begin(), pids.end());
  std::sort(live.begin(), live.end());
  return live;
}

// The memory-pressure level and the diagnostics findings; null where the program runs without them.
json pressureJson() {
  if (!SharedInstance<PressureMonitor>::installed()) return nullptr;
  return std::string(name(PressureMonitor::shared().level()));
}

json insightsJson() {
  if (!SharedInstance<InsightEngine>::installed()) return nullptr;
  json list = json::array();
  for (const auto& i : InsightEngine::shared().insights())
    list.push_back({{"kind", name(i.kind)},
                    {"pid", i.pid},
                    {"processName", i.processName},
                    {"message", i.message},
                    {"reclaimBytes", optionalJson(i.reclaimBytes)}});
  return list;
}

}  // namespace

// One function per section: a new Snapshot field gets its own function and one line here.
std::string snapshotJson(const Monitor::Snapshot& s, double unixTime) {
  json line = {
      {"time", unixTime},
      {"cpu", s.cpuRead ? cpuJson(s.cpu) : json(nullptr)},
      {"memory", s.memoryRead ? memoryJson(s.memory) : json(nullptr)},
      {"network", networkJson(s.network)},
      {"processes", processesJson(s.processes)},
      {"diskFree", s.diskFree},
      {"diskTotal", s.diskTotal},
      {"fans", fansJson(s.fans)},
      {"thermal", thermalJson(s.thermal)},
      {"battery", batteryJson(s.battery)},
      {"gpu", gpuJson(s.gpu)},
      {"gpuCollected", s.gpuCollected},
      {"tempFresh", s.tempFresh},
      {"processesScanned", s.processesScanned},
      {"assertions", assertionsJson(s.assertions)},
      {"energyRows", processesJson(s.energyRows)},
      {"livePids", livePidsJson(s.livePids)},
      {"pressure", pressureJson()},
      {"insights", insightsJson()},
  };
  appendSensorLists(line);
  // Process control's state, where the program built it.
  if (SharedInstance<PauseManager>::installed())
    line["pausedGroups"] = json::parse(PausedGroupCodec::encode(PauseManager::shared().paused()));
  if (SharedInstance<PinStore>::installed()) line["pinnedProcesses"] = PinStore::shared().names();
  // Process names are whatever the kernel holds; replace invalid UTF-8 instead of failing the line.
  return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace quillmark
