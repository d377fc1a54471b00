#include "app/frontend/front_end.h"

#include "app/frontend/i3bar_output.h"
#include "app/frontend/snapshot_json.h"
#include "app/frontend/status_text.h"
#include "app/frontend/waybar_output.h"
#include "base/clock.h"
#include "settings/settings_manager.h"

namespace quillmark {

FrontEndSettings FrontEndSettings::of(const SettingsManager& settings) {
  return {
      [&settings] { return settings.refreshInterval(); },
      [&settings] { return settings.showNetSpeed(); },
      [&settings] { return settings.tempUnit(); },
      [&settings] {
        return AlarmThresholds{settings.cpuAlarmThreshold(), settings.memAlarmThreshold(),
                               settings.tempAlarmThreshold()};
      },
  };
}

FrontEnd::FrontEnd(FrontEndOptions options, FrontEndSettings settings, Monitor& monitor, MainLoop& loop,
                   const L10n& l10n, Emit emit, std::function<void()> finish)
    : options_(std::move(options)),
      settings_(std::move(settings)),
      monitor_(monitor),
      loop_(loop),
      l10n_(l10n),
      emit_(std::move(emit)),
      finish_(std::move(finish)),
      alive_(std::make_shared<FrontEnd*>(this)) {}

FrontEnd::~FrontEnd() { stop(); }

void FrontEnd::start() {
  monitor_.onSnapshot = [this](const Monitor::Snapshot& snapshot) {
    if (!primed_) {
      primed_ = true;  // its rates and loads cover no interval yet
      return;
    }
    print(snapshot);
  };
  // Every format but the status text shows disk, sensors or processes: run every reader.
  if (options_.format != OutputFormat::text) monitor_.setPublishingPaused(false);
  const double interval = settings_.refreshInterval();
  monitor_.start(interval);
  std::weak_ptr<FrontEnd*> weak = alive_;
  loop_.postAfter(std::min(kPrimingSeconds, interval), [weak] {
    if (auto self = weak.lock()) (*self)->measureAfterPriming();
  });
}

void FrontEnd::stop() {
  monitor_.stop();
  monitor_.onSnapshot = nullptr;
}

void FrontEnd::measureAfterPriming() {
  if (!monitor_.isRunning()) return;  // stopped meanwhile
  if (options_.format == OutputFormat::text) {
    monitor_.sample();
    return;
  }
  // Reopening the panel is how the monitor is asked for a full measurement with a fresh process
  // scan now, so the first line's process loads cover the priming second too.
  monitor_.setPublishingPaused(true);
  monitor_.setPublishingPaused(false);
}

BarContext FrontEnd::barContext() const {
  return BarContext{l10n_, settings_.showNetSpeed(), settings_.tempUnit(), settings_.thresholds()};
}

void FrontEnd::print(const Monitor::Snapshot& snapshot) {
  if (options_.count && printed_ >= *options_.count) return;
  ++printed_;
  const bool last = options_.count && printed_ == *options_.count;
  // The published figures, which keep the last reading when a tick could not read the counters.
  const auto text = [&] {
    return statusText(monitor_.cpu(), monitor_.memory(), snapshot.network, settings_.showNetSpeed(), l10n_);
  };
  switch (options_.format) {
    case OutputFormat::text:
      emit_(text(), false);
      break;
    case OutputFormat::json:
      emit_(snapshotJson(snapshot, Clock::system().unixNow()), false);
      break;
    case OutputFormat::waybar:
      emit_(waybarLine(snapshot, barContext(), text()), false);
      break;
    case OutputFormat::i3bar: {
      const bool first = !i3bar_;
      if (first) {
        i3bar_ = std::make_unique<I3barOutput>();
        emit_(I3barOutput::header(), true);
        emit_(I3barOutput::opening(), true);
      }
      emit_(i3bar_->nextElement(snapshot, barContext()), first || last);
      if (last) emit_(I3barOutput::closing(), true);
      break;
    }
  }
  if (last) finish_();
}

}  // namespace quillmark
