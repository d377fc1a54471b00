#include "app/desktop/status_notifier_item_linux.h"

#include <systemd/sd-bus.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

#include "base/log.h"

namespace quillmark {

struct SniMethods {
  static StatusNotifierItem& self(void* userdata) { return *static_cast<StatusNotifierItem*>(userdata); }

  template <void (TrayDelegate::*Handler)(int, int)>
  static int click(sd_bus_message* m, void* userdata, sd_bus_error*) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    if (const int r = sd_bus_message_read(m, "ii", &x, &y); r < 0) return r;
    // Answer first: the delegate may open a window, which takes longer than a host waits.
    const int r = sd_bus_reply_method_return(m, "");
    (self(userdata).delegate_.*Handler)(x, y);
    return r;
  }

  static int scroll(sd_bus_message* m, void*, sd_bus_error*) { return sd_bus_reply_method_return(m, ""); }

  using Getter = int (*)(sd_bus*, const char*, const char*, const char*, sd_bus_message*, void*,
                         sd_bus_error*);

  template <auto Member>
  static int string(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* userdata,
                    sd_bus_error*) {
    return sd_bus_message_append(reply, "s", (self(userdata).*Member).c_str());
  }
  static constexpr auto id = &string<&StatusNotifierItem::id_>;
  static constexpr auto title = &string<&StatusNotifierItem::title_>;
  static constexpr auto status = &string<&StatusNotifierItem::status_>;
  static constexpr auto label = &string<&StatusNotifierItem::label_>;
  static constexpr auto labelGuide = &string<&StatusNotifierItem::labelGuide_>;
  static int empty(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                   sd_bus_error*) {
    return sd_bus_message_append(reply, "s", "");
  }
  static int category(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                      sd_bus_error*) {
    return sd_bus_message_append(reply, "s", "ApplicationStatus");
  }
  static int windowId(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                      sd_bus_error*) {
    return sd_bus_message_append(reply, "i", 0);
  }
  static int itemIsMenu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                        sd_bus_error*) {
    return sd_bus_message_append(reply, "b", 0);
  }
  static int menu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* userdata,
                  sd_bus_error*) {
    return sd_bus_message_append(reply, "o", self(userdata).menuPath_.c_str());
  }

  static int appendPixmaps(sd_bus_message* m, const std::vector<TrayPixmap>& pixmaps) {
    int r = sd_bus_message_open_container(m, 'a', "(iiay)");
    for (const TrayPixmap& p : pixmaps) {
      if (r < 0) return r;
      if ((r = sd_bus_message_open_container(m, 'r', "iiay")) < 0) return r;
      if ((r = sd_bus_message_append(m, "ii", p.width, p.height)) < 0) return r;
      if ((r = sd_bus_message_append_array(m, 'y', p.argb.data(), p.argb.size())) < 0) return r;
      r = sd_bus_message_close_container(m);
    }
    return r < 0 ? r : sd_bus_message_close_container(m);
  }
  static int iconPixmap(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* userdata,
                        sd_bus_error*) {
    return appendPixmaps(reply, self(userdata).icon_);
  }
  static int noPixmaps(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                       sd_bus_error*) {
    return appendPixmaps(reply, {});
  }
  // The tool tip carries no image of its own: hosts show the item's.
  static int toolTip(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* userdata,
                     sd_bus_error*) {
    const StatusNotifierItem& item = self(userdata);
    int r = sd_bus_message_open_container(reply, 'r', "sa(iiay)ss");
    if (r >= 0) r = sd_bus_message_append(reply, "s", "");
    if (r >= 0) r = appendPixmaps(reply, {});
    if (r >= 0) r = sd_bus_message_append(reply, "ss", item.toolTipTitle_.c_str(), item.toolTipBody_.c_str());
    return r < 0 ? r : sd_bus_message_close_container(reply);
  }

  static int watcherOwnerChanged(sd_bus_message* m, void* userdata, sd_bus_error*) {
    const char* name = nullptr;
    const char* oldOwner = nullptr;
    const char* newOwner = nullptr;
    if (sd_bus_message_read(m, "sss", &name, &oldOwner, &newOwner) < 0) return 0;
    StatusNotifierItem& item = self(userdata);
    if (newOwner && *newOwner) {
      Log::debug(std::string("Tray watcher appeared (") + newOwner + "); registering the status item");
      item.registerWithWatcher();
    } else {
      Log::debug("Tray watcher went away");
      item.registered_ = false;
      item.report(false);
    }
    return 0;
  }

  static int registered(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    StatusNotifierItem& item = self(userdata);
    item.registerCall_ = sd_bus_slot_unref(item.registerCall_);
    if (const sd_bus_error* error = sd_bus_message_get_error(reply)) {
      Log::debug(std::string("No tray watcher took the status item: ") +
                 (error->message ? error->message : error->name));
      item.registered_ = false;
      item.report(false);
      return 0;
    }
    item.registered_ = true;
    const char* owner = sd_bus_message_get_sender(reply);
    item.askWhoHosts(owner ? owner : "");
    return 0;
  }

  // IsStatusNotifierHostRegistered: a watcher without a host shows nothing. A watcher that does
  // not know the property is taken at its word that it hosts.
  static int hostAnswer(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    StatusNotifierItem& item = self(userdata);
    item.hostQuery_ = sd_bus_slot_unref(item.hostQuery_);
    int hosted = 1;
    if (!sd_bus_message_is_method_error(reply, nullptr)) {
      if (sd_bus_message_read(reply, "v", "b", &hosted) < 0) hosted = 1;
    }
    item.report(item.registered_ && hosted);
    return 0;
  }

  static int hostRegistered(sd_bus_message*, void* userdata, sd_bus_error*) {
    StatusNotifierItem& item = self(userdata);
    if (item.registered_) item.report(true);
    return 0;
  }

  static int shellAnswer(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    StatusNotifierItem& item = self(userdata);
    item.shellQuery_ = sd_bus_slot_unref(item.shellQuery_);
    const char* shell = nullptr;
    const bool isShell = !sd_bus_message_is_method_error(reply, nullptr) &&
                         sd_bus_message_read(reply, "s", &shell) >= 0 && item.watcherOwner_ == shell;
    if (isShell != item.hostShowsLabel_) {
      item.hostShowsLabel_ = isShell;
      if (item.onHostChanged) item.onHostChanged();
    }
    return 0;
  }
};

namespace {

constexpr auto kUnprivileged = SD_BUS_VTABLE_UNPRIVILEGED;
const sd_bus_vtable kVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Category", "s", &SniMethods::category, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Id", "s", SniMethods::id, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Title", "s", SniMethods::title, 0, 0),
    SD_BUS_PROPERTY("Status", "s", SniMethods::status, 0, 0),
    SD_BUS_PROPERTY("WindowId", "i", &SniMethods::windowId, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "s", &SniMethods::empty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconName", "s", &SniMethods::empty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconPixmap", "a(iiay)", &SniMethods::iconPixmap, 0, 0),
    SD_BUS_PROPERTY("OverlayIconName", "s", &SniMethods::empty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("OverlayIconPixmap", "a(iiay)", &SniMethods::noPixmaps, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionIconName", "s", &SniMethods::empty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionIconPixmap", "a(iiay)", &SniMethods::noPixmaps, 0,
                    SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionMovieName", "s", &SniMethods::empty, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", &SniMethods::toolTip, 0, 0),
    SD_BUS_PROPERTY("ItemIsMenu", "b", &SniMethods::itemIsMenu, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Menu", "o", &SniMethods::menu, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("XAyatanaLabel", "s", SniMethods::label, 0, 0),
    SD_BUS_PROPERTY("XAyatanaLabelGuide", "s", SniMethods::labelGuide, 0, 0),
    SD_BUS_METHOD("Activate", "ii", "", &SniMethods::click<&TrayDelegate::activate>, kUnprivileged),
    SD_BUS_METHOD("SecondaryActivate", "ii", "", &SniMethods::click<&TrayDelegate::secondaryActivate>,
                  kUnprivileged),
    SD_BUS_METHOD("ContextMenu", "ii", "", &SniMethods::click<&TrayDelegate::contextMenu>, kUnprivileged),
    SD_BUS_METHOD("Scroll", "is", "", &SniMethods::scroll, kUnprivileged),
    SD_BUS_SIGNAL("NewTitle", "", 0),
    SD_BUS_SIGNAL("NewIcon", "", 0),
    SD_BUS_SIGNAL("NewAttentionIcon", "", 0),
    SD_BUS_SIGNAL("NewOverlayIcon", "", 0),
    SD_BUS_SIGNAL("NewToolTip", "", 0),
    SD_BUS_SIGNAL("NewStatus", "s", 0),
    SD_BUS_SIGNAL("XAyatanaNewLabel", "ss", 0),
    SD_BUS_VTABLE_END,
};

std::atomic<int> itemCount{0};

}  // namespace

StatusNotifierItem::StatusNotifierItem(BusConnection& bus, TrayDelegate& delegate, std::string id,
                                       std::string menuPath)
    : bus_(bus), delegate_(delegate), id_(std::move(id)), menuPath_(std::move(menuPath)) {
  serviceName_ = "org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-" + std::to_string(++itemCount);
  title_ = id_;
}

StatusNotifierItem::~StatusNotifierItem() {
  for (sd_bus_slot* slot : {shellQuery_, hostQuery_, registerCall_, hostMatch_, ownerMatch_, objectSlot_}) {
    sd_bus_slot_unref(slot);
  }
  if (bus_.connected()) sd_bus_release_name(bus_.get(), serviceName_.c_str());
}

bool StatusNotifierItem::start(std::string& error) {
  sd_bus* bus = bus_.get();
  if (const int r = sd_bus_add_object_vtable(bus, &objectSlot_, kObjectPath, kInterface, kVtable, this);
      r < 0) {
    error = std::string("could not export the status item: ") + std::strerror(-r);
    return false;
  }
  if (const int r = sd_bus_request_name(bus, serviceName_.c_str(), 0); r < 0) {
    error = "could not claim " + serviceName_ + ": " + std::strerror(-r);
    return false;
  }
  const std::string ownerRule =
      std::string(
          "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
          "member='NameOwnerChanged',arg0='") +
      kWatcherName + "'";
  if (const int r =
          sd_bus_add_match(bus, &ownerMatch_, ownerRule.c_str(), &SniMethods::watcherOwnerChanged, this);
      r < 0) {
    error = std::string("could not follow the tray watcher: ") + std::strerror(-r);
    return false;
  }
  const std::string hostRule =
      std::string("type='signal',interface='") + kWatcherName + "',member='StatusNotifierHostRegistered'";
  if (const int r = sd_bus_add_match(bus, &hostMatch_, hostRule.c_str(), &SniMethods::hostRegistered, this);
      r < 0) {
    error = std::string("could not follow the tray hosts: ") + std::strerror(-r);
    return false;
  }
  registerWithWatcher();
  bus_.pump();
  return true;
}

void StatusNotifierItem::registerWithWatcher() {
  registerCall_ = sd_bus_slot_unref(registerCall_);
  const int r = sd_bus_call_method_async(bus_.get(), &registerCall_, kWatcherName, kWatcherPath, kWatcherName,
                                         "RegisterStatusNotifierItem", &SniMethods::registered, this, "s",
                                         serviceName_.c_str());
  if (r < 0) {
    Log::debug(std::string("Could not ask the tray watcher to show the status item: ") + std::strerror(-r));
    report(false);
  }
}

void StatusNotifierItem::askWhoHosts(const char* watcherOwner) {
  watcherOwner_ = watcherOwner;
  hostQuery_ = sd_bus_slot_unref(hostQuery_);
  if (sd_bus_call_method_async(bus_.get(), &hostQuery_, kWatcherName, kWatcherPath,
                               "org.freedesktop.DBus.Properties", "Get", &SniMethods::hostAnswer, this, "ss",
                               kWatcherName, "IsStatusNotifierHostRegistered") < 0) {
    report(true);
  }
  shellQuery_ = sd_bus_slot_unref(shellQuery_);
  (void)sd_bus_call_method_async(bus_.get(), &shellQuery_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                 "org.freedesktop.DBus", "GetNameOwner", &SniMethods::shellAnswer, this, "s",
                                 "org.gnome.Shell");
}

void StatusNotifierItem::report(bool shown) {
  if (reported_ && shown == shown_) return;
  reported_ = true;
  shown_ = shown;
  Log::debug(shown ? "Status item shown by a tray host" : "No tray host shows the status item");
  delegate_.trayShown(shown);
}

void StatusNotifierItem::emit(const char* signal) {
  if (objectSlot_ && bus_.connected()) sd_bus_emit_signal(bus_.get(), kObjectPath, kInterface, signal, "");
}

void StatusNotifierItem::setTitle(const std::string& title) {
  if (title == title_) return;
  title_ = title;
  emit("NewTitle");
}

void StatusNotifierItem::setStatus(const std::string& status) {
  if (status == status_) return;
  status_ = status;
  if (objectSlot_ && bus_.connected()) {
    sd_bus_emit_signal(bus_.get(), kObjectPath, kInterface, "NewStatus", "s", status_.c_str());
  }
}

void StatusNotifierItem::setIcon(std::vector<TrayPixmap> pixmaps) {
  if (pixmaps == icon_) return;
  icon_ = std::move(pixmaps);
  emit("NewIcon");
}

void StatusNotifierItem::setToolTip(const std::string& title, const std::string& body) {
  if (title == toolTipTitle_ && body == toolTipBody_) return;
  toolTipTitle_ = title;
  toolTipBody_ = body;
  emit("NewToolTip");
}

void StatusNotifierItem::setLabel(const std::string& label, const std::string& guide) {
  if (label == label_ && guide == labelGuide_) return;
  label_ = label;
  labelGuide_ = guide;
  if (objectSlot_ && bus_.connected()) {
    sd_bus_emit_signal(bus_.get(), kObjectPath, kInterface, "XAyatanaNewLabel", "ss", label_.c_str(),
                       labelGuide_.c_str());
  }
}

}  // namespace quillmark
