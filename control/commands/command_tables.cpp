#include "control/commands/command_tables.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/error.h"

namespace korvel::control {

namespace {

using Kind = ItemKind;

constexpr CommandText text(int id) {
  return {id, {}};
}
constexpr CommandText fixedText(std::string_view english) {
  return {0, english};
}

// The language menu is deliberately not translated, and the current language is not checked. The two items keyed
// "TOOLS" are deliberate too: the menu comes first, so a look-up by key finds the menu.
constexpr std::array menuRows = {
    MenuRow{0, "FILE", Kind::topLevelMenu, text(10001)},
    MenuRow{1, "SELECT", Kind::command, text(10002), text(10003)},
    MenuRow{1, "", Kind::menuSeparator},
    MenuRow{1, "PAGESETUP", Kind::command, text(10006), text(10007)},
    MenuRow{1, "PRINT", Kind::command, text(10008), text(10009)},
    MenuRow{1, "", Kind::menuSeparator},
    MenuRow{1, "EXIT", Kind::command, text(10010), text(10011), "Alt+x"},
    MenuRow{0, "TOOLS", Kind::topLevelMenu, text(10012)},
    MenuRow{1, "QUERY", Kind::command, text(10013), text(10014)},
    MenuRow{1, "CLEAR", Kind::command, text(10015), text(10016)},
    MenuRow{1, "SELECTALLFILTERS", Kind::command, text(10017), text(10018)},
    MenuRow{1, "CLEARALLFILTERS", Kind::command, text(10019), text(10020)},
    MenuRow{1, "", Kind::menuSeparator},
    MenuRow{1, "EXPORTEXCEL", Kind::command, text(10021), text(10022)},
    MenuRow{1, "", Kind::menuSeparator},
    MenuRow{1, "FONT", Kind::command, text(10025), text(10026)},
    MenuRow{0, "Language", Kind::topLevelMenu, fixedText("Language")},
    MenuRow{1, "LANGUAGE", Kind::submenu, fixedText("Language")},
    MenuRow{2, "ENGLISH", Kind::option, fixedText("English")},
    MenuRow{2, "GERMAN", Kind::option, fixedText("German")},
    MenuRow{2, "FRENCH", Kind::option, fixedText("French")},
    MenuRow{2, "SPANISH", Kind::option, fixedText("Spanish")},
    MenuRow{2, "ITALIAN", Kind::option, fixedText("Italian")},
    MenuRow{0, "VIEW", Kind::topLevelMenu, text(10027)},
    MenuRow{1, "TOOLS", Kind::check, text(10028), text(10029), {}, true},
    MenuRow{1, "KEY", Kind::check, text(10030), text(10031), {}, true},
    MenuRow{0, "HELP", Kind::topLevelMenu, text(10032)},
    MenuRow{1, "ABOUT", Kind::command, text(10037), text(10038)},
};

// Positions count: locking addresses the buttons from the third onwards.
constexpr std::array toolbarRows = {
    ToolbarRow{"", Kind::toolbarSeparator},
    ToolbarRow{"SELECT", Kind::button, text(10044)},
    ToolbarRow{"INFO", Kind::button, text(10045)},
    ToolbarRow{"", Kind::toolbarSeparator},
    ToolbarRow{"QUERY", Kind::button, text(10046)},
    ToolbarRow{"CLEAR", Kind::button, text(10047)},
    ToolbarRow{"", Kind::toolbarSeparator},
    ToolbarRow{"SELECTALLFILTERS", Kind::button, text(10048)},
    ToolbarRow{"CLEARALLFILTERS", Kind::button, text(10049)},
    ToolbarRow{"DUMMY", Kind::button, {}, true},
    ToolbarRow{"EXPORTEXCEL", Kind::button, text(10050)},
    ToolbarRow{"DUMMY1", Kind::button, {}, true},
    ToolbarRow{"", Kind::toolbarSeparator},
    ToolbarRow{"ADJUSTCOL", Kind::button},
    ToolbarRow{"TOOLS", Kind::button},
    ToolbarRow{"", Kind::toolbarSeparator},
    ToolbarRow{"DUMMY2", Kind::button, {}, true},
    ToolbarRow{"PRINT", Kind::button, text(10053)},
};

// "Summer Time" is deliberately not among them.
constexpr std::array<std::string_view, 17> columnPopupEntries = {
    "Entry ID",  "Date Time",  "Project GUID", "Database Name", "Application Name", "Area",    "Item",
    "Event",     "Item ID",    "Old Value",    "New Value",     "PC Name",          "OS User", "Application User",
    "User Name", "Audit Type", "Comments"};

struct LanguageKey {
  std::string_view key;
  std::string_view offset;
};
constexpr std::array<LanguageKey, 5> languageKeys = {
    {{"ENGLISH", "0"}, {"GERMAN", "10000"}, {"FRENCH", "20000"}, {"SPANISH", "30000"}, {"ITALIAN", "40000"}}};

constexpr std::size_t menuDepths = 3;
static_assert(std::all_of(menuRows.begin(), menuRows.end(),
                          [](const MenuRow& row) { return row.depth >= 0 && std::size_t(row.depth) < menuDepths; }));

constexpr std::size_t firstLockedButton = 3;
constexpr std::array<std::string_view, 3> lockedMenuKeys = {"TOOLS", "PageSetup", "Print"};

/// The text in the language of the offset; "" for none.
std::string commandText(const CommandText& text, const settings::LanguageOffset& offset) {
  if (text.id == 0) return std::string(text.fixed);
  return std::string(settings::loadText({text.id}, offset));
}

}  // namespace

std::span<const MenuRow> menuTable() noexcept {
  return menuRows;
}
std::span<const ToolbarRow> toolbarTable() noexcept {
  return toolbarRows;
}

void buildMenu(CommandItems& items, const settings::LanguageOffset& offset) {
  items.clear();
  // The last item at each depth, null while its row is being added: items of a menu that could not be added are left
  // out, instead of going into the menu before it.
  std::array<CommandItem*, menuDepths> parents{};
  for (const MenuRow& row : menuRows) {
    const auto depth = static_cast<std::size_t>(row.depth);
    std::fill(parents.begin() + row.depth, parents.end(), nullptr);
    if (depth > 0 && parents.at(depth - 1) == nullptr) continue;
    skipFailing([&] {
      const std::string key(row.key);
      CommandItem& item = depth == 0 ? items.add(row.kind, key) : parents.at(depth - 1)->add(row.kind, key);
      parents.at(depth) = &item;
      skipFailing([&] { item.caption = commandText(row.caption, offset); });
      skipFailing([&] { item.description = commandText(row.description, offset); });
      item.shortcutText = row.shortcut;
      item.checked = row.checked;
    });
  }
  items.announceChange();
}

void buildToolbar(CommandItems& items, const settings::LanguageOffset& offset) {
  items.clear();
  for (const ToolbarRow& row : toolbarRows) {
    skipFailing([&] {
      CommandItem& item = items.add(row.kind, std::string(row.key));
      item.active = !row.placeholder;
      skipFailing([&] { item.toolTip = commandText(row.toolTip, offset); });
    });
  }
  items.announceChange();
}

void buildPopup(CommandItems& items, std::string_view popupItem) {
  const bool font = popupItem == "Font";
  if (!font && popupItem != "Column") return;
  items.clear();
  CommandItem* root = nullptr;
  skipFailing([&] { root = &items.add(Kind::topLevelMenu, "POPUP"); });
  const auto addEntry = [root](Kind kind, std::string_view key, std::string_view caption) {
    skipFailing([&] { root->add(kind, std::string(key), std::string(caption)); });
  };
  if (root != nullptr && font) addEntry(Kind::command, "FONT", "Change Font");
  if (root != nullptr && !font)
    for (const auto entry : columnPopupEntries) addEntry(Kind::check, entry, entry);
  items.announceChange();
}

void enableToolbarCommands(CommandItems& toolbar, bool enabled) {
  for (std::size_t position = firstLockedButton; position <= toolbar.size(); ++position)
    toolbar.at(position).enabled = enabled;
  toolbar.announceChange();
}

void enableMenuCommands(CommandItems& menu, bool enabled) {
  for (const auto key : lockedMenuKeys) menu.item(key).enabled = enabled;
  menu.announceChange();
}

std::string_view languageOffsetOfKey(std::string_view key) noexcept {
  for (const auto& language : languageKeys)
    if (language.key == key) return language.offset;
  return {};
}

}  // namespace korvel::control
