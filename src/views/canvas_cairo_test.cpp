// Pixel checks where geometry matters: bar fill, the arrow's clamped position, chart gaps, and
// the same drawing at 2x.
#include "views/canvas_cairo.h"

#include <gtest/gtest.h>

#include "views/graphs.h"
#include "views/panel_root.h"
#include "views/testing/panel_fixture.h"

namespace quillmark {
namespace {

const Color kFill = Color::rgb(0xff0000);
const Color kTrack = Color::rgb(0x0000ff);

bool near(Color a, Color b) {
  return std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b) < 0.05 && a.a > 0.9;
}

TEST(CanvasCairoTest, HalfBarFillsHalfItsTrackAtBothScales) {
  for (const double scale : {1.0, 2.0}) {
    auto canvas = CairoCanvas::offscreen({200, 10}, scale);
    Bar bar(0.5, kFill, kTrack, 10);
    bar.frame = {0, 0, 200, 10};
    bar.paintTree(*canvas);
    const int y = static_cast<int>(5 * scale);
    EXPECT_TRUE(near(canvas->pixel(static_cast<int>(90 * scale), y), kFill)) << scale;
    EXPECT_TRUE(near(canvas->pixel(static_cast<int>(110 * scale), y), kTrack)) << scale;
    // An absent value draws the empty track, not a bar at 0 that could pass for a reading.
    Bar unknown(std::nullopt, kFill, kTrack, 10);
    unknown.frame = bar.frame;
    unknown.paintTree(*canvas);
    EXPECT_TRUE(near(canvas->pixel(static_cast<int>(20 * scale), y), kTrack)) << scale;
  }
}

TEST(CanvasCairoTest, ChartLeavesAGapWhereValuesAreAbsent) {
  auto canvas = CairoCanvas::offscreen({100, 50}, 1);
  Chart chart({50, 50, 50, std::nullopt, std::nullopt, std::nullopt, 50, 50, 50, 50, 50}, 100, kFill, false,
              50);
  chart.frame = {0, 0, 100, 50};
  chart.paintTree(*canvas);
  const int y = 25;  // the line at 50 of 100
  EXPECT_GT(canvas->pixel(10, y).a, 0.5);
  EXPECT_EQ(canvas->pixel(40, y).a, 0);  // slots 3-5 span x = 30...50
  EXPECT_GT(canvas->pixel(80, y).a, 0.5);
}

TEST(CanvasCairoTest, ArrowSitsAtTheClampedPosition) {
  EXPECT_EQ(PanelRoot::clampedArrowX(378, 400), 376);
  EXPECT_EQ(PanelRoot::clampedArrowX(5, 400), 24);
  EXPECT_EQ(PanelRoot::clampedArrowX(92, 400), 92);
  testing::PanelFixture f;
  auto canvas = CairoCanvas::offscreen({400, 668}, 2);
  f.root.setArrowX(395);
  EXPECT_EQ(f.anchor.arrowX(), 395);  // one anchor for every card with an arrow
  f.root.paint(*canvas);
  // Just under the tip the arrow is drawn at 376, and nowhere near the unclamped 395.
  EXPECT_GT(canvas->pixel(376 * 2, 3 * 2).a, 0.5);
  EXPECT_EQ(canvas->pixel(395 * 2, 3 * 2).a, 0);
  EXPECT_EQ(canvas->pixel(200 * 2, 3 * 2).a, 0);
}

}  // namespace
}  // namespace quillmark
