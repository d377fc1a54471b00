#include <algorithm>

#include "settings/format.h"
#include "settings/l10n.h"
#include "views/face_parts.h"
#include "views/faces.h"
#include "views/graphs.h"
#include "views/panel_text.h"
#include "views/process_section.h"

namespace quillmark {
namespace {

using FaceParts::heading;
using FaceParts::row;
using FaceParts::text;
using Window = PanelModel::HistoryWindow;

constexpr int kMaxCoreBars = 16;

// The memory breakdown as one bar of coloured segments (apps, wired, compressed, cached) over
// the installed total.
class MemoryBar : public View {
 public:
  MemoryBar(const MemorySample& m, const Theme& theme) : memory_(m), theme_(theme) { fixedHeight = 10; }
  void paint(Canvas& canvas) override {
    const Rect box{0, 0, frame.width, frame.height};
    canvas.fill(Path().addRoundedRect(box, 5), theme_.track);
    if (memory_.total == 0) return;
    canvas.save();
    canvas.clip(Path().addRoundedRect(box, 5));
    double x = 0;
    const std::pair<std::uint64_t, Color> parts[] = {{memory_.app, theme_.memory},
                                                     {memory_.wired, theme_.gpu},
                                                     {memory_.compressed, theme_.warning},
                                                     {memory_.cached, theme_.secondaryText.withAlpha(0.5)}};
    for (const auto& [bytes, color] : parts) {
      const double w = static_cast<double>(bytes) / static_cast<double>(memory_.total) * frame.width;
      canvas.fill(Path().addRect({x, 0, std::min(w, frame.width - x), frame.height}), color);
      x += w;
    }
    canvas.restore();
  }

 private:
  MemorySample memory_;
  const Theme& theme_;
};

std::vector<std::string> windowNames() {
  return {L("history.window.live"), L("history.window.m30"), L("history.window.h1"),
          L("history.window.h6"),   L("history.window.h12"), L("history.window.h24")};
}

void cpuCard(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = body.make<Card>(t);
  card.id = "cpu";
  heading(card, t, L("glass.cpu.title"), PanelText::percent(m.cpuTotal()), t.cpu).id = "cpuHeading";
  std::vector<double> shown(
      m.cpu.perCore.begin(),
      m.cpu.perCore.begin() + std::min<std::size_t>(m.cpu.perCore.size(), kMaxCoreBars));
  card.make<ColumnBars>(std::move(shown), t.cpu, t.track).id = "cores";
  if (m.cpu.perCore.size() > kMaxCoreBars) {
    text(card, t, L("glass.cpu.morecores", static_cast<int>(m.cpu.perCore.size() - kMaxCoreBars)),
         t.captionSize, t.secondaryText);
  }
  card.make<SegmentedPicker>(t, windowNames(), static_cast<int>(m.historyWindow),
                             [&ctx](int index) { ctx.actions.setHistoryWindow(static_cast<Window>(index)); })
      .id = "window";
  auto values = m.historyWindow == Window::live ? Chart::dense(m.cpuHistory) : m.cpuSlots;
  card.make<Chart>(std::move(values), 100, t.cpu, true, 54).id = "cpuChart";
}

void gpuCard(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& gpu = ctx.model.gpu;
  auto& card = body.make<Card>(t);
  card.id = "gpu";
  const std::optional<double> util = gpu ? std::optional(gpu->deviceUtil) : std::nullopt;
  heading(card, t, L("glass.gpu.title"), PanelText::percent(util), t.gpu);
  card.make<Bar>(util ? std::optional(*util / 100) : std::nullopt, t.gpu, t.track);
  row(card, t, L("glass.gpu.renderer"), PanelText::percent(gpu ? gpu->rendererUtil : std::nullopt));
  row(card, t, L("glass.gpu.corematrix"),
      gpu && gpu->coreCount ? L("vitals.gpu.coreCount", *gpu->coreCount) : PanelText::noValue());
}

void memoryCard(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& mem = ctx.model.memory;
  const bool known = mem.total > 0;
  auto& card = body.make<Card>(t);
  card.id = "memory";
  heading(card, t, L("glass.memory.title"),
          PanelText::percent(known ? std::optional(mem.usageFraction() * 100) : std::nullopt), t.memory);
  card.make<MemoryBar>(mem, t).id = "memoryBar";
  const auto bytes = [known](std::uint64_t v) {
    return PanelText::bytes(known ? std::optional(v) : std::nullopt);
  };
  row(card, t, L("glass.memory.used"), bytes(mem.used()));
  row(card, t, L("glass.memory.total"), bytes(mem.total));
  auto& legend = card.make<HStack>(6);
  for (const auto& [key, value] : {std::pair{"glass.mem.app", mem.app},
                                   {"glass.mem.wired", mem.wired},
                                   {"glass.mem.compressed", mem.compressed},
                                   {"glass.mem.cached", mem.cached}}) {
    // Name over value, each on one line: long names (German "Zwischengespeichert") shrink
    // rather than break mid-word, and the four values line up.
    auto& item = legend.make<VStack>(1);
    text(item, t, L(key), t.captionSize, t.secondaryText);
    text(item, t, bytes(value), t.captionSize, t.text, FontWeight::medium);
  }
}

void networkCard(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = body.make<Card>(t);
  card.id = "network";
  heading(card, t, L("glass.network.title"));
  row(card, t, L("glass.network.download"), PanelText::rate(m.network.downBps), 0, t.network);
  row(card, t, L("glass.network.upload"), PanelText::rate(m.network.upBps), 0, t.upload);
  auto& chart = card.make<Chart>(Chart::dense(m.downHistory), 0, t.network, true, 40);
  chart.overlay = Chart::dense(m.upHistory);
  chart.overlayLine = t.upload;
  text(card, t, L("glass.network.realtime"), t.captionSize, t.secondaryText);
}

void diskCard(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = body.make<Card>(t);
  card.id = "disk";
  std::optional<double> used;
  if (m.diskFree && m.diskTotal && *m.diskTotal > 0)
    used = 100.0 * static_cast<double>(*m.diskTotal - std::min(*m.diskFree, *m.diskTotal)) /
           static_cast<double>(*m.diskTotal);
  heading(card, t, L("glass.disk.title"), PanelText::percent(used), t.accent);
  card.make<Bar>(used ? std::optional(*used / 100) : std::nullopt, t.accent, t.track);
  // An unread volume is one "no value", not "no value free of no value".
  text(card, t,
       m.diskFree && m.diskTotal
           ? L("glass.disk.detail", Format::byteString(*m.diskFree), Format::byteString(*m.diskTotal))
           : PanelText::noValue(),
       t.bodySize, t.secondaryText);
}

void thermalCard(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = body.make<Card>(t);
  card.id = "thermal";
  heading(card, t, L("glass.temp.title"), PanelText::temperature(m.thermal.cpuC, m.tempUnit), t.temperature);
  row(card, t, L("glass.temp.cpu"), PanelText::temperature(m.thermal.cpuC, m.tempUnit));
  row(card, t, L("glass.temp.gpu"), PanelText::temperature(m.thermal.gpuC, m.tempUnit));
  row(card, t, L("glass.temp.battery"), PanelText::temperature(m.thermal.batteryC, m.tempUnit));
  row(card, t, L("glass.temp.surface"), PanelText::temperature(m.thermal.surfaceC, m.tempUnit));
  for (std::size_t i = 0; i < m.fans.size(); ++i)
    row(card, t, L("glass.fan.label", static_cast<int>(i + 1)), PanelText::rpm(m.fans[i]));
}

std::string batteryStatus(const BatterySample& b) {
  if (b.isCharged) return L("battery.status.charged");
  if (b.isCharging) return L("battery.status.charging");
  if (b.externalConnected) return L("battery.status.notCharging");
  return L("battery.status.onBattery");
}

void powerCard(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& b = ctx.model.battery;
  auto& card = body.make<Card>(t);
  card.id = "power";
  const auto charge = b.percentage ? std::optional<double>(*b.percentage) : std::nullopt;
  heading(card, t, L("glass.battery.title"), PanelText::percent(charge), t.power);
  card.make<Bar>(charge ? std::optional(*charge / 100) : std::nullopt, t.power, t.track);
  row(card, t, L(b.externalConnected ? "battery.power.ac" : "battery.power.internal"),
      b.powerWatts ? L("battery.power.watts", *b.powerWatts) : PanelText::noValue());
  if (b.percentage) text(card, t, batteryStatus(b), t.bodySize, t.secondaryText);
  row(card, t, L("battery.health.title"),
      PanelText::percent(b.healthPercent ? std::optional<double>(*b.healthPercent) : std::nullopt));
  row(card, t, L("glass.battery.cycles"),
      b.cycleCount ? std::to_string(*b.cycleCount) : PanelText::noValue());
}

}  // namespace

std::unique_ptr<View> buildGlassFace(FaceContext& ctx, Size size) {
  auto frame = makeFaceFrame(ctx, size, L("glass.panel.title"), FaceParts::selfUsage(ctx.model), false);
  View& body = *frame.body;
  const auto& m = ctx.model;
  FaceParts::pausedBanner(body, ctx);
  cpuCard(body, ctx);
  if (m.shows(PanelModule::gpu)) gpuCard(body, ctx);
  if (m.shows(PanelModule::memory)) memoryCard(body, ctx);
  if (m.shows(PanelModule::network)) networkCard(body, ctx);
  diskCard(body, ctx);
  if (m.shows(PanelModule::thermal)) thermalCard(body, ctx);
  if (m.shows(PanelModule::power)) powerCard(body, ctx);
  if (m.shows(PanelModule::processes)) {
    auto& card = body.make<Card>(ctx.theme, 2);
    card.id = "processes";
    heading(card, ctx.theme, L("proc.section.title"));
    buildProcessSection(card, ctx, 12);
  }
  FaceParts::diagnostics(body, ctx);
  FaceParts::dialogs(*frame.face, ctx);
  return std::move(frame.face);
}

}  // namespace quillmark
