// One sampling tick of the tray item in text mode: the status text changed, so every size of the
// item's image is drawn again and converted to the bus's pixel order. The floor draws the same
// text once, at one size, onto a canvas that already exists: the least a text tray item can cost.
// The ratio is what the several sizes and the conversion add.

#include <benchmark/benchmark.h>

#include <string>

#include "app/desktop/tray_pixmaps.h"
#include "views/canvas_cairo.h"

namespace quillmark {
namespace {

std::string textOfTick(int tick) { return "CPU " + std::to_string(tick % 100) + "% MEM 63%  ↓14K ↑2.3M"; }

void BM_TrayTextTick(benchmark::State& state) {
  TrayPainter painter;
  int tick = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(painter.iconWithText(textOfTick(++tick), TrayGlyphs::light));
  }
}

void BM_TrayIconOnly(benchmark::State& state) {
  TrayPainter painter;
  for (auto _ : state) benchmark::DoNotOptimize(painter.icon(TrayGlyphs::light));
}

void BM_FloorOneTextDraw(benchmark::State& state) {
  auto canvas = CairoCanvas::offscreen({260, 22}, 1);
  TextStyle style;
  style.font = Font{13, FontWeight::regular, true};
  style.color = Color::rgb(0xf2f2f2);
  int tick = 0;
  for (auto _ : state) canvas->drawText(textOfTick(++tick), style, Rect{25, 3, 230, 16});
}

BENCHMARK(BM_TrayTextTick);
BENCHMARK(BM_TrayIconOnly);
BENCHMARK(BM_FloorOneTextDraw);

}  // namespace
}  // namespace quillmark

BENCHMARK_MAIN();
