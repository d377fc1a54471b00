#pragma once

#include "processes/pause_manager.h"
#include "processes/pin_store.h"
#include "processes/process_visual_cache.h"
#include "sampling/monitor_hooks.h"

namespace quillmark {

// What the monitor hands to process control after a fresh scan: paused groups are reconciled,
// pins record their trends, the visual cache forgets exited pids. Each service is connected by the
// composition root once it exists; until then its hook does nothing. Main thread only.
class ProcessControlHooks : public MonitorConsumers {
 public:
  void connect(PauseManager* pause, PinStore* pins, ProcessVisualCache* visuals) {
    pause_ = pause;
    pins_ = pins;
    visuals_ = visuals;
  }

  void reconcilePausedGroups() override {
    if (pause_) pause_->reconcile();
  }
  void recordPins(const std::vector<ProcessSample>& processes) override {
    if (pins_) pins_->record(processes);
  }
  void pruneVisuals(const PidSet& livePids) override {
    if (visuals_) visuals_->prune(livePids);
  }

 private:
  PauseManager* pause_ = nullptr;
  PinStore* pins_ = nullptr;
  ProcessVisualCache* visuals_ = nullptr;
};

}  // namespace quillmark
