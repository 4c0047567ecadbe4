#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::control {

/// Kinds of items, by the numbers of the menu and toolbar component.
enum class ItemKind {
  button = 100,
  toolbarSeparator = 103,
  topLevelMenu = 107,
  command = 200,
  check = 201,
  option = 202,
  submenu = 203,
  menuSeparator = 204
};

/// One entry of a menu bar, toolbar or context menu and its state. Owns the items inside it.
struct CommandItem {
  std::string key;
  ItemKind kind = ItemKind::command;
  std::string caption;      ///< with `&` before its mnemonic; empty for separators and buttons
  std::string description;  ///< shown in the status bar while the item is highlighted
  std::string toolTip;      ///< toolbar buttons
  std::string shortcutText;
  bool checked = false;
  bool enabled = true;
  /// False only for the toolbar's placeholders: inert slots that keep the positions of the buttons after them.
  bool active = true;
  std::vector<std::unique_ptr<CommandItem>> children;

  CommandItem& add(ItemKind itemKind, std::string itemKey, std::string itemCaption = {});
};

/// The items of one command surface and their look-up: keys ignore case, nested items are found too, and of several
/// items with one key the first added wins.
class CommandItems {
 public:
  /// Called after every change of an item or of the whole; the adapter mirrors it to widgets.
  std::function<void()> changed;

  void clear() { items_.clear(); }
  CommandItem& add(ItemKind kind, std::string key, std::string caption = {});

  [[nodiscard]] const std::vector<std::unique_ptr<CommandItem>>& items() const noexcept { return items_; }
  /// The item with that key; throws Error 91 where there is none.
  [[nodiscard]] CommandItem& item(std::string_view key) const;
  /// Nothing where no item has that key.
  [[nodiscard]] CommandItem* find(std::string_view key) const noexcept;
  /// The top-level item at a position counted from 1.
  [[nodiscard]] CommandItem& at(std::size_t position) const { return *items_.at(position - 1); }
  [[nodiscard]] std::size_t size() const noexcept { return items_.size(); }

  void announceChange() const {
    if (changed) changed();
  }

 private:
  std::vector<std::unique_ptr<CommandItem>> items_;
};

}  // namespace korvel::control
