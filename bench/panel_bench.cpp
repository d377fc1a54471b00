// One full layout and draw of each face at 2x, from a fresh model (as after a tick of published
// state), against a floor that draws the same texts at the same places straight onto the canvas
// with no view tree. The ratio is what the view layer and the faces cost on top of Pango.

#include <benchmark/benchmark.h>

#include <vector>

#include "base/virtual_time.h"
#include "views/canvas_cairo.h"
#include "views/label.h"
#include "views/panel_root.h"
#include "views/testing/recording_actions.h"

namespace quillmark {
namespace {

PanelModel busyModel(PanelSkin skin) {
  PanelModel m;
  m.skin = skin;
  m.cpu.total = 42;
  for (int i = 0; i < 12; ++i) m.cpu.perCore.push_back(i * 8.0);
  m.memory = {32ull << 30, 12ull << 30, 3ull << 30, 2ull << 30, 6ull << 30, 9ull << 30};
  m.network = {2.5e6, 3.2e5};
  for (int i = 0; i < 90; ++i) {
    m.cpuHistory.push_back(i % 37);
    m.memHistory.push_back(50 + i % 5);
    m.downHistory.push_back(i * 3 % 200);
    m.upHistory.push_back(i % 40);
  }
  for (int i = 0; i < 400; ++i) {
    m.processes.push_back(
        {1000 + i, "process-" + std::to_string(i), (i * 7) % 100 / 3.0, static_cast<std::uint64_t>(i) << 22});
  }
  m.diskFree = 200ull << 30;
  m.diskTotal = 500ull << 30;
  m.thermal = {55, 48, 31, 33};
  m.fans = {2400};
  m.battery = {80, true, false, true, 120, 95, 12.5};
  m.gpu = GPUSample{20, 18, 10, 1ull << 30, 10};
  return m;
}

struct Setup {
  testing::RecordingActions actions;
  std::unique_ptr<CairoCanvas> canvas = CairoCanvas::offscreen({400, 668}, 2);
  VirtualClock clock;
  PanelAnchor anchor;
  PanelFlipState flip{clock};
  PanelRoot root{actions, *canvas, {anchor, flip, clock}};
  explicit Setup(int face) {
    root.setModel(busyModel(face == 1 ? PanelSkin::vitals : PanelSkin::glass));
    if (face == 2) {
      root.showSettings(true);
      clock.advance(5);  // the turn has finished
    }
  }
};

void BM_FaceLayoutAndDraw(benchmark::State& state) {
  Setup s(static_cast<int>(state.range(0)));
  const PanelModel model = s.root.model();
  for (auto _ : state) {
    s.root.setModel(model);  // published state changed: rebuild, lay out, draw
    s.root.paint(*s.canvas);
  }
}

// The same label texts and boxes, drawn directly.
void BM_FloorTextsOnly(benchmark::State& state) {
  Setup s(static_cast<int>(state.range(0)));
  struct Run {
    std::string text;
    TextStyle style;
    Rect box;
  };
  std::vector<Run> runs;
  std::vector<View*> pending{s.root.tree().children()[s.flip.flipped() ? 1 : 0].get()};
  while (!pending.empty()) {
    View* v = pending.back();
    pending.pop_back();
    for (auto& child : v->children()) pending.push_back(child.get());
    if (auto* label = dynamic_cast<Label*>(v)) {
      const Point o = label->originIn();
      runs.push_back({label->text, label->style, {o.x, o.y, label->frame.width, label->frame.height}});
    }
  }
  for (auto _ : state) {
    for (const auto& run : runs) s.canvas->drawText(run.text, run.style, run.box);
  }
  state.counters["texts"] = static_cast<double>(runs.size());
}

BENCHMARK(BM_FaceLayoutAndDraw)->ArgName("face")->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FloorTextsOnly)->ArgName("face")->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillmark

BENCHMARK_MAIN();
