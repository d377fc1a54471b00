#include "views/controls.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "views/symbols.h"

namespace quillmark {

Color Control::fillColor() const {
  if (pressed) return theme_.controlPressed;
  if (hovered) return theme_.controlHover;
  return theme_.controlFill;
}

bool Control::onKey(const ViewKeyEvent& event) {
  if (event.key != Key::space) return false;
  onClick({frame.width / 2, frame.height / 2});
  return true;
}

Button::Button(const Theme& theme, std::string title, std::function<void()> action, Role role)
    : Control(theme), action_(std::move(action)), role_(role) {
  Color color = role == Role::destructive ? theme.destructive : theme.text;
  title_ = &make<Label>(std::move(title),
                        TextStyle{{theme.bodySize, FontWeight::medium, false}, color, TextAlign::center});
}

double Button::heightFor(TextMeasurer&, double) { return fixedHeight > 0 ? fixedHeight : 26; }

void Button::layout(TextMeasurer&) { title_->frame = Rect{0, 0, frame.width, frame.height}.inset(8, 3); }

void Button::paint(Canvas& canvas) {
  Color fill = fillColor();
  if (role_ == Role::prominent) fill = theme_.accent.withAlpha(pressed ? 0.55 : hovered ? 0.75 : 0.65);
  canvas.fill(Path().addRoundedRect({0, 0, frame.width, frame.height}, theme_.corner * 0.7), fill);
}

void Button::onClick(Point) { action_(); }

IconButton::IconButton(const Theme& theme, Glyph glyph, std::function<void()> action)
    : Control(theme), glyph_(glyph), action_(std::move(action)) {
  fixedWidth = 24;
  fixedHeight = 24;
}

void IconButton::paint(Canvas& canvas) {
  const Rect box{0, 0, frame.width, frame.height};
  if (hovered || pressed) canvas.fill(Path().addRoundedRect(box, 6), fillColor());
  const Point c{box.midX(), box.midY()};
  const Color ink = theme_.secondaryText;
  Path p;
  switch (glyph_) {
    case Glyph::gear:
      drawSymbol(canvas, Symbol::gear, {c.x - 8, c.y - 8, 16, 16}, ink, theme_.accent);
      return;
    case Glyph::back:
      p.moveTo({c.x + 3, c.y - 6}).lineTo({c.x - 3, c.y}).lineTo({c.x + 3, c.y + 6});
      break;
    case Glyph::chevronDown:
      p.moveTo({c.x - 5, c.y - 2}).lineTo({c.x, c.y + 3}).lineTo({c.x + 5, c.y - 2});
      break;
    case Glyph::chevronUp:
      p.moveTo({c.x - 5, c.y + 2}).lineTo({c.x, c.y - 3}).lineTo({c.x + 5, c.y + 2});
      break;
    case Glyph::close:
      p.moveTo({c.x - 4, c.y - 4})
          .lineTo({c.x + 4, c.y + 4})
          .moveTo({c.x + 4, c.y - 4})
          .lineTo({c.x - 4, c.y + 4});
      break;
    case Glyph::search:
      canvas.stroke(Path().addEllipse({c.x - 5, c.y - 5, 8, 8}), ink, 1.6);
      p.moveTo({c.x + 2, c.y + 2}).lineTo({c.x + 6, c.y + 6});
      break;
    case Glyph::pin:
    case Glyph::pinned: {
      Path head;
      head.addEllipse({c.x - 4, c.y - 7, 8, 8});
      if (glyph_ == Glyph::pinned)
        canvas.fill(head, theme_.accent);
      else
        canvas.stroke(head, ink, 1.5);
      p.moveTo({c.x, c.y + 1}).lineTo({c.x, c.y + 7});
      break;
    }
  }
  canvas.stroke(p, glyph_ == Glyph::pinned ? theme_.accent : ink, 1.8);
}

Toggle::Toggle(const Theme& theme, bool on, std::function<void(bool)> changed)
    : Control(theme), on_(on), changed_(std::move(changed)) {
  fixedWidth = 40;
  fixedHeight = 22;
}

void Toggle::paint(Canvas& canvas) {
  const Rect track{frame.width - 36, (frame.height - 20) / 2, 36, 20};
  canvas.fill(Path().addRoundedRect(track, 10), on_ ? theme_.accent : fillColor());
  const double knobX = on_ ? track.maxX() - 18 : track.x + 2;
  canvas.fill(Path().addEllipse({knobX, track.y + 2, 16, 16}), Color::rgb(0xffffff));
}

void Toggle::onClick(Point) {
  on_ = !on_;
  setNeedsRedraw();
  changed_(on_);
}

SegmentedPicker::SegmentedPicker(const Theme& theme, std::vector<std::string> items, int selected,
                                 std::function<void(int)> chosen, int columns)
    : Control(theme), selected_(selected), columns_(columns), chosen_(std::move(chosen)) {
  for (auto& item : items) {
    labels_.push_back(&make<Label>(
        std::move(item),
        TextStyle{{theme.captionSize + 0.5, FontWeight::medium, false}, theme.text, TextAlign::center}));
  }
}

int SegmentedPicker::columns() const {
  const int count = std::max(1, static_cast<int>(labels_.size()));
  return columns_ > 0 ? std::min(columns_, count) : count;
}

double SegmentedPicker::heightFor(TextMeasurer&, double) {
  const int rows = (static_cast<int>(labels_.size()) + columns() - 1) / columns();
  return (fixedHeight > 0 ? fixedHeight : 24) * std::max(1, rows);
}

Rect SegmentedPicker::segment(int index) const {
  const int rows = std::max(1, (static_cast<int>(labels_.size()) + columns() - 1) / columns());
  const double w = frame.width / columns();
  const double h = frame.height / rows;
  return {(index % columns()) * w, (index / columns()) * h, w, h};
}

void SegmentedPicker::layout(TextMeasurer&) {
  for (std::size_t i = 0; i < labels_.size(); ++i)
    labels_[i]->frame = segment(static_cast<int>(i)).inset(4, 2);
}

void SegmentedPicker::paint(Canvas& canvas) {
  canvas.fill(Path().addRoundedRect({0, 0, frame.width, frame.height}, theme_.corner * 0.7),
              theme_.controlFill);
  if (selected_ >= 0 && selected_ < static_cast<int>(labels_.size())) {
    canvas.fill(Path().addRoundedRect(segment(selected_).inset(2, 2), theme_.corner * 0.55),
                theme_.accent.withAlpha(0.45));
  }
}

void SegmentedPicker::onClick(Point p) {
  int index = -1;
  for (int i = 0; i < static_cast<int>(labels_.size()); ++i) {
    if (segment(i).contains(p)) index = i;
  }
  choose(index);
}

void SegmentedPicker::choose(int index) {
  if (index < 0 || index >= static_cast<int>(labels_.size()) || index == selected_) return;
  selected_ = index;
  setNeedsRedraw();
  chosen_(index);
}

bool SegmentedPicker::onKey(const ViewKeyEvent& event) {
  if (event.key == Key::left) choose(selected_ - 1);
  if (event.key == Key::right) choose(selected_ + 1);
  return event.key == Key::left || event.key == Key::right || event.key == Key::space;
}

Slider::Slider(const Theme& theme, double value, double min, double max, double step,
               std::function<void(double)> changed)
    : Control(theme), value_(value), min_(min), max_(max), step_(step), changed_(std::move(changed)) {
  fixedHeight = 22;
}

void Slider::paint(Canvas& canvas) {
  const double y = frame.height / 2;
  const double f = max_ > min_ ? std::clamp((value_ - min_) / (max_ - min_), 0.0, 1.0) : 0;
  const double x = 8 + f * (frame.width - 16);
  canvas.fill(Path().addRoundedRect({8, y - 2, frame.width - 16, 4}, 2), theme_.track);
  canvas.fill(Path().addRoundedRect({8, y - 2, x - 8, 4}, 2), theme_.accent);
  canvas.fill(Path().addEllipse({x - 8, y - 8, 16, 16}), Color::rgb(0xffffff, pressed ? 0.8 : 1));
}

void Slider::onPointer(const ViewPointerEvent& event) {
  if (event.kind != ViewPointerEvent::Kind::down && !(event.kind == ViewPointerEvent::Kind::move && pressed))
    return;
  const double f = std::clamp((event.location.x - 8) / std::max(1.0, frame.width - 16), 0.0, 1.0);
  setValue(min_ + f * (max_ - min_));
}

void Slider::setValue(double v) {
  if (step_ > 0) v = min_ + std::round((v - min_) / step_) * step_;
  v = std::clamp(v, min_, max_);
  if (v == value_) return;
  value_ = v;
  setNeedsRedraw();
  changed_(v);
}

bool Slider::onKey(const ViewKeyEvent& event) {
  const double step = step_ > 0 ? step_ : (max_ - min_) / 20;
  if (event.key == Key::left) setValue(value_ - step);
  if (event.key == Key::right) setValue(value_ + step);
  return event.key == Key::left || event.key == Key::right || event.key == Key::space;
}

Stepper::Stepper(const Theme& theme, double value, double min, double max, double step,
                 std::function<std::string(double)> text, std::function<void(double)> changed)
    : HStack(4) {
  fixedHeight = 24;
  auto minus = std::make_unique<Button>(theme, "\u2212", [=] { changed(std::max(min, value - step)); });
  minus->fixedWidth = 26;
  minus->enabled = value > min;
  minus->id = "minus";
  add(std::move(minus));
  auto& shown = make<Label>(
      text(value), TextStyle{{theme.bodySize, FontWeight::medium, true}, theme.text, TextAlign::center});
  shown.fixedWidth = 64;
  auto plus = std::make_unique<Button>(theme, "+", [=] { changed(std::min(max, value + step)); });
  plus->fixedWidth = 26;
  plus->enabled = value < max;
  plus->id = "plus";
  add(std::move(plus));
}

}  // namespace quillmark
