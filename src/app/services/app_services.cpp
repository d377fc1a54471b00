#include "app/services/app_services.h"

#include <unistd.h>

#include "base/clock.h"
#include "base/defaults_store.h"
#include "base/main_loop.h"
#include "base/shared_instance.h"
#include "settings/l10n.h"
#include "settings/launch_at_login.h"
#include "settings/notification_permission.h"

namespace quillmark {

AppServices::AppServices()
    : counters_(SystemCounters::makePlatform()),
      processReader_(ProcessReader::makePlatform()),
      heavy_(PlatformHeavyReaders::make(inventory_)),
      queue_(SerialQueue::makeBackground("com.quillmark.app.monitor")) {
  SharedInstance<SensorInventory>::install(&inventory_);
  monitor_ = Monitor::create(Monitor::Environment{MainLoop::main(), *queue_, Clock::system(), *counters_,
                                                  *processReader_, *heavy_, insightConsumers_});
  SharedInstance<Monitor>::install(monitor_.get());

  Monitor* monitor = monitor_.get();
  settings_ = std::make_unique<SettingsManager>(
      DefaultsStore::shared(), [monitor](double interval) { monitor->setInterval(interval); },
      NotificationPermissionSlot::shared(), LaunchAtLogin::shared());
  SharedInstance<SettingsManager>::install(settings_.get());

  // The surface sensor the user named reaches the heavy readers now and on every change.
  PlatformHeavyReaders* heavy = heavy_.get();
  heavy->setSurfaceSensor(settings_->surfaceSensor());
  (void)settings_->surfaceSensor.subscribe([heavy](const std::string& id) { heavy->setSurfaceSensor(id); });

  wireProcessControl();
  wireInsights();
  wireFanControl();
  wireMenuBarShell();
}

void AppServices::wireProcessControl() {
  ProcessOS os{StartTimeSource::platform(), ProcessSignals::platform(), CgroupFreezer::platform()};
  frontmost_ = FrontmostAppSource::makePlatform();
  pauseGuardian_ = std::make_unique<PauseGuardian>(PauseGuardian::findExecutable());
  pauseManager_ = std::make_unique<PauseManager>(PauseManager::Environment{
      DefaultsStore::shared(), MainLoop::main(), Clock::system(), os, frontmost_.get()});
  PauseGuardian* guardian = pauseGuardian_.get();
  (void)pauseManager_->paused.subscribe([guardian](const auto& groups) { guardian->update(groups); });
  guardian->update(pauseManager_->paused());  // groups still frozen from the last run
  SharedInstance<PauseManager>::install(pauseManager_.get());
  terminator_ = std::make_unique<ProcessTerminator>(MainLoop::main(), os.starts, os.signals);
  SharedInstance<ProcessTerminator>::install(terminator_.get());
  pins_ = std::make_unique<PinStore>(DefaultsStore::shared(), Clock::system());
  SharedInstance<PinStore>::install(pins_.get());
  visualSource_ = VisualSource::makePlatform();
  visuals_ = std::make_unique<ProcessVisualCache>(*visualSource_);
  SharedInstance<ProcessVisualCache>::install(visuals_.get());
  consumers_.connect(pauseManager_.get(), pins_.get(), visuals_.get());
}

void AppServices::willTerminate() {
  pauseManager_->resumeAll();
  fanClient_->releaseControl([](bool) {});
  monitor_->stop();
}

void AppServices::wireInsights() {
  Monitor* monitor = monitor_.get();
  history_ = std::make_unique<HistoryStore>(Clock::system());
  SharedInstance<HistoryStore>::install(history_.get());
  SharedInstance<HistoryWindowState>::install(&historyWindow_);

  // The engine and the pressure monitor ask each other: the engine reads the level, a rise in
  // level asks the engine for a culprit snapshot.
  insights_ = std::make_unique<InsightEngine>(InsightEngine::Environment{
      Clock::system(), L10n::shared(), [this] { return pressure_->level(); },
      [monitor] { return monitor->latestProcesses(); }, static_cast<std::int32_t>(getpid())});
  SharedInstance<InsightEngine>::install(insights_.get());
  InsightEngine* insights = insights_.get();
  pressure_ = std::make_unique<PressureMonitor>(
      PressureSource::makePlatform(MainLoop::main(), Clock::system()),
      [insights](PressureLevel level) { insights->captureCulprits(level); });
  SharedInstance<PressureMonitor>::install(pressure_.get());
  // A change of level makes the culprit finding appear or go at once, not at the next ingest.
  (void)pressure_->level.subscribe([insights](PressureLevel) { insights->refresh(); });

  notificationCenter_ = NotificationCenter::makePlatform(MainLoop::main());
  alerts_ = std::make_unique<AlertManager>(AlertManager::Environment{
      *notificationCenter_, *settings_, L10n::shared(), [monitor] {
        return AlertManager::Context{monitor->latestProcesses(), monitor->latestThermal()};
      }});
  SharedInstance<AlertManager>::install(alerts_.get());
  // From now on, turning alerts on asks the notification centre.
  NotificationPermissionSlot::shared().setTarget(alerts_.get());

  insightConsumers_.connect({*history_, *insights_, *alerts_, *settings_});
  pressure_->start();
  alerts_->activate();
}

void AppServices::wireFanControl() {
  // Comfort cooling starts itself when comfortEnabled is on; the application calls
  // startIfEnabled() once its shell is up.
  fanTransport_ = FanHelperTransport::makePlatform();
  fanClient_ = std::make_unique<FanHelperClient>(*fanTransport_, MainLoop::main());
  SharedInstance<FanHelperClient>::install(fanClient_.get());
  comfortSensors_ =
      ComfortSensors::makePlatform([settings = settings_.get()] { return settings->surfaceSensor(); });
  fanController_ = std::make_unique<FanController>(
      *fanClient_, settings_->comfortEnabled, settings_->comfortTargetC, *comfortSensors_, MainLoop::main());
  SharedInstance<FanController>::install(fanController_.get());
}

void AppServices::wireMenuBarShell() {
  // The shell's own windows are the platform's; this is the state they share: the panel's look,
  // where its arrow points, and its flip.
  skins_ = std::make_unique<SkinManager>(DefaultsStore::shared());
  SharedInstance<SkinManager>::install(skins_.get());
  panelAnchor_ = std::make_unique<PanelAnchor>();
  SharedInstance<PanelAnchor>::install(panelAnchor_.get());
  panelFlip_ = std::make_unique<PanelFlipState>(Clock::system());
  SharedInstance<PanelFlipState>::install(panelFlip_.get());
}

AppServices::~AppServices() {
  // The fans go back to the system first; were this lost, the daemon would still hand them back
  // once the heartbeats stop.
  fanClient_->releaseControl([](bool) {});
  SharedInstance<FanController>::install(nullptr);
  SharedInstance<FanHelperClient>::install(nullptr);
  // Nothing stays frozen after Quillmark: thaw first, while every collaborator still exists.
  pauseManager_->resumeAll();
  consumers_.connect(nullptr, nullptr, nullptr);
  SharedInstance<ProcessVisualCache>::install(nullptr);
  SharedInstance<PinStore>::install(nullptr);
  SharedInstance<ProcessTerminator>::install(nullptr);
  SharedInstance<PauseManager>::install(nullptr);
  monitor_->stop();
  insightConsumers_.disconnect();
  NotificationPermissionSlot::shared().setTarget(nullptr);
  SharedInstance<AlertManager>::install(nullptr);
  SharedInstance<PressureMonitor>::install(nullptr);
  SharedInstance<InsightEngine>::install(nullptr);
  SharedInstance<HistoryWindowState>::install(nullptr);
  SharedInstance<HistoryStore>::install(nullptr);
  SharedInstance<PanelFlipState>::install(nullptr);
  SharedInstance<PanelAnchor>::install(nullptr);
  SharedInstance<SkinManager>::install(nullptr);
  SharedInstance<SettingsManager>::install(nullptr);
  SharedInstance<Monitor>::install(nullptr);
  SharedInstance<SensorInventory>::install(nullptr);
}

}  // namespace quillmark
