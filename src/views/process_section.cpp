#include "views/process_section.h"

#include <algorithm>
#include <ctime>

#include "settings/format.h"
#include "settings/l10n.h"
#include "views/face_parts.h"
#include "views/graphs.h"
#include "views/panel_text.h"
#include "views/process_rows.h"
#include "views/text_field.h"

namespace quillmark {
namespace {

// Named after the platform's file manager: the Finder, or the desktop's "Files".
#ifdef __APPLE__
constexpr const char* kRevealKey = "proc.detail.revealInFinder";
#else
constexpr const char* kRevealKey = "proc.detail.revealInFiles";
#endif

using FaceParts::text;

// A row's application icon, or, without one, a monogram: the name's first letter on a tile whose
// colour the name picks, so rows stay told apart at a glance.
class ProcessIconView final : public View {
 public:
  ProcessIconView(std::shared_ptr<const Image> image, const std::string& name)
      : image_(std::move(image)), initial_(initialOf(name)), tint_(tintOf(name)) {}
  void paint(Canvas& canvas) override {
    const Rect box{0, 0, frame.width, frame.height};
    if (image_) {
      canvas.drawImage(*image_, box);
      return;
    }
    canvas.fill(Path().addRoundedRect(box, 4), tint_);
    const TextStyle style{{frame.height * 0.62, FontWeight::bold}, Color::rgb(0xffffff), TextAlign::center};
    const Size size = canvas.measure(initial_, style);
    canvas.drawText(initial_, style, {0, (frame.height - size.height) / 2, frame.width, size.height});
  }
  [[nodiscard]] bool hasImage() const { return image_ != nullptr; }

 private:
  // The first character (a whole UTF-8 sequence), upper-cased when it is a Latin letter.
  static std::string initialOf(const std::string& name) {
    if (name.empty()) return "?";
    std::size_t length = 1;
    while (length < name.size() && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) ++length;
    std::string initial = name.substr(0, length);
    if (initial[0] >= 'a' && initial[0] <= 'z') initial[0] = static_cast<char>(initial[0] - 'a' + 'A');
    return initial;
  }
  static Color tintOf(const std::string& name) {
    static constexpr std::uint32_t kTints[] = {0x5b7fd6, 0x4fa57a, 0xc07a3a, 0x9a62c4, 0xc0545f, 0x3f9aae};
    std::uint32_t hash = 2166136261u;  // FNV-1a: stable across runs and platforms
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return Color::rgb(kTints[hash % std::size(kTints)], 0.9);
  }

  std::shared_ptr<const Image> image_;
  std::string initial_;
  Color tint_;
};

// One ranked row; clicking it expands or collapses its details.
class ProcessRowView : public Control {
 public:
  ProcessRowView(FaceContext& ctx, const ProcessRow& row)
      : Control(ctx.theme), ctx_(ctx), pid_(row.proc.pid) {
    fixedHeight = 30;
    id = "row:" + std::to_string(row.proc.pid);
    const Theme& t = ctx.theme;
    rank_ = &make<Label>(std::to_string(row.rank),
                         TextStyle{{t.captionSize, FontWeight::regular, true}, t.secondaryText});
    icon_ = &make<ProcessIconView>(ctx.actions.processIcon(row.proc.pid, row.proc.startTime, row.proc.name),
                                   row.proc.name);
    icon_->id = "icon";
    std::string name = row.proc.name;
    name_ = &make<Label>(std::move(name),
                         TextStyle{{t.bodySize, row.pinned ? FontWeight::bold : FontWeight::regular},
                                   row.paused ? t.warning : t.text},
                         Label::Overflow::ellipsize);
    name_->id = "name";
    value_ = &make<Label>(valueText(row),
                          TextStyle{{t.bodySize, FontWeight::medium, true}, t.text, TextAlign::trailing});
    bar_ = &make<Bar>(row.barFraction, barColor(ctx, row), t.track, 3);
    bar_->id = "bar";
  }
  void layout(TextMeasurer&) override {
    rank_->frame = {2, 2, 20, 18};
    icon_->frame = {24, 3, 16, 16};
    value_->frame = {frame.width - 92, 2, 86, 18};
    name_->frame = {46, 2, frame.width - 46 - 96, 18};
    bar_->frame = {24, 23, frame.width - 30, 3};
  }
  void paint(Canvas& canvas) override {
    if (hovered || pressed || ctx_.state.expandedPid == pid_)
      canvas.fill(Path().addRoundedRect({0, 0, frame.width, frame.height}, 6), fillColor());
  }
  void onClick(Point) override {
    if (ctx_.state.expandedPid == pid_) {
      ctx_.state.expandedPid.reset();
    } else {
      ctx_.state.expandedPid = pid_;
      ctx_.state.expand.value = 0;
      ctx_.actions.expand(pid_);
    }
    ctx_.state.expand.target = ctx_.state.expandedPid ? 1 : 0;
    ctx_.changed();
  }

 private:
  std::string valueText(const ProcessRow& row) const {
    switch (ctx_.state.sortMode) {
      case PanelModel::SortMode::memory:
        return Format::byteString(row.proc.memoryBytes);
      case PanelModel::SortMode::energy:
        return L("panel.energy", row.proc.cpuPercent);
      case PanelModel::SortMode::cpu:
        break;
    }
    return L("panel.percentPrecise", row.proc.cpuPercent);
  }
  static Color barColor(const FaceContext& ctx, const ProcessRow& row) {
    switch (ctx.state.sortMode) {
      case PanelModel::SortMode::memory:
        return ctx.theme.memory;
      case PanelModel::SortMode::energy:
        return ctx.theme.power;
      case PanelModel::SortMode::cpu:
        break;
    }
    return row.paused ? ctx.theme.warning : ctx.theme.cpu;
  }

  FaceContext& ctx_;
  std::int32_t pid_;
  Label* rank_;
  ProcessIconView* icon_;
  Label* name_;
  Label* value_;
  Bar* bar_;
};

// The expanded row's details, opened and closed by the state's spring.
class DetailView : public VStack {
 public:
  DetailView(FaceContext& ctx) : VStack(4, 6), ctx_(ctx) {
    id = "detail";
    clipsChildren = true;
  }
  double heightFor(TextMeasurer& measurer, double width) override {
    return VStack::heightFor(measurer, width) * std::clamp(ctx_.state.expand.value, 0.0, 1.0);
  }
  void layout(TextMeasurer& measurer) override {
    // Children keep their full layout; the clip shows as much as the spring has opened.
    const double full = VStack::heightFor(measurer, frame.width);
    const double shown = frame.height;
    frame.height = full;
    VStack::layout(measurer);
    frame.height = shown;
  }

 private:
  FaceContext& ctx_;
};

void addButton(HStack& line, FaceContext& ctx, std::string title, std::string id,
               std::function<void()> action, Button::Role role = Button::Role::normal) {
  auto& b = line.make<Button>(ctx.theme, std::move(title), std::move(action), role);
  b.id = std::move(id);
}

void buildDetail(View& into, FaceContext& ctx, const ProcessRow& row) {
  const Theme& t = ctx.theme;
  const auto& p = row.proc;
  auto& detail = into.make<DetailView>(ctx);
  const auto found = ctx.model.details.find(p.pid);
  const PanelModel::ProcessDetail info =
      found != ctx.model.details.end() ? found->second : PanelModel::ProcessDetail{};
  const auto optionalInt = [](auto v) { return v ? std::to_string(*v) : PanelText::noValue(); };
  FaceParts::row(detail, t, L("proc.detail.pid"), std::to_string(p.pid));
  FaceParts::row(detail, t, L("proc.detail.parent"), optionalInt(info.parentPid));
  FaceParts::row(detail, t, L("proc.detail.threads"), optionalInt(info.threads));
  FaceParts::row(detail, t, L("proc.detail.cpuTime"),
                 info.cpuTimeNanoseconds ? ProcessDetailReader::cpuTimeString(*info.cpuTimeNanoseconds)
                                         : PanelText::noValue());
  FaceParts::row(
      detail, t, L("proc.detail.startTime"),
      info.startUnixTime ? ProcessDetailReader::relativeTime(info.startUnixTime) : PanelText::noValue());
  FaceParts::row(detail, t, L("proc.detail.residentMemory"),
                 PanelText::bytes(info.residentBytes ? info.residentBytes : p.memoryBytes));
  FaceParts::row(detail, t, L("proc.detail.virtualMemory"), PanelText::bytes(info.virtualBytes));

  const bool pinned = std::find(ctx.model.pins.begin(), ctx.model.pins.end(), p.name) != ctx.model.pins.end();
  if (pinned) {
    const auto track = ctx.model.pinTracks.find(p.name);
    text(detail, t, L("proc.detail.pinnedTrend"), t.captionSize, t.secondaryText);
    detail
        .make<PinnedTrend>(track != ctx.model.pinTracks.end() ? track->second : std::vector<double>{}, t.cpu)
        .id = "trend";
  }

  auto& first = detail.make<HStack>(6);
  if (row.paused) {
    const std::int32_t pgid = ctx.model.pausedGroupOfPid.at(p.pid);
    addButton(first, ctx, L("proc.detail.resume"), "resume", [&ctx, pgid] { ctx.actions.resume(pgid); });
  } else if (ctx.actions.canPause(p.pid, p.name)) {
    addButton(first, ctx, L("proc.detail.pause"), "pause", [&ctx, pid = p.pid, name = p.name] {
      ctx.state.pendingPause = PanelState::PendingProcess{pid, name};
      ctx.changed();
    });
  }
  if (ctx.actions.isKillable(p.pid, p.name)) {
    addButton(
        first, ctx, L("proc.detail.terminate"), "terminate",
        [&ctx, pid = p.pid, name = p.name] { FaceParts::requestKill(ctx, pid, name); },
        Button::Role::destructive);
  } else {
    text(first, t, L("proc.detail.protected"), t.captionSize, t.secondaryText, FontWeight::regular,
         Label::Overflow::wrap);
  }
  auto& second = detail.make<HStack>(6);
  if (pinned || ctx.model.pins.size() < 3) {
    addButton(second, ctx, L(pinned ? "proc.detail.unpin" : "proc.detail.pin"), "pin",
              [&ctx, name = p.name] { ctx.actions.togglePin(name); });
  } else {
    text(second, t, L("proc.detail.pinFull"), t.captionSize, t.secondaryText);
  }
  if (info.path) {
    addButton(second, ctx, L(kRevealKey), "reveal", [&ctx, path = *info.path] { ctx.actions.reveal(path); });
  }
}

}  // namespace

void PinnedTrend::paint(Canvas& canvas) {
  if (values_.size() < 2) return;
  const double top = std::max(100.0, *std::max_element(values_.begin(), values_.end()));
  const double step = frame.width / static_cast<double>(values_.size() - 1);
  Path line;
  for (std::size_t i = 0; i < values_.size(); ++i) {
    const Point p{i * step, frame.height - 1 - std::clamp(values_[i] / top, 0.0, 1.0) * (frame.height - 2)};
    if (i == 0)
      line.moveTo(p);
    else
      line.lineTo(p);
  }
  canvas.stroke(line, color_, 1.5);
}

void buildProcessSection(View& into, FaceContext& ctx, int maxRows) {
  const Theme& t = ctx.theme;
  auto& top = into.make<HStack>(6);
  std::vector<std::string> sorts{L("proc.sort.cpu"), L("proc.sort.memory")};
  if (ctx.model.energyAvailable) {
    sorts.push_back(L("proc.sort.energy"));
  } else if (ctx.state.sortMode == PanelModel::SortMode::energy) {
    ctx.state.sortMode = PanelModel::SortMode::cpu;
  }
  auto& sort = top.make<SegmentedPicker>(
      t, std::move(sorts),
      static_cast<int>(ctx.state.sortMode), [&ctx](int index) {
        ctx.state.sortMode = static_cast<PanelModel::SortMode>(index);
        ctx.changed();
      });
  sort.id = "sort";
  auto& toggle = top.make<IconButton>(t, IconButton::Glyph::search, [&ctx] {
    ctx.state.showSearch = !ctx.state.showSearch;
    if (!ctx.state.showSearch) ctx.state.searchText.clear();
    ctx.changed();
  });
  toggle.id = "searchToggle";
  if (ctx.state.showSearch) {
    auto& field = into.make<TextField>(t, L("proc.search.placeholder"), [&ctx](const std::string& s) {
      ctx.state.searchText = s;
      ctx.changed();
    });
    field.id = "search";
    field.setText(ctx.state.searchText);
    field.copied = ctx.copy;
  }
  const auto rows = rankedProcessRows(ctx.model, ctx.state.sortMode, ctx.state.searchText, maxRows);
  if (rows.empty()) {
    text(into, t, L("proc.collecting"), t.bodySize, t.secondaryText, FontWeight::regular,
         Label::Overflow::wrap)
        .id = "collecting";
    return;
  }
  for (const auto& row : rows) {
    into.make<ProcessRowView>(ctx, row);
    if (ctx.state.expandedPid == row.proc.pid) buildDetail(into, ctx, row);
  }
}

}  // namespace quillmark
