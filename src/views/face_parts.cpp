#include "views/face_parts.h"

#include <algorithm>

#include "settings/format.h"
#include "settings/l10n.h"
#include "views/confirm_dialog.h"
#include "views/panel_text.h"

namespace quillmark {

void Card::paint(Canvas& canvas) {
  const Path shape = Path().addRoundedRect({0, 0, frame.width, frame.height}, theme_.corner);
  canvas.fill(shape, theme_.card);
  canvas.stroke(shape, theme_.cardBorder, 1);
}

namespace FaceParts {

Label& text(View& into, const Theme&, std::string s, double size, Color color, FontWeight weight,
            Label::Overflow overflow) {
  return into.make<Label>(std::move(s), TextStyle{{size, weight, false}, color}, overflow);
}

HStack& row(View& into, const Theme& theme, std::string title, std::string value, double valueWidth,
            std::optional<Color> valueColor) {
  auto& line = into.make<HStack>(8);
  text(line, theme, std::move(title), theme.bodySize, theme.secondaryText);
  auto& v = line.make<Label>(std::move(value), TextStyle{{theme.bodySize, FontWeight::medium, true},
                                                         valueColor.value_or(theme.text),
                                                         TextAlign::trailing});
  v.fixedWidth = valueWidth;
  return line;
}

HStack& heading(View& into, const Theme& theme, std::string title, std::string figure,
                std::optional<Color> figureColor) {
  auto& line = into.make<HStack>(8);
  text(line, theme, std::move(title), theme.bodySize + 1.5, theme.text, FontWeight::bold);
  if (!figure.empty()) {
    auto& f = line.make<Label>(std::move(figure), TextStyle{{theme.figureSize * 0.8, FontWeight::bold, true},
                                                            figureColor.value_or(theme.text),
                                                            TextAlign::trailing});
    f.fixedWidth = 130;
  }
  return line;
}

void pausedBanner(View& into, FaceContext& ctx) {
  if (ctx.model.paused.empty()) return;
  auto& card = into.make<Card>(ctx.theme);
  card.id = "pausedBanner";
  text(card, ctx.theme, L("paused.banner"), ctx.theme.bodySize, ctx.theme.warning, FontWeight::medium,
       Label::Overflow::wrap);
  for (const auto& app : ctx.model.paused) {
    auto& line = card.make<HStack>(8);
    text(line, ctx.theme, app.name, ctx.theme.bodySize, ctx.theme.text, FontWeight::regular,
         Label::Overflow::ellipsize);
    auto& resume = line.make<Button>(ctx.theme, L("paused.resume"),
                                     [&ctx, pgid = app.pgid] { ctx.actions.resume(pgid); });
    resume.fixedWidth = 110;
    resume.id = "resume:" + std::to_string(app.pgid);
  }
}

void diagnostics(View& into, FaceContext& ctx) {
  if (ctx.model.insights.empty()) return;
  auto& card = into.make<Card>(ctx.theme);
  card.id = "diagnostics";
  heading(card, ctx.theme, L("insight.title"));
  for (const auto& insight : ctx.model.insights) {
    text(card, ctx.theme, insight.message, ctx.theme.bodySize, ctx.theme.text, FontWeight::regular,
         Label::Overflow::wrap);
    auto& line = card.make<HStack>(8);
    std::string note = insight.reclaimBytes ? L("insight.reclaim", Format::byteString(*insight.reclaimBytes))
                                            : std::string();
    text(line, ctx.theme, std::move(note), ctx.theme.captionSize, ctx.theme.secondaryText);
    if (ctx.actions.isKillable(insight.pid, insight.processName)) {
      auto& end = line.make<Button>(
          ctx.theme, L("proc.detail.terminate"),
          [&ctx, pid = insight.pid, name = insight.processName] { requestKill(ctx, pid, name); },
          Button::Role::destructive);
      end.fixedWidth = 130;
      end.id = "insightKill:" + std::to_string(insight.pid);
    }
  }
}

std::string selfUsage(const PanelModel& model) {
  const std::string cpu =
      model.selfCpuPercent ? L("panel.percent", *model.selfCpuPercent) : PanelText::noValue();
  return L("panel.selfUsage", cpu, PanelText::bytes(model.selfMemoryBytes));
}

void requestKill(FaceContext& ctx, std::int32_t pid, const std::string& name) {
  const auto& list = ctx.model.killWhitelist;
  if (std::find(list.begin(), list.end(), name) != list.end()) {
    ctx.actions.terminate(pid, name);
    ctx.state.expandedPid.reset();
  } else {
    ctx.state.pendingKill = PanelState::PendingProcess{pid, name};
  }
  ctx.changed();
}

void dialogs(View& face, FaceContext& ctx) {
  using Choice = ConfirmDialog::Choice;
  const auto close = [&ctx] { ctx.changed(); };
  if (const auto pending = ctx.state.pendingPause) {
    std::vector<Choice> choices{
        {L("proc.pause.action"), Button::Role::prominent,
         [&ctx, pending] {
           ctx.state.pendingPause.reset();
           ctx.actions.pause(pending->pid, pending->name);
         }},
        {L("proc.kill.cancel"), Button::Role::normal, [&ctx] { ctx.state.pendingPause.reset(); }, true},
    };
    auto& dialog = face.make<ConfirmDialog>(
        ctx.theme, L("proc.pause.title"), L("proc.pause.message", pending->name), std::move(choices), close);
    dialog.frame = {0, 0, face.frame.width, face.frame.height};
  } else if (const auto kill = ctx.state.pendingKill) {
    const auto perform = [&ctx, kill] {
      ctx.state.pendingKill.reset();
      ctx.state.expandedPid.reset();
      ctx.actions.terminate(kill->pid, kill->name);
    };
    std::vector<Choice> choices{
        {L("proc.kill.action"), Button::Role::destructive, perform},
        {L("proc.kill.always"), Button::Role::destructive,
         [&ctx, kill, perform] {
           ctx.actions.addPreauthorized(kill->name);
           perform();
         }},
        {L("proc.kill.cancel"), Button::Role::normal, [&ctx] { ctx.state.pendingKill.reset(); }, true},
    };
    auto& dialog = face.make<ConfirmDialog>(ctx.theme, L("proc.kill.confirmTitle"),
                                            L("proc.kill.message", kill->name), std::move(choices), close);
    dialog.frame = {0, 0, face.frame.width, face.frame.height};
  }
}

}  // namespace FaceParts
}  // namespace quillmark
