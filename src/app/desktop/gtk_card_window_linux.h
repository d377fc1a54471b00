#pragma once

#include <functional>

#include "menubar/hosted_content.h"

typedef struct _GtkWidget GtkWidget;
typedef struct _GtkIMContext GtkIMContext;

namespace quillmark {

// A borderless card window on GTK 3 that hosts a HostedContent: it paints the content through the
// Cairo canvas at the monitor's scale factor (so text and lines are sharp on HiDPI screens), turns
// GDK's mouse, scroll and key events into the content's plain values, and routes typing through
// an input method (GtkIMContext) while a text field has focus, so composed input (Japanese,
// Chinese, dead keys) arrives as marked and committed text. Where the screen has no compositor
// the window is shaped to the card's outline, so its rounded corners and arrow show no black.
//
// On a Wayland display whose compositor has layer-shell the window is a layer surface instead of
// a toplevel, since only those can be put at a given spot there.
//
// `takesFocus` makes a panel that becomes the focused window and reports losing it; otherwise a
// card that appears in front without taking the keyboard (the first-run tip). Main thread only;
// content must outlive the window.
class GtkCardWindow {
 public:
  GtkCardWindow(HostedContent& content, bool takesFocus);
  ~GtkCardWindow();
  GtkCardWindow(const GtkCardWindow&) = delete;
  GtkCardWindow& operator=(const GtkCardWindow&) = delete;

  // Top-left corner in GDK's root coordinates (logical pixels, y down).
  void moveTo(int x, int y);
  // Shows the window in front; a focus-taking one also becomes the focused window.
  void present();
  void hide();
  [[nodiscard]] bool isVisible() const;
  // The content's outline changed (the arrow moved): reshape a window without a compositor.
  void outlineChanged();
  // Draws again soon, and keeps drawing every frame while the content says it moves (it reads
  // its own clock when painted).
  void repaint();

  // The window lost the keyboard focus to another window (not called while hidden).
  std::function<void()> onFocusLost;
  // Escape that the content did not use.
  std::function<void()> onUnusedEscape;

  struct Events;  // the GTK signal handlers

 private:
  void updateShape();
  void placeInputMethodCursor();
  void startTicking();

  HostedContent& content_;
  bool takesFocus_;
  bool layer_ = false;  // a layer-shell surface (native Wayland), placed by margins
  GtkWidget* window_ = nullptr;
  GtkIMContext* im_ = nullptr;
  unsigned tickId_ = 0;
  bool pointerDown_ = false;
  bool hadFocus_ = false;
};

}  // namespace quillmark
