#include "menubar/frame_pump.h"

#include <gtest/gtest.h>

#include "base/virtual_time.h"

namespace quillmark {
namespace {

// Moves until the clock reaches `until`, as the panel's springs and turn do.
class AnimatedContent final : public HostedContent {
 public:
  explicit AnimatedContent(const Clock& clock) : clock_(clock) {}
  double width() const override { return 10; }
  double height() const override { return 10; }
  void paint(Canvas&) override {}
  bool pointer(const PointerEvent&) override { return false; }
  bool scroll(const ScrollEvent&) override { return false; }
  bool editKey(EditKey, const KeyModifiers&) override { return false; }
  bool text(const TextInput&) override { return false; }
  bool wantsTextInput() const override { return false; }
  ContentRect caretRect() const override { return {}; }
  bool animating() const override { return clock_.monotonicNow() < until; }
  void start(double seconds) {
    until = clock_.monotonicNow() + seconds;
    if (requestRepaint) requestRepaint();
  }

  double until = 0;

 private:
  const Clock& clock_;
};

struct Pumped {
  VirtualClock clock;
  VirtualMainLoop loop{clock};
  AnimatedContent content{clock};
  int redraws = 0;
};

TEST(FramePumpTest, FramesRunOnlyWhileTheContentMoves) {
  Pumped p;
  FramePump pump(p.loop, p.content, [&p] { ++p.redraws; });
  p.content.requestRepaint();  // a still content is redrawn once, with no frames after it
  p.loop.advance(1);
  EXPECT_EQ(p.redraws, 1);

  p.content.start(0.095);
  p.content.start(0.095);  // a second change while running does not start a second stream of frames
  p.loop.advance(1);
  EXPECT_EQ(p.redraws, 1 + 2 + 6);  // the two changes, then 0.095 s at 60 frames a second
  EXPECT_FALSE(pump.running());
}

TEST(FramePumpTest, APendingFrameOutlivesNoPumpAndTheContentGetsItsRedrawBack) {
  Pumped p;
  {
    FramePump pump(p.loop, p.content, [&p] { ++p.redraws; });
    p.content.start(1);
    EXPECT_TRUE(pump.running());
  }
  p.loop.advance(1);
  EXPECT_EQ(p.redraws, 1);
  p.content.requestRepaint();  // the shell's own redraw again
  EXPECT_EQ(p.redraws, 2);
}

}  // namespace
}  // namespace quillmark
