#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "menubar/menu_model.h"

struct sd_bus;
struct sd_bus_message;
struct sd_bus_slot;

namespace quillmark {

// The status item's right-click menu exported over com.canonical.dbusmenu (version 3), which tray
// hosts read and draw themselves. Entries come from build() afresh whenever a host is about to
// show the menu; ids are the entries' depth-first positions (root 0), stable while the menu's
// shape stays the same. A change of labels, checks or enabled states is announced with
// ItemsPropertiesUpdated, a change of shape with a new revision and LayoutUpdated. A "clicked"
// event on an entry with an action calls choose(). Main thread only.
class DbusMenu {
 public:
  static constexpr const char* kObjectPath = "/MenuBar";
  static constexpr const char* kInterface = "com.canonical.dbusmenu";

  DbusMenu(sd_bus* bus, std::function<std::vector<MenuEntry>()> build,
           std::function<void(MenuAction, const MenuValue&)> choose);
  ~DbusMenu();
  DbusMenu(const DbusMenu&) = delete;
  DbusMenu& operator=(const DbusMenu&) = delete;

  [[nodiscard]] bool exportObject(std::string& error);
  // Rebuilds the menu and tells the hosts what changed; true when anything did.
  bool refresh();

  [[nodiscard]] std::uint32_t revision() const { return revision_; }

 private:
  // One dbusmenu property of an item, as it goes on the bus.
  struct Property {
    std::string name;
    std::variant<std::string, bool, std::int32_t> value;
    bool operator==(const Property&) const = default;
  };
  // An entry in the flattened tree; index = id, 0 the root (which has no entry).
  struct Item {
    const MenuEntry* entry = nullptr;
    std::vector<Property> properties;
    std::vector<std::int32_t> children;
  };

  [[nodiscard]] static std::vector<Item> flatten(const std::vector<MenuEntry>& entries);
  [[nodiscard]] bool valid(std::int32_t id) const {
    return id >= 0 && static_cast<std::size_t>(id) < items_.size();
  }
  void emitPropertyChanges(const std::vector<Item>& before) const;
  int appendProperties(sd_bus_message* m, std::int32_t id, const std::vector<std::string>& names) const;
  int appendLayout(sd_bus_message* m, std::int32_t id, int depth,
                   const std::vector<std::string>& names) const;
  void activate(std::int32_t id, const std::string& event);

  sd_bus* bus_;
  sd_bus_slot* slot_ = nullptr;
  std::function<std::vector<MenuEntry>()> build_;
  std::function<void(MenuAction, const MenuValue&)> choose_;
  std::vector<MenuEntry> entries_;
  std::vector<Item> items_;
  std::uint32_t revision_ = 1;

  friend struct DbusMenuMethods;
};

}  // namespace quillmark
