#pragma once

#include <functional>
#include <vector>

#include "base/main_loop.h"
#include "base/published.h"
#include "fans/fan_controller.h"
#include "insights/insight_engine.h"
#include "menubar/skin_manager.h"
#include "processes/pause_manager.h"
#include "processes/pin_store.h"
#include "processes/termination.h"
#include "sampling/history_store.h"
#include "sampling/monitor.h"
#include "settings/l10n.h"
#include "settings/settings_manager.h"
#include "sensors/sensor_inventory.h"
#include "views/panel_actions.h"
#include "views/process_icons.h"

namespace quillmark {

// The adapter between the panel and the real services: it fills a PanelModel from their
// published state, hands it on (at most once per turn of the main loop, however many values a
// tick publishes), and carries the panel's operations to the services. It reads Monitor,
// SettingsManager, L10n and process control (pause manager, terminator, pin store, detail
// reader), and, where given, the skin manager, insight engine, fan controller and history store.
// Main thread only; every collaborator must outlive it.
class PanelServices final : public PanelActions {
 public:
  struct Services {
    MainLoop& loop;
    Monitor& monitor;
    SettingsManager& settings;
    L10n& l10n;
    PauseManager& pauses;
    ProcessTerminator& terminator;
    PinStore& pins;
    // Optional: absent ones leave their part of the model at its default (tests, early shells).
    SkinManager* skins = nullptr;
    InsightEngine* insights = nullptr;
    FanController* fans = nullptr;
    HistoryStore* history = nullptr;
    HistoryWindowState* historyWindow = nullptr;
    ProcessIconCache* icons = nullptr;
    // Whether per-process energy can be had here; absent: offered while energy rows come in.
    const SensorInventory* inventory = nullptr;
  };
  // Every service the composition root installed as its shared instance, the skin manager among
  // them, so the skin chosen on the settings face is stored under "panelSkin" and reaches every
  // window that shows a skin. What the shells build their panel with.
  // `icons` is the shell's, kept for the program's life.
  [[nodiscard]] static Services sharedServices(MainLoop& loop, ProcessIconCache* icons = nullptr);

  explicit PanelServices(Services services);
  ~PanelServices() override;
  PanelServices(const PanelServices&) = delete;
  PanelServices& operator=(const PanelServices&) = delete;

  // Receives every new model; called once at once with the current one.
  void onModel(std::function<void(const PanelModel&)> receiver);
  [[nodiscard]] PanelModel currentModel() const;

  bool canPause(std::int32_t pid, const std::string& name) const override;
  bool isKillable(std::int32_t pid, const std::string& name) const override;
  void pause(std::int32_t pid, const std::string& name) override;
  void resume(std::int32_t pgid) override;
  void terminate(std::int32_t pid, const std::string& name) override;
  void addPreauthorized(const std::string& name) override;
  void removePreauthorized(const std::string& name) override;
  void togglePin(const std::string& name) override;
  void reveal(const std::string& path) override;
  void setHistoryWindow(PanelModel::HistoryWindow window) override;
  void expand(std::int32_t pid) override;
  [[nodiscard]] std::shared_ptr<const Image> processIcon(std::int32_t pid, std::uint64_t startTime,
                                                         const std::string& name) override;
  void setRefreshInterval(double seconds) override;
  void setLanguage(AppLanguage language) override;
  void setLaunchAtLogin(bool on) override;
  void setSkin(PanelSkin skin) override;
  void setMenuBarMode(MenuBarMode mode) override;
  void setShowNetSpeed(bool on) override;
  void setModuleVisible(PanelModule module, bool visible) override;
  void setTempUnit(TempUnit unit) override;
  void setAlertsEnabled(bool on) override;
  void setCpuAlarmThreshold(double percent) override;
  void setMemAlarmThreshold(double percent) override;
  void setTempAlarmThreshold(double celsius) override;
  void setComfortEnabled(bool on) override;
  void setComfortTarget(double celsius) override;
  void retryAfterApproval() override;

 private:
  template <class T>
  void watch(Published<T>& published);
  template <class T>
  void watch(Setting<T>& setting);
  void scheduleRefresh();

  MainLoop& loop_;
  Monitor& monitor_;
  SettingsManager& settings_;
  L10n& l10n_;
  PauseManager& pauses_;
  ProcessTerminator& terminator_;
  PinStore& pins_;
  SkinManager* skins_;
  InsightEngine* insights_;
  FanController* fans_;
  HistoryStore* history_;
  HistoryWindowState* historyWindow_;
  ProcessIconCache* icons_;
  const SensorInventory* inventory_;
  std::optional<std::int32_t> expandedPid_;  // whose details the model carries
  std::function<void(const PanelModel&)> receiver_;
  std::vector<std::function<void()>> unsubscribers_;
  bool refreshPending_ = false;
  bool cpuPublished_ = false;
  PanelSkin skin_ = PanelSkin::glass;  // without a skin manager: for this run only
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillmark
