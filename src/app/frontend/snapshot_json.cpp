#include "app/frontend/snapshot_json.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

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

}  // namespace

std::string snapshotJson(const Monitor::Snapshot& s, double unixTime) {
  json perCore = json::array();
  for (double load : s.cpu.perCore) perCore.push_back(number(load));
  std::vector<std::int32_t> live(s.livePids.begin(), s.livePids.end());
  std::sort(live.begin(), live.end());

  json fans = json::array();
  for (double rpm : s.fans) fans.push_back(number(rpm));

  const json line = {
      {"time", unixTime},
      {"cpu", {{"total", number(s.cpu.total)}, {"perCore", perCore}}},
      {"memory",
       {{"total", s.memory.total},
        {"app", s.memory.app},
        {"wired", s.memory.wired},
        {"compressed", s.memory.compressed},
        {"cached", s.memory.cached},
        {"free", s.memory.free},
        {"used", s.memory.used()},
        {"usageFraction", s.memory.usageFraction()}}},
      {"network", {{"downBps", number(s.network.downBps)}, {"upBps", number(s.network.upBps)}}},
      {"processes", processesJson(s.processes)},
      {"diskFree", s.diskFree},
      {"diskTotal", s.diskTotal},
      {"fans", fans},
      {"thermal", thermalJson(s.thermal)},
      {"battery", batteryJson(s.battery)},
      {"gpu", gpuJson(s.gpu)},
      {"gpuCollected", s.gpuCollected},
      {"tempFresh", s.tempFresh},
      {"processesScanned", s.processesScanned},
      {"assertions", assertionsJson(s.assertions)},
      {"energyRows", processesJson(s.energyRows)},
      {"livePids", live},
  };
  // Process names are whatever the kernel holds; replace invalid UTF-8 instead of failing the line.
  return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace quillmark
