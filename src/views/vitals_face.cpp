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

using FaceParts::row;
using FaceParts::text;

// A channel: its name, a large figure in the channel's colour and a strip of its recent history.
void channel(View& into, const Theme& t, std::string name, std::string figure, Color color,
             const std::vector<double>& history, double top, std::string id) {
  auto& tile = into.make<Card>(t, 3);
  tile.id = std::move(id);
  text(tile, t, std::move(name), t.captionSize, t.secondaryText, FontWeight::medium);
  tile.make<Label>(std::move(figure), TextStyle{{t.figureSize, FontWeight::bold, true}, color});
  tile.make<Chart>(Chart::dense(history), top, color, true, 26);
}

std::string temperatureChannelText(const PanelModel& m) {
  if (!m.thermal.cpuC) return PanelText::noValue();
  const int shown = display(m.tempUnit, *m.thermal.cpuC);
  return L(m.tempUnit == TempUnit::celsius ? "vitals.temperature.cpu.celsius"
                                           : "vitals.temperature.cpu.fahrenheit",
           shown);
}

void channels(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& first = body.make<HStack>(8);
  channel(first, t, L("vitals.channel.cpuLoad"), PanelText::percent(m.cpuTotal()), t.cpu, m.cpuHistory, 100,
          "chCpu");
  if (m.shows(PanelModule::memory)) {
    channel(first, t, L("vitals.channel.memoryUsed"),
            PanelText::percent(m.memory.total ? std::optional(m.memory.usageFraction() * 100) : std::nullopt),
            t.memory, m.memHistory, 100, "chMemory");
  }
  auto& second = body.make<HStack>(8);
  if (m.shows(PanelModule::gpu)) {
    channel(second, t, L("vitals.channel.gpuUtil"),
            PanelText::percent(m.gpu ? std::optional(m.gpu->deviceUtil) : std::nullopt), t.gpu, m.gpuHistory,
            100, "chGpu");
  }
  if (m.shows(PanelModule::thermal)) {
    channel(second, t, L("vitals.channel.temperature"), temperatureChannelText(m), t.temperature,
            m.tempHistory, 0, "chTemp");
  }
  if (m.shows(PanelModule::network)) {
    auto& net = body.make<Card>(t, 3);
    net.id = "chNet";
    row(net, t, L("vitals.channel.networkDown"), PanelText::rate(m.network.downBps), 0, t.network);
    row(net, t, L("vitals.network.upload"), PanelText::rate(m.network.upBps), 0, t.upload);
    auto& strip = net.make<Chart>(Chart::dense(m.downHistory), 0, t.network, true, 26);
    strip.overlay = Chart::dense(m.upHistory);
    strip.overlayLine = t.upload;
  }
}

void engineDetail(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& card = body.make<Card>(t, 4);
  card.id = "engine";
  text(card, t, L("vitals.core.channels", static_cast<int>(m.cpu.perCore.size())), t.captionSize,
       t.secondaryText, FontWeight::medium);
  card.make<ColumnBars>(m.cpu.perCore, t.cpu, t.track, 24);
  if (!m.shows(PanelModule::gpu)) return;
  text(card, t, L("vitals.engineDetail"), t.captionSize, t.secondaryText, FontWeight::medium);
  const auto& gpu = m.gpu;
  row(card, t, L("vitals.gpu.device"),
      PanelText::percent(gpu ? std::optional(gpu->deviceUtil) : std::nullopt));
  row(card, t, L("vitals.gpu.renderer"), PanelText::percent(gpu ? gpu->rendererUtil : std::nullopt));
  row(card, t, L("vitals.gpu.tiler"), PanelText::percent(gpu ? gpu->tilerUtil : std::nullopt));
  row(card, t, L("vitals.gpu.engines"),
      gpu && gpu->coreCount ? L("vitals.gpu.coreCount", *gpu->coreCount) : PanelText::noValue());
  row(card, t, L("vitals.gpuTemperature"), PanelText::temperature(m.thermal.gpuC, m.tempUnit));
}

void footer(View& body, FaceContext& ctx) {
  const Theme& t = ctx.theme;
  const auto& m = ctx.model;
  auto& line = body.make<HStack>(6);
  line.id = "footer";
  const auto item = [&](std::string s) {
    line.make<Label>(
        std::move(s),
        TextStyle{{t.captionSize, FontWeight::regular, true}, t.secondaryText, TextAlign::center});
  };
  item(L("vitals.footer.diskFree", PanelText::bytes(m.diskFree)));
  item(L("vitals.footer.processCount", static_cast<long>(m.processes.size())));
  item(L("vitals.footer.refresh", m.refreshInterval));
  item(m.uptimeSeconds ? L("vitals.footer.uptime", Format::uptime(*m.uptimeSeconds)) : PanelText::noValue());
}

}  // namespace

std::unique_ptr<View> buildVitalsFace(FaceContext& ctx, Size size) {
  auto frame = makeFaceFrame(ctx, size, L("skin.vitals"), FaceParts::selfUsage(ctx.model), false);
  View& body = *frame.body;
  const auto& m = ctx.model;
  FaceParts::pausedBanner(body, ctx);
  channels(body, ctx);
  engineDetail(body, ctx);
  if (m.shows(PanelModule::power) && m.battery.percentage) {
    auto& card = body.make<Card>(ctx.theme, 3);
    card.id = "power";
    const auto& b = m.battery;
    const std::string status = L(b.isCharged    ? "battery.status.charged"
                                 : b.isCharging ? "battery.status.charging"
                                                : "battery.status.onBattery");
    row(card, ctx.theme, L("glass.battery.title"), L("vitals.battery.summary", *b.percentage, status), 220,
        ctx.theme.power);
  }
  if (m.shows(PanelModule::processes)) {
    auto& card = body.make<Card>(ctx.theme, 2);
    card.id = "processes";
    text(card, ctx.theme, L("vitals.topConsumers"), ctx.theme.captionSize, ctx.theme.secondaryText,
         FontWeight::medium);
    buildProcessSection(card, ctx, 8);
  }
  FaceParts::diagnostics(body, ctx);
  footer(body, ctx);
  FaceParts::dialogs(*frame.face, ctx);
  return std::move(frame.face);
}

}  // namespace quillmark
