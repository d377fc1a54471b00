#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "views/canvas.h"
#include "views/panel_model.h"

namespace quillmark {

// The operations the panel calls, named after the services that carry them out (pause manager,
// termination, pin store, insight actions, history window, settings, fan controller). The views
// call these and nothing else; the adapter forwards them to the shared services, tests record
// them. Main thread only.
class PanelActions {
 public:
  virtual ~PanelActions() = default;

  // PauseManager / ProcessDetailReader checks, asked before a button is offered.
  [[nodiscard]] virtual bool canPause(std::int32_t pid, const std::string& name) const = 0;
  [[nodiscard]] virtual bool isKillable(std::int32_t pid, const std::string& name) const = 0;

  virtual void pause(std::int32_t pid, const std::string& name) = 0;
  virtual void resume(std::int32_t pgid) = 0;
  virtual void terminate(std::int32_t pid, const std::string& name) = 0;
  virtual void addPreauthorized(const std::string& name) = 0;
  virtual void removePreauthorized(const std::string& name) = 0;
  virtual void togglePin(const std::string& name) = 0;
  virtual void reveal(const std::string& path) = 0;
  virtual void setHistoryWindow(PanelModel::HistoryWindow window) = 0;
  // Asks for the detail record of an expanded row (it arrives in the next model).
  virtual void expand(std::int32_t pid) = 0;
  // ProcessVisualCache: the application icon of a row, or null (the row draws a monogram). Asked
  // while the rows are built, so it must answer from a cache after the first time.
  [[nodiscard]] virtual std::shared_ptr<const Image> processIcon(std::int32_t, std::uint64_t /*startTime*/,
                                                                 const std::string&) {
    return nullptr;
  }

  // SettingsManager, L10n, SkinManager, FanController.
  virtual void setRefreshInterval(double seconds) = 0;
  virtual void setLanguage(AppLanguage language) = 0;
  virtual void setLaunchAtLogin(bool on) = 0;
  virtual void setSkin(PanelSkin skin) = 0;
  virtual void setMenuBarMode(MenuBarMode mode) = 0;
  virtual void setShowNetSpeed(bool on) = 0;
  virtual void setModuleVisible(PanelModule module, bool visible) = 0;
  virtual void setTempUnit(TempUnit unit) = 0;
  virtual void setAlertsEnabled(bool on) = 0;
  virtual void setCpuAlarmThreshold(double percent) = 0;
  virtual void setMemAlarmThreshold(double percent) = 0;
  virtual void setTempAlarmThreshold(double celsius) = 0;
  virtual void setComfortEnabled(bool on) = 0;
  virtual void setComfortTarget(double celsius) = 0;
  virtual void retryAfterApproval() = 0;
};

}  // namespace quillmark
