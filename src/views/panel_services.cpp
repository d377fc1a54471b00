#include "views/panel_services.h"

#include <unistd.h>

#include <algorithm>

#include "base/log.h"
#include "processes/file_manager.h"
#include "processes/process_detail_reader.h"

namespace quillmark {

PanelServices::Services PanelServices::sharedServices(MainLoop& loop, ProcessIconCache* icons) {
  return {loop,
          Monitor::shared(),
          SettingsManager::shared(),
          L10n::shared(),
          PauseManager::shared(),
          ProcessTerminator::shared(),
          PinStore::shared(),
          &SkinManager::shared(),
          &InsightEngine::shared(),
          &FanController::shared(),
          &HistoryStore::shared(),
          &HistoryWindowState::shared(),
          icons,
          SharedInstance<SensorInventory>::installed() ? &SharedInstance<SensorInventory>::get() : nullptr};
}

PanelServices::PanelServices(Services s)
    : loop_(s.loop),
      monitor_(s.monitor),
      settings_(s.settings),
      l10n_(s.l10n),
      pauses_(s.pauses),
      terminator_(s.terminator),
      pins_(s.pins),
      skins_(s.skins),
      insights_(s.insights),
      fans_(s.fans),
      history_(s.history),
      historyWindow_(s.historyWindow),
      icons_(s.icons),
      inventory_(s.inventory) {
  Monitor& monitor = s.monitor;
  SettingsManager& settings = s.settings;
  watch(monitor.cpu);
  // The monitor publishes CPU only when it could read it; before that its value is a default 0.
  const auto cpuToken = monitor.cpu.subscribe([this](const CPUSample&) { cpuPublished_ = true; });
  unsubscribers_.push_back([&monitor, cpuToken] { monitor.cpu.unsubscribe(cpuToken); });
  watch(monitor.memory);
  watch(monitor.network);
  watch(monitor.processes);
  watch(monitor.diskFreeBytes);
  watch(monitor.fans);
  watch(monitor.thermal);
  watch(monitor.battery);
  watch(monitor.gpu);
  watch(monitor.energyRows);
  watch(monitor.cpuHistory);
  watch(settings.launchAtLogin);
  watch(settings.killWhitelist);
  watch(settings.comfortEnabled);
  watch(settings.comfortTargetC);
  watch(settings.refreshInterval);
  watch(settings.menuBarMode);
  watch(settings.showNetSpeed);
  watch(settings.hiddenModules);
  watch(settings.tempUnit);
  watch(settings.alertsEnabled);
  watch(settings.cpuAlarmThreshold);
  watch(settings.memAlarmThreshold);
  watch(settings.tempAlarmThreshold);
  watch(s.l10n.language);
  watch(s.pauses.paused);
  watch(s.pins.names);
  if (skins_) watch(skins_->skin);
  if (insights_) watch(insights_->insights);
  if (fans_) {
    watch(fans_->status);
    watch(fans_->surfaceC);
    watch(fans_->fanRPM);
  }
  if (historyWindow_) watch(historyWindow_->window);
}

PanelServices::~PanelServices() {
  *alive_ = false;
  for (auto& unsubscribe : unsubscribers_) unsubscribe();
}

template <class T>
void PanelServices::watch(Published<T>& published) {
  const auto token = published.subscribe([this](const T&) { scheduleRefresh(); });
  unsubscribers_.push_back([&published, token] { published.unsubscribe(token); });
}

template <class T>
void PanelServices::watch(Setting<T>& setting) {
  const auto token = setting.subscribe([this](const T&) { scheduleRefresh(); });
  unsubscribers_.push_back([&setting, token] { setting.unsubscribe(token); });
}

void PanelServices::scheduleRefresh() {
  // A tick publishes a dozen values one after another: the panel hears of them once.
  if (refreshPending_ || !receiver_) return;
  refreshPending_ = true;
  loop_.post([this, alive = alive_] {
    if (!*alive) return;
    refreshPending_ = false;
    if (receiver_) receiver_(currentModel());
  });
}

void PanelServices::onModel(std::function<void(const PanelModel&)> receiver) {
  receiver_ = std::move(receiver);
  if (receiver_) receiver_(currentModel());
}

PanelModel PanelServices::currentModel() const {
  PanelModel m;
  m.cpu = monitor_.cpu();
  m.cpuKnown = cpuPublished_;
  m.memory = monitor_.memory();
  m.network = monitor_.network();
  m.processes = monitor_.processes();
  m.energyRows = monitor_.energyRows();
  m.energyAvailable = inventory_ ? inventory_->energyAvailable() : !m.energyRows.empty();
  if (monitor_.diskTotalBytes() > 0) {
    m.diskTotal = monitor_.diskTotalBytes();
    m.diskFree = monitor_.diskFreeBytes();
  }
  m.fans = monitor_.fans();
  m.thermal = monitor_.thermal();
  m.battery = monitor_.battery();
  m.gpu = monitor_.gpu();
  m.cpuHistory = monitor_.cpuHistory();
  m.memHistory = monitor_.memHistory();
  m.downHistory = monitor_.downHistory();
  m.upHistory = monitor_.upHistory();
  m.tempHistory = monitor_.tempHistory();
  m.gpuHistory = monitor_.gpuHistory();
  if (monitor_.bootTime()) m.uptimeSeconds = monitor_.uptime();
  const auto self = std::find_if(m.processes.begin(), m.processes.end(),
                                 [pid = getpid()](const ProcessSample& p) { return p.pid == pid; });
  if (self != m.processes.end()) {
    m.selfCpuPercent = self->cpuPercent;
    m.selfMemoryBytes = self->memoryBytes;
  }

  m.paused.clear();
  for (const auto& group : pauses_.paused()) m.paused.push_back({group.pgid, group.leadPid, group.name});
  if (!m.paused.empty()) {
    for (const auto& p : m.processes) {
      if (const auto group = pauses_.entry(p.pid)) m.pausedGroupOfPid[p.pid] = group->pgid;
    }
  }
  m.pins = pins_.names();
  for (const auto& [name, track] : pins_.cpuTracks()) m.pinTracks[name] = track;
  if (expandedPid_) {
    const auto row = std::find_if(m.processes.begin(), m.processes.end(),
                                  [this](const ProcessSample& p) { return p.pid == *expandedPid_; });
    if (row != m.processes.end()) {
      if (const auto read = ProcessDetailReader::read(row->pid, row->name)) {
        PanelModel::ProcessDetail d;
        d.parentPid = read->parentPid;
        d.threads = read->threadCount;
        d.cpuTimeNanoseconds = read->cpuUserTime + read->cpuSystemTime;
        d.startUnixTime = read->startDate;
        d.residentBytes = read->residentBytes;
        d.virtualBytes = read->virtualBytes;
        if (read->path != ProcessDetailReader::kNoPath) d.path = read->path;
        m.details[row->pid] = d;
      }
    }
  }

  m.refreshInterval = settings_.refreshInterval();
  m.language = l10n_.language();
  m.launchAtLogin = settings_.launchAtLogin();
  m.skin = skins_ ? skins_->skin() : skin_;
  if (insights_) {
    for (const auto& i : insights_->insights()) {
      m.insights.push_back(
          {static_cast<PanelModel::Insight::Kind>(i.kind), i.pid, i.processName, i.message, i.reclaimBytes});
    }
  }
  if (fans_) {
    // The two enumerations list the same states in the same order.
    m.comfortStatus = static_cast<PanelModel::ComfortStatus>(fans_->status());
    m.surfaceC = fans_->surfaceC();
    m.fanRPM = fans_->fanRPM();
  }
  if (historyWindow_) {
    const HistoryWindow window = historyWindow_->window();
    m.historyWindow = static_cast<PanelModel::HistoryWindow>(window);
    if (history_ && window != HistoryWindow::live) m.cpuSlots = history_->slots(history_->cpu(), window);
  }
  m.menuBarMode = settings_.menuBarMode();
  m.showNetSpeed = settings_.showNetSpeed();
  m.hiddenModules = settings_.hiddenModules();
  m.tempUnit = settings_.tempUnit();
  m.alertsEnabled = settings_.alertsEnabled();
  m.cpuAlarmThreshold = settings_.cpuAlarmThreshold();
  m.memAlarmThreshold = settings_.memAlarmThreshold();
  m.tempAlarmThreshold = settings_.tempAlarmThreshold();
  m.killWhitelist = settings_.killWhitelist();
  m.comfortEnabled = settings_.comfortEnabled();
  m.comfortTargetC = settings_.comfortTargetC();
  return m;
}

bool PanelServices::canPause(std::int32_t pid, const std::string& name) const {
  return pauses_.canPause(pid, name);
}
bool PanelServices::isKillable(std::int32_t pid, const std::string& name) const {
  return terminator_.isKillable(pid, name);
}
void PanelServices::pause(std::int32_t pid, const std::string& name) { (void)pauses_.pause(pid, name); }

void PanelServices::resume(std::int32_t pgid) {
  const auto groups = pauses_.paused();
  const auto group =
      std::find_if(groups.begin(), groups.end(), [pgid](const PausedGroup& g) { return g.pgid == pgid; });
  if (group != groups.end()) pauses_.resume(*group);
}

void PanelServices::terminate(std::int32_t pid, const std::string& name) {
  if (terminator_.terminate(pid)) {
    Log::debug("Requested process termination: " + name + " (" + std::to_string(pid) + ")");
  } else {
    Log::debug("Failed to terminate process: " + name + " (" + std::to_string(pid) + ")");
  }
}

void PanelServices::togglePin(const std::string& name) { pins_.toggle(name); }

void PanelServices::expand(std::int32_t pid) {
  expandedPid_ = pid;
  scheduleRefresh();
}

void PanelServices::reveal(const std::string& path) { (void)revealInFileManager(path); }

std::shared_ptr<const Image> PanelServices::processIcon(std::int32_t pid, std::uint64_t startTime,
                                                        const std::string& name) {
  return icons_ ? icons_->icon(pid, startTime, name) : nullptr;
}

void PanelServices::setHistoryWindow(PanelModel::HistoryWindow window) {
  if (historyWindow_) historyWindow_->window.set(static_cast<HistoryWindow>(window));
}

void PanelServices::retryAfterApproval() {
  if (fans_) fans_->retryAfterApproval();
}

void PanelServices::setComfortEnabled(bool on) {
  if (fans_)
    fans_->setEnabled(on);  // stores the switch and starts or stops the controller
  else
    settings_.comfortEnabled.set(on);
}

void PanelServices::setSkin(PanelSkin skin) {
  if (skins_) {
    skins_->skin.set(skin);  // stored; the skin manager's subscribers (this one too) redraw
    return;
  }
  skin_ = skin;
  scheduleRefresh();
}

void PanelServices::addPreauthorized(const std::string& name) { settings_.addPreauthorized(name); }

void PanelServices::removePreauthorized(const std::string& name) {
  auto list = settings_.killWhitelist();
  std::erase(list, name);
  settings_.killWhitelist.set(std::move(list));
}

void PanelServices::setRefreshInterval(double seconds) { settings_.refreshInterval.set(seconds); }
void PanelServices::setLanguage(AppLanguage language) { l10n_.language.set(language); }
void PanelServices::setLaunchAtLogin(bool on) { settings_.launchAtLogin.set(on); }
void PanelServices::setMenuBarMode(MenuBarMode mode) { settings_.menuBarMode.set(mode); }
void PanelServices::setShowNetSpeed(bool on) { settings_.showNetSpeed.set(on); }
void PanelServices::setModuleVisible(PanelModule module, bool visible) {
  settings_.setVisible(module, visible);
}
void PanelServices::setTempUnit(TempUnit unit) { settings_.tempUnit.set(unit); }
void PanelServices::setAlertsEnabled(bool on) { settings_.alertsEnabled.set(on); }
void PanelServices::setCpuAlarmThreshold(double percent) { settings_.cpuAlarmThreshold.set(percent); }
void PanelServices::setMemAlarmThreshold(double percent) { settings_.memAlarmThreshold.set(percent); }
void PanelServices::setTempAlarmThreshold(double celsius) { settings_.tempAlarmThreshold.set(celsius); }
void PanelServices::setComfortTarget(double celsius) { settings_.comfortTargetC.set(celsius); }

}  // namespace quillmark
