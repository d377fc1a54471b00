#include "app/desktop/gtk_screens_linux.h"

#include <gtk/gtk.h>

#include "app/desktop/gtk_panel_host_linux.h"

namespace quillmark {
namespace {

ScreenRect toScreenRect(const GdkRectangle& r) {
  return {static_cast<double>(r.x), toScreenY(r.y + r.height), static_cast<double>(r.width),
          static_cast<double>(r.height)};
}

double pixelScale() {
  GdkWindow* root = gdk_get_default_root_window();
  return root ? std::max(1, gdk_window_get_scale_factor(root)) : 1;
}

}  // namespace

MonitorArea gtkMonitorArea(const std::optional<TrayClick>& click) {
  GdkDisplay* display = gdk_display_get_default();
  GdkMonitor* monitor = nullptr;
  if (display && click) {
    const double scale = pixelScale();
    monitor = gdk_display_get_monitor_at_point(display, static_cast<int>(click->x / scale),
                                               static_cast<int>(click->y / scale));
  }
  if (display && !monitor) monitor = gdk_display_get_primary_monitor(display);
  if (display && !monitor && gdk_display_get_n_monitors(display) > 0)
    monitor = gdk_display_get_monitor(display, 0);
  if (!monitor) return {};
  GdkRectangle frame{}, work{};
  gdk_monitor_get_geometry(monitor, &frame);
  gdk_monitor_get_workarea(monitor, &work);
  return {toScreenRect(frame), toScreenRect(work)};
}

AnchorGeometry gtkTrayAnchor(const std::optional<TrayClick>& click) {
  const MonitorArea area = gtkMonitorArea(click);
  std::optional<ScreenPoint> point;
  if (click) {
    const double scale = pixelScale();
    point = ScreenPoint{click->x / scale, toScreenY(click->y / scale)};
  }
  return trayAnchor(point, area);
}

}  // namespace quillmark
