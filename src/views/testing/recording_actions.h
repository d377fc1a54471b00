#pragma once

#include <set>
#include <string>
#include <vector>

#include "views/panel_actions.h"

namespace quillmark::testing {

// Records every operation the panel calls, one line each ("pause 42 Safari"), and answers the
// pause and terminate checks from the sets it is given (every pid above 1 by default).
class RecordingActions final : public PanelActions {
 public:
  std::vector<std::string> calls;
  std::set<std::int32_t> notPausable;
  std::set<std::int32_t> notKillable;

  bool canPause(std::int32_t pid, const std::string&) const override {
    return pid > 1 && !notPausable.contains(pid);
  }
  bool isKillable(std::int32_t pid, const std::string&) const override {
    return pid > 1 && !notKillable.contains(pid);
  }
  void pause(std::int32_t pid, const std::string& name) override;
  void resume(std::int32_t pgid) override;
  void terminate(std::int32_t pid, const std::string& name) override;
  void addPreauthorized(const std::string& name) override;
  void removePreauthorized(const std::string& name) override;
  void togglePin(const std::string& name) override;
  void reveal(const std::string& path) override;
  void setHistoryWindow(PanelModel::HistoryWindow window) override;
  void expand(std::int32_t pid) override;
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
  // The icon every row gets (none by default).
  std::shared_ptr<const Image> icon;
  std::shared_ptr<const Image> processIcon(std::int32_t, std::uint64_t, const std::string&) override {
    return icon;
  }
};

}  // namespace quillmark::testing
