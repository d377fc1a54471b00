#include "views/panel_model_json.h"

#include <nlohmann/json.hpp>
#include <sstream>

namespace quillmark {
namespace {

using nlohmann::json;

template <class T>
std::optional<T> optionalAt(const json& object, const char* key) {
  if (!object.is_object()) return std::nullopt;
  const auto it = object.find(key);
  if (it == object.end() || it->is_null()) return std::nullopt;
  if constexpr (std::is_same_v<T, double>) {
    if (!it->is_number()) return std::nullopt;
  } else if constexpr (std::is_integral_v<T>) {
    if (!it->is_number_integer() && !it->is_number_unsigned()) return std::nullopt;
  } else if constexpr (std::is_same_v<T, bool>) {
    if (!it->is_boolean()) return std::nullopt;
  }
  return it->get<T>();
}

template <class T>
T valueAt(const json& object, const char* key, T fallback = T{}) {
  return optionalAt<T>(object, key).value_or(fallback);
}

std::vector<ProcessSample> processes(const json& list) {
  std::vector<ProcessSample> out;
  if (!list.is_array()) return out;
  for (const auto& row : list) {
    ProcessSample p;
    p.pid = valueAt<std::int32_t>(row, "pid");
    if (row.contains("name") && row["name"].is_string()) p.name = row["name"].get<std::string>();
    p.cpuPercent = valueAt<double>(row, "cpuPercent");
    p.memoryBytes = valueAt<std::uint64_t>(row, "memoryBytes");
    out.push_back(std::move(p));
  }
  return out;
}

void fill(PanelModel& m, const json& line) {
  const json& cpu = line.value("cpu", json::object());
  // null: the counters could not be read this tick.
  m.cpuKnown = cpu.is_object() && optionalAt<double>(cpu, "total").has_value();
  m.cpu.total = valueAt<double>(cpu, "total");
  m.cpu.perCore.clear();
  if (cpu.contains("perCore") && cpu["perCore"].is_array()) {
    for (const auto& v : cpu["perCore"]) m.cpu.perCore.push_back(v.is_number() ? v.get<double>() : 0);
  }
  const json& mem = line.value("memory", json::object());
  m.memory = {valueAt<std::uint64_t>(mem, "total"),  valueAt<std::uint64_t>(mem, "app"),
              valueAt<std::uint64_t>(mem, "wired"),  valueAt<std::uint64_t>(mem, "compressed"),
              valueAt<std::uint64_t>(mem, "cached"), valueAt<std::uint64_t>(mem, "free")};
  const json& net = line.value("network", json::object());
  m.network = {valueAt<double>(net, "downBps"), valueAt<double>(net, "upBps")};
  m.processes = processes(line.value("processes", json::array()));
  m.energyRows = processes(line.value("energyRows", json::array()));
  const auto total = optionalAt<std::uint64_t>(line, "diskTotal");
  // A total of 0 means the volume could not be read.
  m.diskTotal = total && *total > 0 ? total : std::nullopt;
  m.diskFree = m.diskTotal ? optionalAt<std::uint64_t>(line, "diskFree") : std::nullopt;
  m.fans.clear();
  if (line.contains("fans") && line["fans"].is_array()) {
    for (const auto& v : line["fans"])
      if (v.is_number()) m.fans.push_back(v.get<double>());
  }
  const json& thermal = line.value("thermal", json::object());
  m.thermal = {optionalAt<double>(thermal, "cpuC"), optionalAt<double>(thermal, "gpuC"),
               optionalAt<double>(thermal, "batteryC"), optionalAt<double>(thermal, "surfaceC")};
  const json& b = line.value("battery", json::object());
  m.battery = {optionalAt<int>(b, "percentage"),   valueAt<bool>(b, "isCharging"),
               valueAt<bool>(b, "isCharged"),      valueAt<bool>(b, "externalConnected"),
               optionalAt<int>(b, "cycleCount"),   optionalAt<int>(b, "healthPercent"),
               optionalAt<double>(b, "powerWatts")};
  m.gpu.reset();
  if (line.contains("gpu") && line["gpu"].is_object()) {
    const json& g = line["gpu"];
    m.gpu = GPUSample{valueAt<double>(g, "deviceUtil"), optionalAt<double>(g, "rendererUtil"),
                      optionalAt<double>(g, "tilerUtil"), optionalAt<std::uint64_t>(g, "allocBytes"),
                      optionalAt<int>(g, "coreCount")};
  }
  m.selfCpuPercent.reset();
  m.selfMemoryBytes.reset();
  for (const auto& p : m.processes) {
    if (p.name == "quillmark") {
      m.selfCpuPercent = p.cpuPercent;
      m.selfMemoryBytes = p.memoryBytes;
    }
  }
}

void appendHistory(PanelModel& m) {
  const auto push = [](std::vector<double>& h, double v) {
    h.push_back(v);
    if (h.size() > 90) h.erase(h.begin());
  };
  if (m.cpuKnown) push(m.cpuHistory, m.cpu.total);
  push(m.memHistory, m.memory.usageFraction() * 100);
  push(m.downHistory, m.network.downBps / 1024);
  push(m.upHistory, m.network.upBps / 1024);
  if (m.thermal.cpuC) push(m.tempHistory, *m.thermal.cpuC);
  if (m.gpu) push(m.gpuHistory, m.gpu->deviceUtil);
}

}  // namespace

std::optional<PanelModel> panelModelFromJsonLines(std::string_view text, std::string& error) {
  PanelModel model;
  bool any = false;
  std::istringstream lines{std::string(text)};
  std::string line;
  int number = 0;
  while (std::getline(lines, line)) {
    ++number;
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    const json parsed = json::parse(line, nullptr, false);
    if (parsed.is_discarded() || !parsed.is_object()) {
      error = "line " + std::to_string(number) + " is not a JSON object";
      continue;
    }
    fill(model, parsed);
    appendHistory(model);
    any = true;
  }
  if (!any) {
    if (error.empty()) error = "no snapshot line";
    return std::nullopt;
  }
  error.clear();
  return model;
}

}  // namespace quillmark
