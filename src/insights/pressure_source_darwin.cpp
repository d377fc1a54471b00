#include <dispatch/dispatch.h>

#include "insights/pressure_monitor.h"

namespace quillmark {
namespace {

// The dispatch memory-pressure source, delivering on the main queue (the main thread). Its context
// points at this object; cancelling in the destructor stops deliveries before it goes away (the
// cancel runs on the main queue, the only place the handler runs, so none can be in progress).
class DispatchPressureSource final : public PressureSource {
 public:
  ~DispatchPressureSource() override {
    if (!source_) return;
    dispatch_source_cancel(source_);
    dispatch_release(source_);
  }

  void start(std::function<void(PressureLevel)> onLevel) override {
    if (source_) return;
    onLevel_ = std::move(onLevel);
    source_ = dispatch_source_create(
        DISPATCH_SOURCE_TYPE_MEMORYPRESSURE, 0,
        DISPATCH_MEMORYPRESSURE_NORMAL | DISPATCH_MEMORYPRESSURE_WARN | DISPATCH_MEMORYPRESSURE_CRITICAL,
        dispatch_get_main_queue());
    if (!source_) return;
    dispatch_set_context(source_, this);
    dispatch_source_set_event_handler_f(source_, &DispatchPressureSource::fired);
    dispatch_resume(source_);
  }

 private:
  static void fired(void* context) {
    auto* self = static_cast<DispatchPressureSource*>(context);
    if (self->onLevel_) self->onLevel_(levelFromDispatchFlags(dispatch_source_get_data(self->source_)));
  }

  std::function<void(PressureLevel)> onLevel_;
  dispatch_source_t source_ = nullptr;
};

}  // namespace

std::unique_ptr<PressureSource> PressureSource::makePlatform(MainLoop& loop, const Clock& clock) {
  (void)loop, (void)clock;
  return std::make_unique<DispatchPressureSource>();
}

}  // namespace quillmark
