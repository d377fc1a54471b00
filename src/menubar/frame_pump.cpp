#include "menubar/frame_pump.h"

namespace quillmark {

FramePump::FramePump(MainLoop& loop, HostedContent& content, std::function<void()> redraw)
    : loop_(loop), content_(content), redraw_(std::move(redraw)) {
  content_.requestRepaint = [this] { changed(); };
}

FramePump::~FramePump() { content_.requestRepaint = redraw_; }

void FramePump::changed() {
  if (redraw_) redraw_();
  // A change while frames run (each painted frame may ask again) does not start a second stream.
  if (!scheduled_ && content_.animating()) schedule();
}

void FramePump::schedule() {
  scheduled_ = true;
  std::weak_ptr<FramePump*> weak = lifetime_;
  loop_.postAfter(kFrameSeconds, [weak] {
    auto self = weak.lock();
    if (!self) return;
    FramePump& pump = **self;
    pump.scheduled_ = false;
    if (pump.redraw_) pump.redraw_();
    if (pump.content_.animating()) pump.schedule();
  });
}

}  // namespace quillmark
