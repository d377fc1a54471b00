#include "views/testing/recording_actions.h"

namespace quillmark::testing {
namespace {

std::string number(double v) {
  std::string s = std::to_string(v);
  s.erase(s.find_last_not_of('0') + 1);
  if (s.back() == '.') s.pop_back();
  return s;
}

}  // namespace

void RecordingActions::pause(std::int32_t pid, const std::string& name) {
  calls.push_back("pause " + std::to_string(pid) + " " + name);
}
void RecordingActions::resume(std::int32_t pgid) { calls.push_back("resume " + std::to_string(pgid)); }
void RecordingActions::terminate(std::int32_t pid, const std::string& name) {
  calls.push_back("terminate " + std::to_string(pid) + " " + name);
}
void RecordingActions::addPreauthorized(const std::string& name) {
  calls.push_back("addPreauthorized " + name);
}
void RecordingActions::removePreauthorized(const std::string& name) {
  calls.push_back("removePreauthorized " + name);
}
void RecordingActions::togglePin(const std::string& name) { calls.push_back("togglePin " + name); }
void RecordingActions::reveal(const std::string& path) { calls.push_back("reveal " + path); }
void RecordingActions::setHistoryWindow(PanelModel::HistoryWindow window) {
  calls.push_back("setHistoryWindow " + std::to_string(static_cast<int>(window)));
}
void RecordingActions::expand(std::int32_t pid) { calls.push_back("expand " + std::to_string(pid)); }
void RecordingActions::setRefreshInterval(double s) { calls.push_back("setRefreshInterval " + number(s)); }
void RecordingActions::setLanguage(AppLanguage l) {
  calls.push_back("setLanguage " + std::string(rawValue(l)));
}
void RecordingActions::setLaunchAtLogin(bool on) {
  calls.push_back("setLaunchAtLogin " + std::to_string(on));
}
void RecordingActions::setSkin(PanelSkin s) { calls.push_back("setSkin " + std::string(rawValue(s))); }
void RecordingActions::setMenuBarMode(MenuBarMode m) {
  calls.push_back("setMenuBarMode " + std::string(rawValue(m)));
}
void RecordingActions::setShowNetSpeed(bool on) { calls.push_back("setShowNetSpeed " + std::to_string(on)); }
void RecordingActions::setModuleVisible(PanelModule m, bool visible) {
  calls.push_back("setModuleVisible " + std::string(rawValue(m)) + " " + std::to_string(visible));
}
void RecordingActions::setTempUnit(TempUnit u) { calls.push_back("setTempUnit " + std::string(rawValue(u))); }
void RecordingActions::setAlertsEnabled(bool on) {
  calls.push_back("setAlertsEnabled " + std::to_string(on));
}
void RecordingActions::setCpuAlarmThreshold(double v) {
  calls.push_back("setCpuAlarmThreshold " + number(v));
}
void RecordingActions::setMemAlarmThreshold(double v) {
  calls.push_back("setMemAlarmThreshold " + number(v));
}
void RecordingActions::setTempAlarmThreshold(double v) {
  calls.push_back("setTempAlarmThreshold " + number(v));
}
void RecordingActions::setComfortEnabled(bool on) {
  calls.push_back("setComfortEnabled " + std::to_string(on));
}
void RecordingActions::setComfortTarget(double v) { calls.push_back("setComfortTarget " + number(v)); }
void RecordingActions::retryAfterApproval() { calls.push_back("retryAfterApproval"); }

}  // namespace quillmark::testing
