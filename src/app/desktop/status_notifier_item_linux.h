#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/desktop/bus_connection_linux.h"
#include "app/desktop/tray_delegate.h"
#include "app/desktop/tray_pixmaps.h"

struct sd_bus_message;
struct sd_bus_slot;

namespace quillmark {

// The tray item itself: org.kde.StatusNotifierItem at /StatusNotifierItem under the name
// org.kde.StatusNotifierItem-<pid>-<n>, registered with org.kde.StatusNotifierWatcher. Its
// images are pixmaps only (no icon theme), its menu the dbusmenu object at menuPath, and
// ItemIsMenu is false so a primary click reaches Activate. Each setter announces its property
// (NewIcon, NewToolTip, NewStatus, NewTitle, XAyatanaNewLabel) only when the value really
// changed, since every announcement makes each host fetch the property again.
//
// The watcher is followed through NameOwnerChanged: a watcher that starts (or restarts) gets the
// item registered again. Whether a host shows the item goes to the delegate's trayShown(), once
// when first known and then on each change. Main thread only.
class StatusNotifierItem {
 public:
  static constexpr const char* kObjectPath = "/StatusNotifierItem";
  static constexpr const char* kInterface = "org.kde.StatusNotifierItem";
  static constexpr const char* kWatcherName = "org.kde.StatusNotifierWatcher";
  static constexpr const char* kWatcherPath = "/StatusNotifierWatcher";

  StatusNotifierItem(BusConnection& bus, TrayDelegate& delegate, std::string id, std::string menuPath);
  ~StatusNotifierItem();
  StatusNotifierItem(const StatusNotifierItem&) = delete;
  StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

  // Claims the item's name, exports the object and registers it; false with a sentence in error
  // when the bus refuses. A missing watcher is not an error: it is reported through trayShown().
  [[nodiscard]] bool start(std::string& error);

  void setTitle(const std::string& title);
  void setStatus(const std::string& status);  // "Passive", "Active" or "NeedsAttention"
  void setIcon(std::vector<TrayPixmap> pixmaps);
  void setToolTip(const std::string& title, const std::string& body);
  // The Ayatana text beside the icon; an empty label removes it.
  void setLabel(const std::string& label, const std::string& guide);

  [[nodiscard]] const std::string& serviceName() const { return serviceName_; }
  // Whether the watcher belongs to GNOME Shell (its AppIndicator extension), which shows the
  // Ayatana label beside the icon, so the text need not be drawn into the icon as well.
  [[nodiscard]] bool hostShowsLabel() const { return hostShowsLabel_; }
  // Called when hostShowsLabel() changes.
  std::function<void()> onHostChanged;

 private:
  void registerWithWatcher();
  void askWhoHosts(const char* watcherOwner);
  void report(bool shown);
  void emit(const char* signal);

  BusConnection& bus_;
  TrayDelegate& delegate_;
  std::string id_;
  std::string menuPath_;
  std::string serviceName_;
  std::string title_;
  std::string status_ = "Active";
  std::vector<TrayPixmap> icon_;
  std::string toolTipTitle_;
  std::string toolTipBody_;
  std::string label_;
  std::string labelGuide_;

  sd_bus_slot* objectSlot_ = nullptr;
  sd_bus_slot* ownerMatch_ = nullptr;
  sd_bus_slot* hostMatch_ = nullptr;
  sd_bus_slot* registerCall_ = nullptr;
  sd_bus_slot* hostQuery_ = nullptr;
  sd_bus_slot* shellQuery_ = nullptr;
  bool registered_ = false;
  bool reported_ = false;
  bool shown_ = false;
  bool hostShowsLabel_ = false;
  std::string watcherOwner_;

  friend struct SniMethods;
};

}  // namespace quillmark
