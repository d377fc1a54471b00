#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "processes/process_list_builder.h"
#include "sampling/samples.h"
#include "settings/l10n.h"
#include "settings/settings_types.h"

namespace quillmark {

// Everything the panel shows, as one value: the monitor's published figures, the process
// services' state, the insights, the history series, comfort cooling and the settings. The
// adapter of the real services (panel_model_source) fills it on the main thread whenever
// something it reads was published; the faces read nothing else. Absent stays absent here (an
// unread disk or sensor), and the faces show it as "no value", never as 0.
struct PanelModel {
  using SortMode = ProcessSortMode;
  enum class HistoryWindow { live, m30, h1, h6, h12, h24 };
  enum class ComfortStatus { off, needsApproval, active, cooling, unavailable };

  // A paused application group as the pause manager records it.
  struct PausedApp {
    std::int32_t pgid = 0;
    std::int32_t leadPid = 0;
    std::string name;
  };
  // A finding of the insight engine.
  struct Insight {
    enum class Kind { pressureCulprit, leak, sleepBlocker, idleHog };
    Kind kind = Kind::leak;
    std::int32_t pid = 0;
    std::string processName;
    std::string message;  // already localised by the engine
    std::optional<std::uint64_t> reclaimBytes;
  };
  // The detail reader's figures for the expanded row; each absent when unreadable.
  struct ProcessDetail {
    std::optional<std::int32_t> parentPid;
    std::optional<int> threads;
    std::optional<std::uint64_t> cpuTimeNanoseconds;
    std::optional<double> startUnixTime;
    std::optional<std::uint64_t> residentBytes;
    std::optional<std::uint64_t> virtualBytes;
    std::optional<std::string> path;  // for "reveal"
  };

  // Monitor.
  CPUSample cpu;
  bool cpuKnown = true;  // false until a CPU reading exists: the total is then no value, not 0
  MemorySample memory;
  NetSample network;
  std::vector<ProcessSample> processes;
  std::vector<ProcessSample> energyRows;
  // Whether the energy sort is offered: where nothing can estimate energy it would only ever
  // show an empty list.
  bool energyAvailable = true;
  std::optional<std::uint64_t> diskFree;
  std::optional<std::uint64_t> diskTotal;
  std::vector<double> fans;  // rpm
  ThermalSample thermal;
  BatterySample battery;
  std::optional<GPUSample> gpu;
  std::vector<double> cpuHistory, memHistory, downHistory, upHistory, tempHistory,
      gpuHistory;  // live, oldest first
  std::optional<double> uptimeSeconds;
  // History store: CPU slots for the chosen window (absent slots are gaps); unused for live.
  HistoryWindow historyWindow = HistoryWindow::live;
  std::vector<std::optional<double>> cpuSlots;

  // Process control.
  std::vector<PausedApp> paused;
  std::map<std::int32_t, std::int32_t> pausedGroupOfPid;  // pid -> pgid, for rows whose group is paused
  std::vector<std::string> pins;                          // pin order, at most 3
  std::map<std::string, std::vector<double>> pinTracks;
  std::map<std::int32_t, ProcessDetail> details;  // for expanded rows

  std::vector<Insight> insights;

  // Comfort cooling.
  ComfortStatus comfortStatus = ComfortStatus::off;
  std::optional<double> surfaceC;
  std::optional<double> fanRPM;

  // Settings.
  double refreshInterval = 2;
  AppLanguage language = AppLanguage::system;
  bool launchAtLogin = false;
  PanelSkin skin = PanelSkin::glass;
  MenuBarMode menuBarMode = MenuBarMode::icon;
  bool showNetSpeed = false;
  std::set<PanelModule> hiddenModules;
  TempUnit tempUnit = TempUnit::celsius;
  bool alertsEnabled = false;
  double cpuAlarmThreshold = 85, memAlarmThreshold = 90, tempAlarmThreshold = 85;
  std::vector<std::string> killWhitelist;
  bool comfortEnabled = false;
  double comfortTargetC = 38;

  // Quillmark's own cost, from its own row of the scan.
  std::optional<double> selfCpuPercent;
  std::optional<std::uint64_t> selfMemoryBytes;

  [[nodiscard]] bool shows(PanelModule module) const { return !hiddenModules.contains(module); }
  [[nodiscard]] std::optional<double> cpuTotal() const {
    return cpuKnown ? std::optional(cpu.total) : std::nullopt;
  }
};

}  // namespace quillmark
