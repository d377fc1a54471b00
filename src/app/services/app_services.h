#pragma once

#include <memory>

#include "app/services/insight_consumers.h"
#include "app/services/process_control_hooks.h"
#include "base/serial_queue.h"
#include "fans/comfort_sensors.h"
#include "fans/fan_controller.h"
#include "fans/fan_helper_client.h"
#include "fans/fan_helper_transport.h"
#include "insights/alert_manager.h"
#include "insights/insight_engine.h"
#include "insights/notification_center.h"
#include "insights/pressure_monitor.h"
#include "menubar/panel_anchor.h"
#include "menubar/panel_flip_state.h"
#include "menubar/skin_manager.h"
#include "processes/pause_guardian.h"
#include "processes/pause_manager.h"
#include "processes/pin_store.h"
#include "processes/process_os.h"
#include "processes/process_visual_cache.h"
#include "processes/termination.h"
#include "sampling/history_store.h"
#include "sampling/monitor.h"
#include "sampling/process_scan.h"
#include "sampling/system_counters.h"
#include "sensors/platform_heavy_readers.h"
#include "sensors/sensor_inventory.h"
#include "settings/settings_manager.h"

namespace quillmark {

// The composition root shared by every Quillmark program (the terminal modes, the Linux desktop
// program, the macOS app): it builds each process-wide service with the platform's readers and its
// collaborators, in dependency order, and installs it as that service's shared() instance. Reading
// this file and its .cpp shows every service and what it is connected to.
//
// Build exactly one, on the main thread, before anything asks for a shared() service; destroying it
// stops the monitor and tears the services down in reverse order. Main thread only.
class AppServices {
 public:
  AppServices();
  ~AppServices();
  AppServices(const AppServices&) = delete;
  AppServices& operator=(const AppServices&) = delete;

  // Undoes what would outlive the process, in this order: paused applications are resumed, the fans
  // are handed back (without waiting for the helper's answer), sampling stops. Every way out of a
  // program calls it (the Quit item, SIGTERM, SIGINT).
  void willTerminate();

  [[nodiscard]] Monitor& monitor() { return *monitor_; }
  [[nodiscard]] SettingsManager& settings() { return *settings_; }
  // Every sensor and GPU the heavy readers found (for outputs that list them all).
  [[nodiscard]] SensorInventory& sensorInventory() { return inventory_; }
  [[nodiscard]] PauseManager& pauseManager() { return *pauseManager_; }
  [[nodiscard]] PinStore& pins() { return *pins_; }
  [[nodiscard]] FanController& fanController() { return *fanController_; }
  // The menu-bar shell's shared state; the platform shell builds its windows on top of it.
  [[nodiscard]] SkinManager& skins() { return *skins_; }
  [[nodiscard]] PanelAnchor& panelAnchor() { return *panelAnchor_; }
  [[nodiscard]] PanelFlipState& panelFlip() { return *panelFlip_; }

 private:
  void wireProcessControl();
  void wireInsights();
  void wireFanControl();
  void wireMenuBarShell();

  // Declaration order is construction order; members are destroyed in reverse, so the monitor
  // goes first, then the queue (which finishes a job in flight), then the readers it may be using.
  std::unique_ptr<SystemCounters> counters_;
  std::unique_ptr<ProcessReader> processReader_;
  SensorInventory inventory_;
  std::unique_ptr<PlatformHeavyReaders> heavy_;
  ProcessControlHooks consumers_;
  // The monitor's hooks for alerts, history and insights; the rest go on to consumers_.
  InsightConsumers insightConsumers_{consumers_};
  std::unique_ptr<SerialQueue> queue_;
  std::shared_ptr<Monitor> monitor_;
  std::unique_ptr<SettingsManager> settings_;

  // Process control. The pause manager resumes every paused group when this root is destroyed,
  // which is how every program ends: a normal quit and SIGTERM, SIGINT and SIGHUP alike.
  std::unique_ptr<FrontmostAppSource> frontmost_;
  std::unique_ptr<PauseGuardian> pauseGuardian_;
  std::unique_ptr<PauseManager> pauseManager_;
  std::unique_ptr<ProcessTerminator> terminator_;
  std::unique_ptr<PinStore> pins_;
  std::unique_ptr<VisualSource> visualSource_;
  std::unique_ptr<ProcessVisualCache> visuals_;

  // History, memory pressure, insights and alerts (they read the settings and the monitor).
  std::unique_ptr<HistoryStore> history_;
  HistoryWindowState historyWindow_;
  std::unique_ptr<InsightEngine> insights_;
  std::unique_ptr<PressureMonitor> pressure_;
  std::unique_ptr<NotificationCenter> notificationCenter_;
  std::unique_ptr<AlertManager> alerts_;

  // Fan control: the helper daemon's client and comfort cooling.
  std::unique_ptr<FanHelperTransport> fanTransport_;
  std::unique_ptr<FanHelperClient> fanClient_;
  std::unique_ptr<ComfortSensors> comfortSensors_;
  std::unique_ptr<FanController> fanController_;
  std::unique_ptr<SkinManager> skins_;
  std::unique_ptr<PanelAnchor> panelAnchor_;
  std::unique_ptr<PanelFlipState> panelFlip_;
};

}  // namespace quillmark
