#pragma once

#include <functional>
#include <string>
#include <vector>

#include "views/label.h"
#include "views/theme.h"

namespace quillmark {

// The interactive controls of the panel. Each draws its hover and pressed state, calls its
// callback on a completed click (press and release inside it) and never touches anything else.

// A view the pointer can click: the root calls onClick when a press is released inside it.
class Control : public View {
 public:
  explicit Control(const Theme& theme) : theme_(theme) {}
  [[nodiscard]] bool takesPointer() const override { return enabled; }
  [[nodiscard]] bool focusable() const override { return enabled; }
  [[nodiscard]] bool focusOnClick() const override { return false; }
  // Space presses the focused control as a click at its centre would.
  bool onKey(const ViewKeyEvent& event) override;
  virtual void onClick(Point) {}
  bool enabled = true;

 protected:
  [[nodiscard]] Color fillColor() const;
  const Theme& theme_;
};

// A titled button; the title shrinks to fit.
class Button : public Control {
 public:
  enum class Role { normal, prominent, destructive };
  Button(const Theme& theme, std::string title, std::function<void()> action, Role role = Role::normal);
  double heightFor(TextMeasurer& measurer, double width) override;
  void layout(TextMeasurer& measurer) override;
  void paint(Canvas& canvas) override;
  void onClick(Point) override;
  [[nodiscard]] const std::string& title() const { return title_->text; }

 private:
  Label* title_;
  std::function<void()> action_;
  Role role_;
};

// A small square button with a drawn glyph.
class IconButton : public Control {
 public:
  enum class Glyph { gear, back, pin, pinned, close, search, chevronDown, chevronUp };
  IconButton(const Theme& theme, Glyph glyph, std::function<void()> action);
  void paint(Canvas& canvas) override;
  void onClick(Point) override { action_(); }

 private:
  Glyph glyph_;
  std::function<void()> action_;
};

// An on/off switch, 36 x 20 points, drawn at the trailing edge of its frame.
class Toggle : public Control {
 public:
  Toggle(const Theme& theme, bool on, std::function<void(bool)> changed);
  void paint(Canvas& canvas) override;
  void onClick(Point) override;
  [[nodiscard]] bool isOn() const { return on_; }

 private:
  bool on_;
  std::function<void(bool)> changed_;
};

// One choice among labelled segments of equal width, in rows of `columns` (all in one row when 0).
class SegmentedPicker : public Control {
 public:
  SegmentedPicker(const Theme& theme, std::vector<std::string> items, int selected,
                  std::function<void(int)> chosen, int columns = 0);
  double heightFor(TextMeasurer& measurer, double width) override;
  void layout(TextMeasurer& measurer) override;
  void paint(Canvas& canvas) override;
  void onClick(Point p) override;
  // Left and right choose the neighbouring segment; Space changes nothing.
  bool onKey(const ViewKeyEvent& event) override;
  [[nodiscard]] int selected() const { return selected_; }
  // The segment's rectangle in this view's coordinates.
  [[nodiscard]] Rect segment(int index) const;

 private:
  [[nodiscard]] int columns() const;
  void choose(int index);
  std::vector<Label*> labels_;
  int selected_;
  int columns_;
  std::function<void(int)> chosen_;
};

// A value between min and max in steps, dragged along a track.
class Slider : public Control {
 public:
  Slider(const Theme& theme, double value, double min, double max, double step,
         std::function<void(double)> changed);
  void paint(Canvas& canvas) override;
  void onPointer(const ViewPointerEvent& event) override;
  // Left and right move by one step.
  bool onKey(const ViewKeyEvent& event) override;
  [[nodiscard]] double value() const { return value_; }

 private:
  void setValue(double v);
  double value_, min_, max_, step_;
  std::function<void(double)> changed_;
};

// A value shown between "−" and "+" buttons that move it by step within [min, max].
class Stepper : public HStack {
 public:
  Stepper(const Theme& theme, double value, double min, double max, double step,
          std::function<std::string(double)> text, std::function<void(double)> changed);
};

}  // namespace quillmark
