#include "views/text_field.h"

#include <algorithm>

namespace quillmark {
namespace {

constexpr double kTextInset = 26;  // room for the magnifier glyph

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

TextField::TextField(const Theme& theme, std::string placeholder,
                     std::function<void(const std::string&)> changed)
    : Control(theme), placeholder_(std::move(placeholder)), changed_(std::move(changed)) {
  fixedHeight = 26;
}

TextStyle TextField::textStyle() const { return TextStyle{{theme_.bodySize}, theme_.text}; }

std::size_t TextField::previous(std::size_t at) const {
  if (at == 0) return 0;
  --at;
  while (at > 0 && isContinuation(text_[at])) --at;
  return at;
}

std::size_t TextField::next(std::size_t at) const {
  if (at >= text_.size()) return text_.size();
  ++at;
  while (at < text_.size() && isContinuation(text_[at])) ++at;
  return at;
}

std::string TextField::selectedText() const {
  const auto [lo, hi] = std::minmax(cursor_, anchor_);
  return text_.substr(lo, hi - lo);
}

void TextField::setText(std::string text) {
  text_ = std::move(text);
  cursor_ = anchor_ = text_.size();
  composing_.clear();
  setNeedsRedraw();
}

Rect TextField::caretRect() const {
  const std::string before = text_.substr(0, cursor_) + composing_;
  const double x = kTextInset + (measurer_ ? measurer_->measure(before, textStyle()).width : 0);
  return {x, 4, 1, frame.height - 8};
}

void TextField::restore(const Editing& editing) {
  const auto boundary = [this](std::size_t at) {
    at = std::min(at, text_.size());
    while (at > 0 && at < text_.size() && isContinuation(text_[at])) --at;
    return at;
  };
  cursor_ = boundary(editing.cursor);
  anchor_ = boundary(editing.anchor);
  composing_ = editing.composing;
}

void TextField::replaceSelection(std::string_view with) {
  const auto [lo, hi] = std::minmax(cursor_, anchor_);
  text_.replace(lo, hi - lo, with);
  cursor_ = anchor_ = lo + with.size();
  setNeedsRedraw();
  changed_(text_);
}

void TextField::moveTo(std::size_t position, bool extend) {
  cursor_ = position;
  if (!extend) anchor_ = position;
  setNeedsRedraw();
}

bool TextField::onKey(const ViewKeyEvent& event) {
  const bool hasSelection = cursor_ != anchor_;
  switch (event.key) {
    case Key::left:
      moveTo(hasSelection && !event.shift ? std::min(cursor_, anchor_) : previous(cursor_), event.shift);
      return true;
    case Key::right:
      moveTo(hasSelection && !event.shift ? std::max(cursor_, anchor_) : next(cursor_), event.shift);
      return true;
    case Key::home:
    case Key::up:
      moveTo(0, event.shift);
      return true;
    case Key::end:
    case Key::down:
      moveTo(text_.size(), event.shift);
      return true;
    case Key::backspace:
      if (!hasSelection) anchor_ = previous(cursor_);
      if (cursor_ != anchor_) replaceSelection("");
      return true;
    case Key::deleteForward:
      if (!hasSelection) anchor_ = next(cursor_);
      if (cursor_ != anchor_) replaceSelection("");
      return true;
    case Key::selectAll:
      anchor_ = 0;
      moveTo(text_.size(), true);
      return true;
    case Key::copy:
    case Key::cut:
      if (!hasSelection) return true;
      if (copied) copied(selectedText());
      if (event.key == Key::cut) replaceSelection("");
      return true;
    case Key::paste: {
      std::string line = event.pasteText;
      std::replace(line.begin(), line.end(), '\n', ' ');  // one line only
      replaceSelection(line);
      return true;
    }
    case Key::escape:
      if (text_.empty()) return false;  // let the panel close
      anchor_ = 0;
      cursor_ = text_.size();
      replaceSelection("");
      return true;
    case Key::space:  // a shell that sends Space as a key while the field is focused
      replaceSelection(" ");
      return true;
    case Key::enter:
    case Key::tab:
      return false;
  }
  return false;
}

bool TextField::onText(const ViewTextEvent& event) {
  if (event.composing) {
    composing_ = event.text;
    setNeedsRedraw();
    return true;
  }
  composing_.clear();
  replaceSelection(event.text);
  return true;
}

void TextField::layout(TextMeasurer& measurer) { measurer_ = &measurer; }

void TextField::onClick(Point p) {
  if (!measurer_) return moveTo(text_.size(), false);
  // The boundary nearest the click.
  std::size_t best = 0;
  double bestDistance = 1e9;
  for (std::size_t at = 0;; at = next(at)) {
    const double x =
        kTextInset + measurer_->measure(std::string_view(text_).substr(0, at), textStyle()).width;
    if (std::abs(x - p.x) < bestDistance) {
      bestDistance = std::abs(x - p.x);
      best = at;
    }
    if (at >= text_.size()) break;
  }
  moveTo(best, false);
}

void TextField::paint(Canvas& canvas) {
  const Rect box{0, 0, frame.width, frame.height};
  canvas.fill(Path().addRoundedRect(box, theme_.corner * 0.7),
              focused ? theme_.controlHover : theme_.controlFill);
  if (focused)
    canvas.stroke(Path().addRoundedRect(box.inset(0.5, 0.5), theme_.corner * 0.7),
                  theme_.accent.withAlpha(0.7), 1);
  canvas.stroke(Path().addEllipse({9, frame.height / 2 - 5, 8, 8}), theme_.secondaryText, 1.4);
  canvas.stroke(Path().moveTo({15.5, frame.height / 2 + 1.5}).lineTo({19, frame.height / 2 + 5}),
                theme_.secondaryText, 1.4);

  const TextStyle style = textStyle();
  const Rect textBox{kTextInset, 0, frame.width - kTextInset - 6, frame.height};
  canvas.save();
  canvas.clip(Path().addRect(textBox));
  if (text_.empty() && composing_.empty()) {
    TextStyle hint = style;
    hint.color = theme_.secondaryText;
    hint.ellipsize = true;
    const double h = canvas.measure(placeholder_, hint).height;
    canvas.drawText(placeholder_, hint, {textBox.x, (frame.height - h) / 2, textBox.width, h});
    if (focused) {
      const double top = (frame.height - h) / 2;
      canvas.stroke(Path().moveTo({textBox.x, top + 1}).lineTo({textBox.x, top + h - 1}), theme_.accent, 1.2);
    }
  } else {
    const std::string shown = text_.substr(0, cursor_) + composing_ + text_.substr(cursor_);
    const double h = canvas.measure(shown, style).height;
    const double top = (frame.height - h) / 2;
    const auto xAt = [&](std::size_t bytes) {
      return textBox.x + canvas.measure(std::string_view(shown).substr(0, bytes), style).width;
    };
    if (cursor_ != anchor_) {
      const auto [lo, hi] = std::minmax(cursor_, anchor_);
      canvas.fill(Path().addRect({xAt(lo), top, xAt(hi) - xAt(lo), h}), theme_.accent.withAlpha(0.4));
    }
    canvas.drawText(shown, style, {textBox.x, top, 1e4, h});
    if (!composing_.empty()) {
      canvas.stroke(
          Path().moveTo({xAt(cursor_), top + h}).lineTo({xAt(cursor_ + composing_.size()), top + h}),
          style.color, 1);
    }
    if (focused) {
      const double x = xAt(cursor_ + composing_.size());
      canvas.stroke(Path().moveTo({x, top + 1}).lineTo({x, top + h - 1}), theme_.accent, 1.2);
    }
  }
  canvas.restore();
}

}  // namespace quillmark
