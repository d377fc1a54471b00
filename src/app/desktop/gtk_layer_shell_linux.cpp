#include "app/desktop/gtk_layer_shell_linux.h"

#include <gtk-layer-shell.h>
#include <gtk/gtk.h>
#include <wayland-client.h>
#ifdef GDK_WINDOWING_WAYLAND
#include <gdk/gdkwayland.h>
#endif

#include <cstring>

#include "base/log.h"

namespace quillmark {
namespace {

// The first version whose keyboard mode lets the user click the focus away from the surface.
constexpr guint kOnDemandKeyboardVersion = 4;

void noteGlobal(void* data, wl_registry*, uint32_t, const char* interface, uint32_t) {
  if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0) *static_cast<bool*>(data) = true;
}

void forgetGlobal(void*, wl_registry*, uint32_t) {}

}  // namespace

bool compositorOffersLayerShell() {
  const char* name = std::getenv("WAYLAND_DISPLAY");
  if (!name || !*name) return false;
  wl_display* display = wl_display_connect(nullptr);
  if (!display) return false;
  bool offered = false;
  static const wl_registry_listener listener{noteGlobal, forgetGlobal};
  wl_registry* registry = wl_display_get_registry(display);
  wl_registry_add_listener(registry, &listener, &offered);
  // One round trip delivers every global the compositor announces.
  if (wl_display_roundtrip(display) < 0) offered = false;
  wl_registry_destroy(registry);
  wl_display_disconnect(display);
  return offered;
}

bool gtkUsesLayerShell() {
#ifdef GDK_WINDOWING_WAYLAND
  GdkDisplay* display = gdk_display_get_default();
  return display && GDK_IS_WAYLAND_DISPLAY(display) && gtk_layer_is_supported();
#else
  return false;
#endif
}

void makeLayerSurface(GtkWindow* window, bool takesKeyboard) {
  gtk_layer_init_for_window(window);
  gtk_layer_set_namespace(window, takesKeyboard ? "quillmark-panel" : "quillmark-tip");
  gtk_layer_set_layer(window, GTK_LAYER_SHELL_LAYER_OVERLAY);
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_TOP, TRUE);
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_LEFT, TRUE);
  // Zone 0: the card keeps no room for itself, and the compositor counts its margins from the
  // edge of the area that bars leave free. GDK does not report those bars on Wayland (the work
  // area is the whole monitor), so a card placed at the top of the monitor ends up just below a
  // top bar instead of over it.
  gtk_layer_set_exclusive_zone(window, 0);
  if (!takesKeyboard) {
    gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_NONE);
  } else if (gtk_layer_get_protocol_version() >= kOnDemandKeyboardVersion) {
    gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_ON_DEMAND);
  } else {
    // An older compositor knows only the exclusive keyboard: the search field works, but a click
    // elsewhere does not close the panel (Escape, the tray item and ctl still do).
    Log::debug("Layer shell without on-demand keyboard focus: the panel keeps the keyboard");
    gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_EXCLUSIVE);
  }
}

void makeMenuAnchorSurface(GtkWindow* window) {
  gtk_layer_init_for_window(window);
  gtk_layer_set_namespace(window, "quillmark-menu");
  gtk_layer_set_layer(window, GTK_LAYER_SHELL_LAYER_OVERLAY);
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_TOP, TRUE);
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_RIGHT, TRUE);
  gtk_layer_set_exclusive_zone(window, 0);
  gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_NONE);
}

void placeLayerSurface(GtkWindow* window, int x, int y, int width, int height) {
  GdkDisplay* display = gdk_display_get_default();
  if (!display) return;
  GdkMonitor* monitor = gdk_display_get_monitor_at_point(display, x + width / 2, y + height / 2);
  if (!monitor) return;
  GdkRectangle frame{};
  gdk_monitor_get_geometry(monitor, &frame);
  gtk_layer_set_monitor(window, monitor);
  gtk_layer_set_margin(window, GTK_LAYER_SHELL_EDGE_LEFT, x - frame.x);
  gtk_layer_set_margin(window, GTK_LAYER_SHELL_EDGE_TOP, y - frame.y);
}

}  // namespace quillmark
