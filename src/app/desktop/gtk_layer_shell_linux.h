#pragma once

typedef struct _GtkWindow GtkWindow;

namespace quillmark {

// On a Wayland compositor a client cannot place its own windows, so the cards become wlr
// layer-shell surfaces there: a surface on the overlay layer, tied to the output's top-left
// corner with margins, is the one Wayland way to put a window at a given spot.

// Whether the compositor at WAYLAND_DISPLAY offers zwlr_layer_shell_v1: a short connection of its
// own, before GTK opens its display, so that the backend can be chosen by it. False without
// WAYLAND_DISPLAY or when the compositor does not answer.
[[nodiscard]] bool compositorOffersLayerShell();

// Whether GTK's display is a Wayland one whose compositor supports layer-shell surfaces; GTK must
// be initialised. On X11 (XWayland included) windows are placed the usual way.
[[nodiscard]] bool gtkUsesLayerShell();

// Makes a window, not yet realised, a layer-shell surface in front of ordinary windows that keeps
// no room for itself. A keyboard-taking one is focused when it appears and loses the focus again
// when the user clicks elsewhere (where the compositor can do that; else it keeps the keyboard
// until it closes).
void makeLayerSurface(GtkWindow* window, bool takesKeyboard);

// Makes a window, not yet realised, a layer surface in the monitor's top-right corner without
// the keyboard, for a menu to hang from when no card is open.
void makeMenuAnchorSurface(GtkWindow* window);

// Puts a layer surface's top-left corner at (x, y) in GDK's root coordinates (logical pixels, y
// down), on the monitor that holds its centre.
void placeLayerSurface(GtkWindow* window, int x, int y, int width, int height);

}  // namespace quillmark
