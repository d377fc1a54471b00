#pragma once

#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "views/panel_actions.h"

namespace quillmark::testing {

// Records every operation the panel calls, one line each ("pause 42 Safari", "setShowNetSpeed 1",
// "setRefreshInterval 2.5"), and answers the pause and terminate checks from the sets it is given
// (every pid above 1 by default).
class RecordingActions final : public PanelActions {
 public:
  std::vector<std::string> calls;
  std::set<std::int32_t> notPausable;
  std::set<std::int32_t> notKillable;
  // The icon every row gets (none by default).
  std::shared_ptr<const Image> icon;

  bool canPause(std::int32_t pid, const std::string&) const override {
    return pid > 1 && !notPausable.contains(pid);
  }
  bool isKillable(std::int32_t pid, const std::string&) const override {
    return pid > 1 && !notKillable.contains(pid);
  }
  std::shared_ptr<const Image> processIcon(std::int32_t, std::uint64_t, const std::string&) override {
    return icon;
  }
  void pause(std::int32_t pid, const std::string& name) override { record("pause", pid, name); }
  void resume(std::int32_t pgid) override { record("resume", pgid); }
  void terminate(std::int32_t pid, const std::string& name) override { record("terminate", pid, name); }
  void addPreauthorized(const std::string& name) override { record("addPreauthorized", name); }
  void removePreauthorized(const std::string& name) override { record("removePreauthorized", name); }
  void togglePin(const std::string& name) override { record("togglePin", name); }
  void reveal(const std::string& path) override { record("reveal", path); }
  void setHistoryWindow(PanelModel::HistoryWindow w) override {
    record("setHistoryWindow", static_cast<int>(w));
  }
  void expand(std::int32_t pid) override { record("expand", pid); }
  void setRefreshInterval(double seconds) override { record("setRefreshInterval", seconds); }
  void setLanguage(AppLanguage language) override { record("setLanguage", language); }
  void setLaunchAtLogin(bool on) override { record("setLaunchAtLogin", on); }
  void setSkin(PanelSkin skin) override { record("setSkin", skin); }
  void setMenuBarMode(MenuBarMode mode) override { record("setMenuBarMode", mode); }
  void setShowNetSpeed(bool on) override { record("setShowNetSpeed", on); }
  void setModuleVisible(PanelModule m, bool visible) override { record("setModuleVisible", m, visible); }
  void setTempUnit(TempUnit unit) override { record("setTempUnit", unit); }
  void setAlertsEnabled(bool on) override { record("setAlertsEnabled", on); }
  void setCpuAlarmThreshold(double percent) override { record("setCpuAlarmThreshold", percent); }
  void setMemAlarmThreshold(double percent) override { record("setMemAlarmThreshold", percent); }
  void setTempAlarmThreshold(double celsius) override { record("setTempAlarmThreshold", celsius); }
  void setComfortEnabled(bool on) override { record("setComfortEnabled", on); }
  void setComfortTarget(double celsius) override { record("setComfortTarget", celsius); }
  void retryAfterApproval() override { record("retryAfterApproval"); }

 private:
  template <class... Args>
  void record(const char* op, const Args&... args) {
    std::string line = op;
    ((line += ' ', line += text(args)), ...);
    calls.push_back(std::move(line));
  }
  static std::string text(const std::string& s) { return s; }
  static std::string text(int v) { return std::to_string(v); }
  static std::string text(bool v) { return v ? "1" : "0"; }
  static std::string text(double v) {  // without trailing zeros: "5", "2.5"
    std::string s = std::to_string(v);
    s.erase(s.find_last_not_of('0') + 1);
    if (s.back() == '.') s.pop_back();
    return s;
  }
  template <class E>
  requires std::is_enum_v<E>
  static std::string text(E e) { return std::string(rawValue(e)); }
};

}  // namespace quillmark::testing
