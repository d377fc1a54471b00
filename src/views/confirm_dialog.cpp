#include "views/confirm_dialog.h"

namespace quillmark {
namespace {

constexpr double kCardWidth = 300;
constexpr double kPadding = 16;
constexpr double kGap = 8;

}  // namespace

ConfirmDialog::ConfirmDialog(const Theme& theme, std::string title, std::string message,
                             std::vector<Choice> choices, std::function<void()> dismiss)
    : Control(theme), choices_(std::move(choices)), dismiss_(std::move(dismiss)) {
  id = "dialog";
  title_ = &make<Label>(std::move(title),
                        TextStyle{{theme.bodySize + 2, FontWeight::bold}, theme.text, TextAlign::center},
                        Label::Overflow::wrap);
  message_ =
      &make<Label>(std::move(message), TextStyle{{theme.bodySize}, theme.secondaryText, TextAlign::center},
                   Label::Overflow::wrap);
  for (std::size_t i = 0; i < choices_.size(); ++i) {
    Button& b = make<Button>(
        theme, choices_[i].title, [this, i] { choose(i); }, choices_[i].role);
    b.id = "choice" + std::to_string(i);
    buttons_.push_back(&b);
  }
}

void ConfirmDialog::choose(std::size_t index) {
  // The callbacks may destroy this dialog: copy what is needed first.
  const auto action = choices_[index].action;
  const auto dismiss = dismiss_;
  if (action) action();
  dismiss();
}

bool ConfirmDialog::onKey(const ViewKeyEvent& event) {
  if (event.key == Key::enter && !choices_.empty()) {
    choose(0);
    return true;
  }
  if (event.key != Key::escape) return true;  // modal: keys go nowhere else
  for (std::size_t i = 0; i < choices_.size(); ++i) {
    if (choices_[i].isCancel) {
      choose(i);
      return true;
    }
  }
  return true;
}

void ConfirmDialog::layout(TextMeasurer& measurer) {
  const double inner = kCardWidth - 2 * kPadding;
  double h = kPadding;
  const double titleH = title_->heightFor(measurer, inner);
  title_->frame = {kPadding, h, inner, titleH};
  h += titleH + kGap;
  const double messageH = message_->heightFor(measurer, inner);
  message_->frame = {kPadding, h, inner, messageH};
  h += messageH + kGap * 1.5;
  for (Button* b : buttons_) {
    b->frame = {kPadding, h, inner, 28};
    h += 28 + 6;
  }
  h += kPadding - 6;
  card_ = {(frame.width - kCardWidth) / 2, (frame.height - h) / 2, kCardWidth, h};
  for (auto& child : children()) child->frame = child->frame.offset(card_.x, card_.y);
}

void ConfirmDialog::paint(Canvas& canvas) {
  canvas.fill(Path().addRect({0, 0, frame.width, frame.height}), Color::rgb(0x000000, 0.45));
  const Path card = Path().addRoundedRect(card_, 14);
  canvas.fill(card, Color::rgb(0x262c36, 0.98));
  canvas.stroke(card, Color::rgb(0xffffff, 0.15), 1);
}

}  // namespace quillmark
