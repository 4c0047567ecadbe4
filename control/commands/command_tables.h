#pragma once

#include <span>
#include <string_view>

#include "control/commands/command_item.h"
#include "settings/string_table.h"

namespace korvel::control {

/// A caption, description or tooltip: a text of the string table, or a fixed English one.
struct CommandText {
  int id = 0;  ///< English identifier, 0 for none
  std::string_view fixed = {};
};

/// One row of the menu table. Rows come in order; `depth` 0 is the bar itself.
struct MenuRow {
  int depth;
  std::string_view key;
  ItemKind kind;
  CommandText caption = {};
  CommandText description = {};
  std::string_view shortcut = {};
  bool checked = false;
};

/// One row of the toolbar table; buttons are addressed by their position.
struct ToolbarRow {
  std::string_view key;
  ItemKind kind;
  CommandText toolTip = {};
  bool placeholder = false;
};

/// The tables as data: tests compare the built items, and what widgets show of them, with these rows.
[[nodiscard]] std::span<const MenuRow> menuTable() noexcept;
[[nodiscard]] std::span<const ToolbarRow> toolbarTable() noexcept;

/// Clears `items` and builds them anew from the table. A step that fails leaves its item missing or unset; the rest
/// goes on.
void buildMenu(CommandItems& items, const settings::LanguageOffset& offset);
void buildToolbar(CommandItems& items, const settings::LanguageOffset& offset);
/// The context menu for "Font" or "Column"; any other text leaves it as it was. Fixed English captions.
void buildPopup(CommandItems& items, std::string_view popupItem);

/// Enables or disables what needs a database: toolbar items from the third to the last, then the menu items "TOOLS",
/// "PageSetup" and "Print" (look-ups ignore case; "TOOLS" reaches the menu of that name, which comes first).
void enableToolbarCommands(CommandItems& toolbar, bool enabled);
void enableMenuCommands(CommandItems& menu, bool enabled);

/// The language offset that a language command chooses; "" for a key that is none.
[[nodiscard]] std::string_view languageOffsetOfKey(std::string_view key) noexcept;

}  // namespace korvel::control
