#include "app/desktop/dbus_menu_linux.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstring>

#include "base/log.h"

namespace quillmark {
namespace {

// A literal underscore is doubled: a single one marks the access key.
std::string escapeLabel(const std::string& title) {
  std::string out;
  for (const char c : title) {
    out += c;
    if (c == '_') out += '_';
  }
  return out;
}

// The menu's choices are a radio group each, except the one on/off entry.
const char* toggleType(MenuAction action) {
  switch (action) {
    case MenuAction::setMenuBarStyle:
    case MenuAction::setSkin:
    case MenuAction::setInterval:
      return "radio";
    case MenuAction::toggleNetSpeed:
      return "checkmark";
    default:
      return nullptr;
  }
}

std::vector<std::string> readNames(sd_bus_message* m, int& r) {
  char** names = nullptr;
  r = sd_bus_message_read_strv(m, &names);
  std::vector<std::string> out;
  for (char** n = names; n && *n; ++n) {
    out.emplace_back(*n);
    free(*n);
  }
  free(names);
  return out;
}

}  // namespace

struct DbusMenuMethods {
  static DbusMenu& self(void* userdata) { return *static_cast<DbusMenu*>(userdata); }

  static int invalidId(sd_bus_error* error, std::int32_t id) {
    return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "no menu item %d", id);
  }

  static int getLayout(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    DbusMenu& menu = self(userdata);
    std::int32_t parent = 0;
    std::int32_t depth = -1;
    int r = sd_bus_message_read(m, "ii", &parent, &depth);
    if (r < 0) return r;
    const auto names = readNames(m, r);
    if (r < 0) return r;
    // Some hosts fetch the layout without announcing that they are about to show it.
    if (parent == 0) menu.refresh();
    if (!menu.valid(parent)) return invalidId(error, parent);
    sd_bus_message* reply = nullptr;
    if ((r = sd_bus_message_new_method_return(m, &reply)) < 0) return r;
    if ((r = sd_bus_message_append(reply, "u", menu.revision_)) >= 0) {
      r = menu.appendLayout(reply, parent, depth, names);
    }
    if (r >= 0) r = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return r;
  }

  static int getGroupProperties(sd_bus_message* m, void* userdata, sd_bus_error*) {
    DbusMenu& menu = self(userdata);
    const void* ids = nullptr;
    std::size_t size = 0;
    int r = sd_bus_message_read_array(m, 'i', &ids, &size);
    if (r < 0) return r;
    std::vector<std::int32_t> wanted(size / sizeof(std::int32_t));
    if (size) std::memcpy(wanted.data(), ids, wanted.size() * sizeof(std::int32_t));
    const auto names = readNames(m, r);
    if (r < 0) return r;
    sd_bus_message* reply = nullptr;
    if ((r = sd_bus_message_new_method_return(m, &reply)) < 0) return r;
    r = sd_bus_message_open_container(reply, 'a', "(ia{sv})");
    for (const std::int32_t id : wanted) {
      if (r < 0) break;
      if (!menu.valid(id)) continue;
      if ((r = sd_bus_message_open_container(reply, 'r', "ia{sv}")) < 0) break;
      if ((r = sd_bus_message_append(reply, "i", id)) < 0) break;
      if ((r = menu.appendProperties(reply, id, names)) < 0) break;
      r = sd_bus_message_close_container(reply);
    }
    if (r >= 0) r = sd_bus_message_close_container(reply);
    if (r >= 0) r = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return r;
  }

  static int getProperty(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    DbusMenu& menu = self(userdata);
    std::int32_t id = 0;
    const char* name = nullptr;
    int r = sd_bus_message_read(m, "is", &id, &name);
    if (r < 0) return r;
    if (!menu.valid(id)) return invalidId(error, id);
    const auto& properties = menu.items_[static_cast<std::size_t>(id)].properties;
    const auto it = std::find_if(properties.begin(), properties.end(),
                                 [&](const DbusMenu::Property& p) { return p.name == name; });
    if (it == properties.end()) {
      return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "menu item %d has no %s", id, name);
    }
    sd_bus_message* reply = nullptr;
    if ((r = sd_bus_message_new_method_return(m, &reply)) < 0) return r;
    r = std::visit(
        [reply](const auto& value) -> int {
          using T = std::decay_t<decltype(value)>;
          if constexpr (std::is_same_v<T, std::string>)
            return sd_bus_message_append(reply, "v", "s", value.c_str());
          if constexpr (std::is_same_v<T, bool>)
            return sd_bus_message_append(reply, "v", "b", static_cast<int>(value));
          if constexpr (std::is_same_v<T, std::int32_t>) return sd_bus_message_append(reply, "v", "i", value);
        },
        it->value);
    if (r >= 0) r = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return r;
  }

  // Reads one (i s v u) event body; the data and timestamp are of no use to us.
  static int readEvent(sd_bus_message* m, std::int32_t& id, std::string& event) {
    const char* name = nullptr;
    std::uint32_t timestamp = 0;
    int r = sd_bus_message_read(m, "is", &id, &name);
    if (r < 0) return r;
    event = name;
    if ((r = sd_bus_message_skip(m, "v")) < 0) return r;
    return sd_bus_message_read(m, "u", &timestamp);
  }

  static int event(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    std::int32_t id = 0;
    std::string name;
    if (const int r = readEvent(m, id, name); r < 0) return r;
    if (!self(userdata).valid(id)) return invalidId(error, id);
    // Answer before acting: the action may take a while (opening the settings) or end the program.
    const int r = sd_bus_reply_method_return(m, "");
    self(userdata).activate(id, name);
    return r;
  }

  static int eventGroup(sd_bus_message* m, void* userdata, sd_bus_error*) {
    std::vector<std::pair<std::int32_t, std::string>> events;
    std::vector<std::int32_t> unknown;
    int r = sd_bus_message_enter_container(m, 'a', "(isvu)");
    if (r < 0) return r;
    while ((r = sd_bus_message_enter_container(m, 'r', "isvu")) > 0) {
      std::int32_t id = 0;
      std::string name;
      if ((r = readEvent(m, id, name)) < 0) return r;
      if ((r = sd_bus_message_exit_container(m)) < 0) return r;
      if (self(userdata).valid(id)) {
        events.emplace_back(id, std::move(name));
      } else {
        unknown.push_back(id);
      }
    }
    if (r < 0 || (r = sd_bus_message_exit_container(m)) < 0) return r;
    sd_bus_message* reply = nullptr;
    if ((r = sd_bus_message_new_method_return(m, &reply)) < 0) return r;
    r = sd_bus_message_append_array(reply, 'i', unknown.data(), unknown.size() * sizeof(std::int32_t));
    if (r >= 0) r = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    for (const auto& [id, name] : events) self(userdata).activate(id, name);
    return r;
  }

  static int aboutToShow(sd_bus_message* m, void* userdata, sd_bus_error* error) {
    std::int32_t id = 0;
    if (const int r = sd_bus_message_read(m, "i", &id); r < 0) return r;
    DbusMenu& menu = self(userdata);
    if (!menu.valid(id)) return invalidId(error, id);
    const std::uint32_t before = menu.revision_;
    menu.refresh();
    return sd_bus_reply_method_return(m, "b", static_cast<int>(menu.revision_ != before));
  }

  static int aboutToShowGroup(sd_bus_message* m, void* userdata, sd_bus_error*) {
    const void* data = nullptr;
    std::size_t size = 0;
    if (const int r = sd_bus_message_read_array(m, 'i', &data, &size); r < 0) return r;
    std::vector<std::int32_t> ids(size / sizeof(std::int32_t));
    if (size) std::memcpy(ids.data(), data, ids.size() * sizeof(std::int32_t));
    DbusMenu& menu = self(userdata);
    const std::uint32_t before = menu.revision_;
    menu.refresh();
    std::vector<std::int32_t> updates;
    std::vector<std::int32_t> unknown;
    for (const std::int32_t id : ids) {
      if (!menu.valid(id)) {
        unknown.push_back(id);
      } else if (menu.revision_ != before) {
        updates.push_back(id);
      }
    }
    sd_bus_message* reply = nullptr;
    int r = sd_bus_message_new_method_return(m, &reply);
    if (r < 0) return r;
    r = sd_bus_message_append_array(reply, 'i', updates.data(), updates.size() * sizeof(std::int32_t));
    if (r >= 0)
      r = sd_bus_message_append_array(reply, 'i', unknown.data(), unknown.size() * sizeof(std::int32_t));
    if (r >= 0) r = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return r;
  }

  static int version(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                     sd_bus_error*) {
    return sd_bus_message_append(reply, "u", 3u);
  }
  static int textDirection(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                           sd_bus_error*) {
    return sd_bus_message_append(reply, "s", "ltr");
  }
  static int status(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                    sd_bus_error*) {
    return sd_bus_message_append(reply, "s", "normal");
  }
  static int iconThemePath(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                           sd_bus_error*) {
    return sd_bus_message_append(reply, "as", 0);
  }
};

namespace {

constexpr auto kUnprivileged = SD_BUS_VTABLE_UNPRIVILEGED;
const sd_bus_vtable kVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", &DbusMenuMethods::getLayout, kUnprivileged),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", &DbusMenuMethods::getGroupProperties,
                  kUnprivileged),
    SD_BUS_METHOD("GetProperty", "is", "v", &DbusMenuMethods::getProperty, kUnprivileged),
    SD_BUS_METHOD("Event", "isvu", "", &DbusMenuMethods::event, kUnprivileged),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", &DbusMenuMethods::eventGroup, kUnprivileged),
    SD_BUS_METHOD("AboutToShow", "i", "b", &DbusMenuMethods::aboutToShow, kUnprivileged),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", &DbusMenuMethods::aboutToShowGroup, kUnprivileged),
    SD_BUS_PROPERTY("Version", "u", &DbusMenuMethods::version, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("TextDirection", "s", &DbusMenuMethods::textDirection, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", &DbusMenuMethods::status, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "as", &DbusMenuMethods::iconThemePath, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

int appendProperty(sd_bus_message* m, const std::string& name,
                   const std::variant<std::string, bool, std::int32_t>& value) {
  int r = sd_bus_message_open_container(m, 'e', "sv");
  if (r >= 0) r = sd_bus_message_append(m, "s", name.c_str());
  if (r < 0) return r;
  if (const auto* s = std::get_if<std::string>(&value)) {
    r = sd_bus_message_append(m, "v", "s", s->c_str());
  } else if (const auto* b = std::get_if<bool>(&value)) {
    r = sd_bus_message_append(m, "v", "b", static_cast<int>(*b));
  } else {
    r = sd_bus_message_append(m, "v", "i", std::get<std::int32_t>(value));
  }
  return r < 0 ? r : sd_bus_message_close_container(m);
}

}  // namespace

DbusMenu::DbusMenu(sd_bus* bus, std::function<std::vector<MenuEntry>()> build,
                   std::function<void(MenuAction, const MenuValue&)> choose)
    : bus_(bus), build_(std::move(build)), choose_(std::move(choose)) {
  entries_ = build_();
  items_ = flatten(entries_);
}

DbusMenu::~DbusMenu() { sd_bus_slot_unref(slot_); }

bool DbusMenu::exportObject(std::string& error) {
  if (const int r = sd_bus_add_object_vtable(bus_, &slot_, kObjectPath, kInterface, kVtable, this); r < 0) {
    error = std::string("could not export the menu: ") + std::strerror(-r);
    return false;
  }
  return true;
}

std::vector<DbusMenu::Item> DbusMenu::flatten(const std::vector<MenuEntry>& entries) {
  std::vector<Item> items(1);
  items[0].properties.push_back({"children-display", std::string("submenu")});
  // Depth-first, so an entry's id is its position in reading order.
  const auto add = [&items](const auto& self, const std::vector<MenuEntry>& level,
                            std::size_t parent) -> void {
    for (const MenuEntry& entry : level) {
      const auto id = static_cast<std::int32_t>(items.size());
      items[parent].children.push_back(id);
      Item item;
      item.entry = &entry;
      if (entry.separator) {
        item.properties.push_back({"type", std::string("separator")});
      } else {
        item.properties.push_back({"label", escapeLabel(entry.title)});
        if (!entry.enabled) item.properties.push_back({"enabled", false});
        if (const char* toggle = toggleType(entry.action)) {
          item.properties.push_back({"toggle-type", std::string(toggle)});
          item.properties.push_back({"toggle-state", std::int32_t{entry.checked ? 1 : 0}});
        }
        if (!entry.submenu.empty()) item.properties.push_back({"children-display", std::string("submenu")});
      }
      items.push_back(std::move(item));
      self(self, entry.submenu, static_cast<std::size_t>(id));
    }
  };
  add(add, entries, 0);
  return items;
}

bool DbusMenu::refresh() {
  std::vector<MenuEntry> fresh = build_();
  std::vector<Item> next = flatten(fresh);
  bool sameShape = next.size() == items_.size();
  bool changed = !sameShape;
  for (std::size_t i = 0; sameShape && i < next.size(); ++i) {
    sameShape = next[i].children == items_[i].children &&
                (next[i].entry == nullptr) == (items_[i].entry == nullptr) &&
                (next[i].entry == nullptr || next[i].entry->separator == items_[i].entry->separator);
    changed = changed || next[i].properties != items_[i].properties;
  }
  // Moving the vector keeps its buffer, so the items' entry pointers stay valid.
  entries_ = std::move(fresh);
  std::vector<Item> before = std::exchange(items_, std::move(next));
  if (!changed) return false;
  if (sameShape) {
    emitPropertyChanges(before);
  } else {
    ++revision_;
    sd_bus_emit_signal(bus_, kObjectPath, kInterface, "LayoutUpdated", "ui", revision_, 0);
  }
  return true;
}

void DbusMenu::emitPropertyChanges(const std::vector<Item>& before) const {
  sd_bus_message* m = nullptr;
  if (sd_bus_message_new_signal(bus_, &m, kObjectPath, kInterface, "ItemsPropertiesUpdated") < 0) return;
  int r = sd_bus_message_open_container(m, 'a', "(ia{sv})");
  for (std::size_t id = 0; r >= 0 && id < items_.size(); ++id) {
    if (items_[id].properties == before[id].properties) continue;
    if ((r = sd_bus_message_open_container(m, 'r', "ia{sv}")) < 0) break;
    if ((r = sd_bus_message_append(m, "i", static_cast<std::int32_t>(id))) < 0) break;
    if ((r = appendProperties(m, static_cast<std::int32_t>(id), {})) < 0) break;
    r = sd_bus_message_close_container(m);
  }
  if (r >= 0) r = sd_bus_message_close_container(m);
  // Properties that an item no longer has (an entry enabled again) are named as removed.
  if (r >= 0) r = sd_bus_message_open_container(m, 'a', "(ias)");
  for (std::size_t id = 0; r >= 0 && id < items_.size(); ++id) {
    std::vector<std::string> removed;
    for (const Property& old : before[id].properties) {
      const auto& now = items_[id].properties;
      if (std::none_of(now.begin(), now.end(), [&](const Property& p) { return p.name == old.name; })) {
        removed.push_back(old.name);
      }
    }
    if (removed.empty()) continue;
    if ((r = sd_bus_message_open_container(m, 'r', "ias")) < 0) break;
    if ((r = sd_bus_message_append(m, "i", static_cast<std::int32_t>(id))) < 0) break;
    if ((r = sd_bus_message_open_container(m, 'a', "s")) < 0) break;
    for (const std::string& name : removed) {
      if ((r = sd_bus_message_append(m, "s", name.c_str())) < 0) break;
    }
    if (r >= 0) r = sd_bus_message_close_container(m);
    if (r >= 0) r = sd_bus_message_close_container(m);
  }
  if (r >= 0) r = sd_bus_message_close_container(m);
  if (r >= 0) r = sd_bus_send(bus_, m, nullptr);
  if (r < 0) Log::debug(std::string("Could not announce the menu's changes: ") + std::strerror(-r));
  sd_bus_message_unref(m);
}

int DbusMenu::appendProperties(sd_bus_message* m, std::int32_t id,
                               const std::vector<std::string>& names) const {
  int r = sd_bus_message_open_container(m, 'a', "{sv}");
  for (const Property& p : items_[static_cast<std::size_t>(id)].properties) {
    if (r < 0) return r;
    if (!names.empty() && std::find(names.begin(), names.end(), p.name) == names.end()) continue;
    r = appendProperty(m, p.name, p.value);
  }
  return r < 0 ? r : sd_bus_message_close_container(m);
}

int DbusMenu::appendLayout(sd_bus_message* m, std::int32_t id, int depth,
                           const std::vector<std::string>& names) const {
  int r = sd_bus_message_open_container(m, 'r', "ia{sv}av");
  if (r >= 0) r = sd_bus_message_append(m, "i", id);
  if (r >= 0) r = appendProperties(m, id, names);
  if (r >= 0) r = sd_bus_message_open_container(m, 'a', "v");
  if (depth != 0) {
    for (const std::int32_t child : items_[static_cast<std::size_t>(id)].children) {
      if (r < 0) return r;
      if ((r = sd_bus_message_open_container(m, 'v', "(ia{sv}av)")) < 0) return r;
      if ((r = appendLayout(m, child, depth < 0 ? depth : depth - 1, names)) < 0) return r;
      r = sd_bus_message_close_container(m);
    }
  }
  if (r >= 0) r = sd_bus_message_close_container(m);
  return r < 0 ? r : sd_bus_message_close_container(m);
}

void DbusMenu::activate(std::int32_t id, const std::string& event) {
  if (event != "clicked" || !valid(id)) return;
  const MenuEntry* entry = items_[static_cast<std::size_t>(id)].entry;
  if (!entry || !entry->enabled || entry->action == MenuAction::none) return;
  // Copies: the action may rebuild the menu under us.
  const MenuAction action = entry->action;
  const MenuValue value = entry->value;
  choose_(action, value);
  refresh();
}

}  // namespace quillmark
