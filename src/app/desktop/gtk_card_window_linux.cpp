#include "app/desktop/gtk_card_window_linux.h"

#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <gdk/gdkx.h>
#endif

#include <cmath>
#include <optional>
#include <string>

#include "app/desktop/gtk_layer_shell_linux.h"
#include "views/canvas_cairo.h"

namespace quillmark {
namespace {

// Points scrolled per wheel notch, and per unit of a touchpad's smooth delta.
constexpr double kWheelStep = 40;
constexpr double kTouchpadStep = 12;

KeyModifiers modifiersOf(guint state) {
  return {(state & GDK_SHIFT_MASK) != 0, (state & GDK_CONTROL_MASK) != 0, (state & GDK_MOD1_MASK) != 0,
          (state & GDK_SUPER_MASK) != 0};
}

std::optional<EditKey> editKeyOf(guint keyval, guint state) {
  switch (keyval) {
    case GDK_KEY_Escape:
      return EditKey::escape;
    case GDK_KEY_Return:
    case GDK_KEY_KP_Enter:
    case GDK_KEY_ISO_Enter:
      return EditKey::enter;
    case GDK_KEY_Tab:
    case GDK_KEY_KP_Tab:
      return (state & GDK_SHIFT_MASK) ? EditKey::backTab : EditKey::tab;
    case GDK_KEY_ISO_Left_Tab:
      return EditKey::backTab;
    case GDK_KEY_BackSpace:
      return EditKey::deleteBackward;
    case GDK_KEY_Delete:
    case GDK_KEY_KP_Delete:
      return EditKey::deleteForward;
    case GDK_KEY_Left:
    case GDK_KEY_KP_Left:
      return EditKey::left;
    case GDK_KEY_Right:
    case GDK_KEY_KP_Right:
      return EditKey::right;
    case GDK_KEY_Up:
    case GDK_KEY_KP_Up:
      return EditKey::up;
    case GDK_KEY_Down:
    case GDK_KEY_KP_Down:
      return EditKey::down;
    case GDK_KEY_Home:
    case GDK_KEY_KP_Home:
      return EditKey::home;
    case GDK_KEY_End:
    case GDK_KEY_KP_End:
      return EditKey::end;
    case GDK_KEY_a:
    case GDK_KEY_A:
      if (state & GDK_CONTROL_MASK) return EditKey::selectAll;
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace

// The signal handlers, with the window as user data.
struct GtkCardWindow::Events {
  static gboolean draw(GtkWidget* widget, cairo_t* cr, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    // GTK hands a context in logical pixels over a surface of the monitor's scale; the canvas
    // wants device pixels and the scale, so that it can keep hairlines and text sharp.
    const double scale = gtk_widget_get_scale_factor(widget);
    cairo_save(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cr);
    cairo_restore(cr);
    cairo_save(cr);
    cairo_scale(cr, 1 / scale, 1 / scale);
    {
      CairoCanvas canvas(cr, scale);
      self.content_.paint(canvas);
    }
    cairo_restore(cr);
    if (self.content_.wantsTextInput()) self.placeInputMethodCursor();
    return TRUE;
  }

  static gboolean button(GtkWidget*, GdkEventButton* event, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    // GTK repeats a double click as its own event after the second press; the count is enough.
    if (event->type != GDK_BUTTON_PRESS && event->type != GDK_BUTTON_RELEASE) return TRUE;
    if (event->button != GDK_BUTTON_PRIMARY && event->button != GDK_BUTTON_SECONDARY) return TRUE;
    PointerEvent p;
    p.kind = event->type == GDK_BUTTON_PRESS ? PointerEvent::Kind::down : PointerEvent::Kind::up;
    p.x = event->x;
    p.y = event->y;
    p.secondary = event->button == GDK_BUTTON_SECONDARY;
    p.modifiers = modifiersOf(event->state);
    guint clicks = 1;
    gdk_event_get_click_count(reinterpret_cast<GdkEvent*>(event), &clicks);
    p.clickCount = static_cast<int>(clicks);
    if (!p.secondary) self.pointerDown_ = p.kind == PointerEvent::Kind::down;
    self.content_.pointer(p);
    return TRUE;
  }

  static gboolean motion(GtkWidget*, GdkEventMotion* event, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    PointerEvent p;
    p.kind = self.pointerDown_ ? PointerEvent::Kind::dragged : PointerEvent::Kind::moved;
    p.x = event->x;
    p.y = event->y;
    p.modifiers = modifiersOf(event->state);
    self.content_.pointer(p);
    return TRUE;
  }

  static gboolean leave(GtkWidget*, GdkEventCrossing* event, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    // A grab that moves the pointer into a child surface is not the pointer leaving.
    if (event->mode != GDK_CROSSING_NORMAL || event->detail == GDK_NOTIFY_INFERIOR) return FALSE;
    PointerEvent p;
    p.kind = PointerEvent::Kind::exited;
    p.x = event->x;
    p.y = event->y;
    self.content_.pointer(p);
    return TRUE;
  }

  static gboolean scroll(GtkWidget*, GdkEventScroll* event, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    ScrollEvent s;
    s.x = event->x;
    s.y = event->y;
    GdkDevice* device = gdk_event_get_source_device(reinterpret_cast<GdkEvent*>(event));
    s.precise = device && gdk_device_get_source(device) == GDK_SOURCE_TOUCHPAD;
    const double step = s.precise ? kTouchpadStep : kWheelStep;
    // GDK's positive delta moves towards what is below; the content's shows what is above.
    switch (event->direction) {
      case GDK_SCROLL_UP:
        s.deltaY = step;
        break;
      case GDK_SCROLL_DOWN:
        s.deltaY = -step;
        break;
      case GDK_SCROLL_LEFT:
        s.deltaX = step;
        break;
      case GDK_SCROLL_RIGHT:
        s.deltaX = -step;
        break;
      case GDK_SCROLL_SMOOTH:
        s.deltaX = -event->delta_x * step;
        s.deltaY = -event->delta_y * step;
        break;
    }
    if (s.deltaX != 0 || s.deltaY != 0) self.content_.scroll(s);
    return TRUE;
  }

  static gboolean key(GtkWidget*, GdkEventKey* event, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    if (self.content_.wantsTextInput() && gtk_im_context_filter_keypress(self.im_, event)) return TRUE;
    if (event->type != GDK_KEY_PRESS) return FALSE;
    const guint state = event->state & gtk_accelerator_get_default_mod_mask();
    if ((state & GDK_CONTROL_MASK) && (event->keyval == GDK_KEY_v || event->keyval == GDK_KEY_V)) {
      // Paste arrives as typed text.
      GtkClipboard* clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
      if (gchar* text = gtk_clipboard_wait_for_text(clipboard)) {
        self.content_.text({TextInput::Kind::commit, text});
        g_free(text);
      }
      return TRUE;
    }
    if ((state & GDK_CONTROL_MASK) && (event->keyval == GDK_KEY_c || event->keyval == GDK_KEY_C ||
                                       event->keyval == GDK_KEY_x || event->keyval == GDK_KEY_X)) {
      const bool cut = event->keyval == GDK_KEY_x || event->keyval == GDK_KEY_X;
      (void)self.content_.clipboard(cut ? HostedContent::ClipboardCommand::cut
                                        : HostedContent::ClipboardCommand::copy);
      return TRUE;
    }
    if (const auto edit = editKeyOf(event->keyval, state)) {
      const bool used = self.content_.editKey(*edit, modifiersOf(state));
      if (!used && *edit == EditKey::escape && self.onUnusedEscape) self.onUnusedEscape();
      return TRUE;
    }
    // Without an input method (no text field focused) plain characters still reach the content.
    const gunichar c = gdk_keyval_to_unicode(event->keyval);
    if (c >= 0x20 && c != 0x7f && !(state & (GDK_CONTROL_MASK | GDK_MOD1_MASK))) {
      char utf8[8] = {};
      g_unichar_to_utf8(c, utf8);
      self.content_.text({TextInput::Kind::commit, utf8});
      return TRUE;
    }
    return FALSE;
  }

  static gboolean focusIn(GtkWidget*, GdkEventFocus*, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    self.hadFocus_ = true;
    gtk_im_context_focus_in(self.im_);
    return FALSE;
  }

  static gboolean focusOut(GtkWidget* widget, GdkEventFocus*, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    gtk_im_context_focus_out(self.im_);
    // Only a focus that was there can be lost; a window still being mapped has none yet.
    if (self.hadFocus_ && gtk_widget_get_visible(widget) && self.onFocusLost) self.onFocusLost();
    return FALSE;
  }

  static void commit(GtkIMContext*, gchar* text, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    self.content_.text({TextInput::Kind::commit, text});
  }

  static void preeditChanged(GtkIMContext* im, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    gchar* text = nullptr;
    gtk_im_context_get_preedit_string(im, &text, nullptr, nullptr);
    const std::string marked = text ? text : "";
    g_free(text);
    self.content_.text({marked.empty() ? TextInput::Kind::unmark : TextInput::Kind::marked, marked});
  }

  static void preeditEnd(GtkIMContext*, gpointer data) {
    static_cast<GtkCardWindow*>(data)->content_.text({TextInput::Kind::unmark, {}});
  }

  static void realize(GtkWidget* widget, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    gtk_im_context_set_client_window(self.im_, gtk_widget_get_window(widget));
  }

  static void scaleChanged(GObject*, GParamSpec*, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    self.updateShape();
    self.repaint();
  }

  static gboolean tick(GtkWidget*, GdkFrameClock*, gpointer data) {
    auto& self = *static_cast<GtkCardWindow*>(data);
    gtk_widget_queue_draw(self.window_);
    if (self.content_.animating()) return G_SOURCE_CONTINUE;
    self.tickId_ = 0;
    return G_SOURCE_REMOVE;
  }
};

GtkCardWindow::GtkCardWindow(HostedContent& content, bool takesFocus)
    : content_(content), takesFocus_(takesFocus) {
  window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  GtkWindow* window = GTK_WINDOW(window_);
  gtk_window_set_decorated(window, FALSE);
  gtk_window_set_resizable(window, FALSE);
  gtk_window_set_skip_taskbar_hint(window, TRUE);
  gtk_window_set_skip_pager_hint(window, TRUE);
  gtk_window_set_keep_above(window, TRUE);
  gtk_window_stick(window);
  // A utility window is left undecorated and where the program puts it by the window managers we
  // know, and still takes the keyboard; the tip is a notification that never does.
  gtk_window_set_type_hint(window,
                           takesFocus ? GDK_WINDOW_TYPE_HINT_UTILITY : GDK_WINDOW_TYPE_HINT_NOTIFICATION);
  gtk_window_set_accept_focus(window, takesFocus);
  gtk_window_set_focus_on_map(window, takesFocus);
  gtk_window_set_title(window, "Quillmark");
  gtk_window_set_role(window, takesFocus ? "quillmark-panel" : "quillmark-tip");
  const int width = static_cast<int>(std::ceil(content.width()));
  const int height = static_cast<int>(std::ceil(content.height()));
  gtk_window_set_default_size(window, width, height);
  gtk_widget_set_size_request(window_, width, height);
  gtk_widget_set_app_paintable(window_, TRUE);
  layer_ = gtkUsesLayerShell();
  if (layer_) makeLayerSurface(window, takesFocus);
  GdkScreen* screen = gtk_widget_get_screen(window_);
  if (gdk_screen_is_composited(screen)) {
    if (GdkVisual* rgba = gdk_screen_get_rgba_visual(screen)) gtk_widget_set_visual(window_, rgba);
  }
  gtk_widget_add_events(window_, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK |
                                     GDK_LEAVE_NOTIFY_MASK | GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK |
                                     GDK_KEY_PRESS_MASK | GDK_KEY_RELEASE_MASK | GDK_FOCUS_CHANGE_MASK);

  im_ = gtk_im_multicontext_new();
  g_signal_connect(im_, "commit", G_CALLBACK(Events::commit), this);
  g_signal_connect(im_, "preedit-changed", G_CALLBACK(Events::preeditChanged), this);
  g_signal_connect(im_, "preedit-end", G_CALLBACK(Events::preeditEnd), this);

  g_signal_connect(window_, "realize", G_CALLBACK(Events::realize), this);
  g_signal_connect(window_, "draw", G_CALLBACK(Events::draw), this);
  g_signal_connect(window_, "button-press-event", G_CALLBACK(Events::button), this);
  g_signal_connect(window_, "button-release-event", G_CALLBACK(Events::button), this);
  g_signal_connect(window_, "motion-notify-event", G_CALLBACK(Events::motion), this);
  g_signal_connect(window_, "leave-notify-event", G_CALLBACK(Events::leave), this);
  g_signal_connect(window_, "scroll-event", G_CALLBACK(Events::scroll), this);
  g_signal_connect(window_, "key-press-event", G_CALLBACK(Events::key), this);
  g_signal_connect(window_, "key-release-event", G_CALLBACK(Events::key), this);
  g_signal_connect(window_, "focus-in-event", G_CALLBACK(Events::focusIn), this);
  g_signal_connect(window_, "focus-out-event", G_CALLBACK(Events::focusOut), this);
  g_signal_connect(window_, "notify::scale-factor", G_CALLBACK(Events::scaleChanged), this);

  content_.requestRepaint = [this] { repaint(); };
  content_.writeClipboard = [](const std::string& text) {
    gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), text.c_str(),
                           static_cast<gint>(text.size()));
  };
}

GtkCardWindow::~GtkCardWindow() {
  content_.requestRepaint = nullptr;
  content_.writeClipboard = nullptr;
  // No handler may reach this object once it is gone; destroying the window sends none of ours.
  g_signal_handlers_disconnect_by_data(window_, this);
  g_signal_handlers_disconnect_by_data(im_, this);
  if (tickId_) gtk_widget_remove_tick_callback(window_, tickId_);
  gtk_im_context_set_client_window(im_, nullptr);
  g_object_unref(im_);
  gtk_widget_destroy(window_);
}

void GtkCardWindow::moveTo(int x, int y) {
  if (layer_) {
    placeLayerSurface(GTK_WINDOW(window_), x, y, static_cast<int>(std::ceil(content_.width())),
                      static_cast<int>(std::ceil(content_.height())));
  } else {
    gtk_window_move(GTK_WINDOW(window_), x, y);
  }
}

void GtkCardWindow::present() {
  gtk_widget_realize(window_);
  updateShape();
  gtk_widget_show(window_);
  if (!takesFocus_) return;
  guint32 time = GDK_CURRENT_TIME;
#ifdef GDK_WINDOWING_X11
  // A tray click reaches us over D-Bus without an X event, so there is no user time to show the
  // window with; the server's current time keeps focus-stealing prevention from refusing it.
  if (GdkWindow* gdkWindow = gtk_widget_get_window(window_); GDK_IS_X11_WINDOW(gdkWindow)) {
    time = gdk_x11_get_server_time(gdkWindow);
  }
#endif
  gtk_window_present_with_time(GTK_WINDOW(window_), time);
}

void GtkCardWindow::hide() { gtk_widget_hide(window_); }

bool GtkCardWindow::isVisible() const { return gtk_widget_get_visible(window_); }

void GtkCardWindow::outlineChanged() {
  updateShape();
  repaint();
}

void GtkCardWindow::updateShape() {
  if (!gtk_widget_get_realized(window_)) return;
  if (gdk_screen_is_composited(gtk_widget_get_screen(window_))) {
    gtk_widget_shape_combine_region(window_, nullptr);
    return;
  }
  // The outline is whatever the content paints opaque; one offscreen paint at 1x finds it.
  const int width = static_cast<int>(std::ceil(content_.width()));
  const int height = static_cast<int>(std::ceil(content_.height()));
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
  cairo_t* cr = cairo_create(surface);
  {
    CairoCanvas canvas(cr, 1);
    content_.paint(canvas);
  }
  cairo_destroy(cr);
  cairo_region_t* region = gdk_cairo_region_create_from_surface(surface);
  gtk_widget_shape_combine_region(window_, region);
  cairo_region_destroy(region);
  cairo_surface_destroy(surface);
}

void GtkCardWindow::placeInputMethodCursor() {
  const ContentRect caret = content_.caretRect();
  GdkRectangle area{static_cast<int>(caret.x), static_cast<int>(caret.y),
                    std::max(1, static_cast<int>(caret.width)), std::max(1, static_cast<int>(caret.height))};
  gtk_im_context_set_cursor_location(im_, &area);
}

void GtkCardWindow::repaint() {
  gtk_widget_queue_draw(window_);
  if (!tickId_ && content_.animating()) startTicking();
}

void GtkCardWindow::startTicking() {
  tickId_ = gtk_widget_add_tick_callback(window_, Events::tick, this, nullptr);
}

}  // namespace quillmark
