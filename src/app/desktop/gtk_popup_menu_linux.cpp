#include "app/desktop/gtk_popup_menu_linux.h"

#include <gtk/gtk.h>

#include <memory>

#include "app/desktop/gtk_layer_shell_linux.h"

namespace quillmark {
namespace {

using Choose = std::function<void(MenuAction, const MenuValue&)>;

struct Choice {
  MenuAction action;
  MenuValue value;
  std::shared_ptr<Choose> onChoose;
};

void activated(GtkMenuItem*, gpointer data) {
  const auto& choice = *static_cast<Choice*>(data);
  (*choice.onChoose)(choice.action, choice.value);
}

GtkWidget* buildMenu(const std::vector<MenuEntry>& entries, const std::shared_ptr<Choose>& onChoose) {
  GtkWidget* menu = gtk_menu_new();
  for (const MenuEntry& entry : entries) {
    GtkWidget* item = nullptr;
    if (entry.separator) {
      item = gtk_separator_menu_item_new();
    } else if (entry.checked) {
      item = gtk_check_menu_item_new_with_label(entry.title.c_str());
      gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), TRUE);
    } else {
      item = gtk_menu_item_new_with_label(entry.title.c_str());
    }
    gtk_widget_set_sensitive(item, entry.enabled);
    if (!entry.submenu.empty()) {
      gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), buildMenu(entry.submenu, onChoose));
    } else if (!entry.separator && entry.action != MenuAction::none) {
      // The choice lives as long as its item: freed with it when the menu is destroyed.
      auto* choice = new Choice{entry.action, entry.value, onChoose};
      g_signal_connect_data(
          item, "activate", G_CALLBACK(activated), choice,
          [](gpointer data, GClosure*) { delete static_cast<Choice*>(data); }, GConnectFlags{});
    }
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
  }
  return menu;
}

GtkWidget* makeMenuAnchor() {
  GtkWidget* anchor = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  makeMenuAnchorSurface(GTK_WINDOW(anchor));
  gtk_window_set_default_size(GTK_WINDOW(anchor), 1, 1);
  gtk_widget_set_app_paintable(anchor, TRUE);
  if (GdkVisual* rgba = gdk_screen_get_rgba_visual(gtk_widget_get_screen(anchor))) {
    gtk_widget_set_visual(anchor, rgba);
  }
  g_signal_connect(anchor, "draw", G_CALLBACK(+[](GtkWidget*, cairo_t* cr, gpointer) -> gboolean {
                     cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
                     cairo_paint(cr);
                     return TRUE;
                   }),
                   nullptr);
  gtk_widget_show(anchor);
  return anchor;
}

}  // namespace

void gtkPopUpMenu(const std::vector<MenuEntry>& entries,
                  std::function<void(MenuAction, const MenuValue&)> onChoose) {
  if (entries.empty()) return;
  GtkWidget* menu = buildMenu(entries, std::make_shared<Choose>(std::move(onChoose)));
  // The menu is ours until it closes; destroyed after its "activate" has run.
  g_object_ref_sink(menu);
  // A Wayland menu needs a window of ours to hang from: a one-pixel layer surface at the tray's
  // likely place, the top-right corner, which goes with the menu.
  GtkWidget* anchor = gtkUsesLayerShell() ? makeMenuAnchor() : nullptr;
  g_object_set_data(G_OBJECT(menu), "quillmark-anchor", anchor);
  g_signal_connect(menu, "deactivate", G_CALLBACK(+[](GtkMenuShell* shell, gpointer) {
                     g_idle_add(
                         [](gpointer widget) -> gboolean {
                           auto* anchorWindow = g_object_get_data(G_OBJECT(widget), "quillmark-anchor");
                           gtk_widget_destroy(GTK_WIDGET(widget));
                           g_object_unref(widget);
                           if (anchorWindow) gtk_widget_destroy(GTK_WIDGET(anchorWindow));
                           return G_SOURCE_REMOVE;
                         },
                         shell);
                   }),
                   nullptr);
  gtk_widget_show_all(menu);
  if (anchor) {
    gtk_menu_popup_at_widget(GTK_MENU(menu), anchor, GDK_GRAVITY_SOUTH_EAST, GDK_GRAVITY_NORTH_EAST, nullptr);
    return;
  }
  // The request comes over the bus, not with a GDK event, so there is no event to place the menu
  // by: it opens at the pointer's place on the root window instead.
  GdkWindow* root = gdk_get_default_root_window();
  GdkRectangle at{0, 0, 1, 1};
  if (GdkSeat* seat = gdk_display_get_default_seat(gdk_display_get_default())) {
    if (GdkDevice* pointer = gdk_seat_get_pointer(seat))
      gdk_device_get_position(pointer, nullptr, &at.x, &at.y);
  }
  gtk_menu_popup_at_rect(GTK_MENU(menu), root, &at, GDK_GRAVITY_NORTH_WEST, GDK_GRAVITY_NORTH_WEST, nullptr);
}

}  // namespace quillmark
