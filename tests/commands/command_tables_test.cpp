#include "control/commands/command_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "base/error.h"
#include "tests/support/watched_allocations.h"

namespace korvel::control {
namespace {

using settings::LanguageOffset;

const LanguageOffset english("0");
const LanguageOffset german("10000");

/// A surface as text, one item a line: "KEY kind caption | description | tooltip [flags]".
std::string printed(const CommandItems& items) {
  std::ostringstream out;
  const std::function<void(const CommandItem&, int)> print = [&](const CommandItem& item, int depth) {
    out << std::string(static_cast<std::size_t>(depth) * 2, ' ') << (item.key.empty() ? "-" : item.key) << ' '
        << static_cast<int>(item.kind);
    for (const auto* text : {&item.caption, &item.description, &item.toolTip, &item.shortcutText})
      if (!text->empty()) out << " | " << *text;
    if (item.checked) out << " [checked]";
    if (!item.enabled) out << " [off]";
    if (!item.active) out << " [slot]";
    out << '\n';
    for (const auto& child : item.children) print(*child, depth + 1);
  };
  for (const auto& item : items.items()) print(*item, 0);
  return out.str();
}

CommandItems menu(const LanguageOffset& offset) {
  CommandItems items;
  buildMenu(items, offset);
  return items;
}

CommandItems toolbar(const LanguageOffset& offset) {
  CommandItems items;
  buildToolbar(items, offset);
  return items;
}

TEST(Menu, StandsInItsOrder) {
  EXPECT_EQ(printed(menu(english)),
            "FILE 107 | File\n"
            "  SELECT 200 | &Select Database | Select database to view.\n"
            "  - 204\n"
            "  PAGESETUP 200 | Pa&ge Setup | Setup current results for printing.\n"
            "  PRINT 200 | Prin&t | Print current results.\n"
            "  - 204\n"
            "  EXIT 200 | E&xit | Exit viewer | Alt+x\n"
            "TOOLS 107 | &Tools\n"
            "  QUERY 200 | &Query | Query database\n"
            "  CLEAR 200 | &Clear | Clear current results\n"
            "  SELECTALLFILTERS 200 | &Select ALL Filters | Select ALL Filters\n"
            "  CLEARALLFILTERS 200 | C&lear ALL Filters | Clear ALL Filters\n"
            "  - 204\n"
            "  EXPORTEXCEL 200 | Export Data | Export current results.\n"
            "  - 204\n"
            "  FONT 200 | Change &Font | Change viewer font\n"
            "Language 107 | Language\n"
            "  LANGUAGE 203 | Language\n"
            "    ENGLISH 202 | English\n"
            "    GERMAN 202 | German\n"
            "    FRENCH 202 | French\n"
            "    SPANISH 202 | Spanish\n"
            "    ITALIAN 202 | Italian\n"
            "VIEW 107 | &View\n"
            "  TOOLS 201 | &Tools | View side tools [checked]\n"
            "  KEY 201 | &Entry ID | View database key fields [checked]\n"
            "HELP 107 | &Help\n"
            "  ABOUT 200 | &About | View about window\n");
}

TEST(Toolbar, StandsInItsOrder) {
  EXPECT_EQ(printed(toolbar(english)),
            "- 103\n"
            "SELECT 100 | Select Database\n"
            "INFO 100 | Database Information\n"
            "- 103\n"
            "QUERY 100 | Run Query\n"
            "CLEAR 100 | Clear Results\n"
            "- 103\n"
            "SELECTALLFILTERS 100 | Select ALL Filter Criteria\n"
            "CLEARALLFILTERS 100 | Clear ALL Filter Criteria\n"
            "DUMMY 100 [slot]\n"
            "EXPORTEXCEL 100 | Export Data\n"
            "DUMMY1 100 [slot]\n"
            "- 103\n"
            "ADJUSTCOL 100\n"
            "TOOLS 100\n"
            "- 103\n"
            "DUMMY2 100 [slot]\n"
            "PRINT 100 | Print\n");
}

TEST(Menu, SpeaksGermanButForTheLanguageMenu) {
  const CommandItems items = menu(german);
  EXPECT_EQ(items.item("FILE").caption, "Datei");
  EXPECT_EQ(items.at(2).caption, "&Extras");
  EXPECT_EQ(items.at(3).caption, "Language");
  EXPECT_EQ(items.item("GERMAN").caption, "German");
  const CommandItems originals = menu(english);
  for (const char* key : {"SELECT", "PAGESETUP", "PRINT", "EXIT", "QUERY", "CLEAR", "FONT", "KEY", "ABOUT"}) {
    EXPECT_NE(items.item(key).caption, originals.item(key).caption) << key;
    EXPECT_NE(items.item(key).description, originals.item(key).description) << key;
  }
}

TEST(Menu, OnlyExitHasAShortcut) {
  const CommandItems items = menu(english);
  for (const MenuRow& row : menuTable()) EXPECT_EQ(row.shortcut, row.key == "EXIT" ? "Alt+x" : "") << row.key;
  EXPECT_EQ(items.item("EXIT").shortcutText, "Alt+x");
}

TEST(LookUp, IgnoresCaseSearchesInsideAndFirstWins) {
  const CommandItems items = menu(english);
  EXPECT_EQ(&items.item("tools"), &items.at(2));
  EXPECT_EQ(items.item("PageSetup").caption, "Pa&ge Setup");
  EXPECT_EQ(items.item("italian").caption, "Italian");
  EXPECT_EQ(items.find("NOTHING"), nullptr);
  EXPECT_EQ(items.find(""), nullptr) << "separators have no key to be found by";
  EXPECT_THROW((void)items.item("NOTHING"), Error);
}

TEST(Locking, ReachesEveryToolbarItemFromTheThirdOn) {
  CommandItems items = toolbar(english);
  enableToolbarCommands(items, false);
  for (std::size_t position = 1; position <= items.size(); ++position)
    EXPECT_EQ(items.at(position).enabled, position < 3) << position;
  EXPECT_TRUE(items.item("SELECT").enabled);
  EXPECT_FALSE(items.item("INFO").enabled);
  enableToolbarCommands(items, true);
  for (std::size_t position = 1; position <= items.size(); ++position) EXPECT_TRUE(items.at(position).enabled);
}

TEST(Locking, ReachesTheToolsMenuPageSetupAndPrintOnly) {
  CommandItems items = menu(english);
  enableMenuCommands(items, false);
  EXPECT_FALSE(items.at(2).enabled);
  EXPECT_FALSE(items.item("PAGESETUP").enabled);
  EXPECT_FALSE(items.item("PRINT").enabled);
  for (const char* key : {"FILE", "SELECT", "EXIT", "Language", "VIEW", "KEY", "HELP", "ABOUT", "QUERY"})
    EXPECT_TRUE(items.item(key).enabled) << key;
  EXPECT_TRUE(items.item("VIEW").children.front()->enabled) << "View > Tools is another item than the Tools menu";
  enableMenuCommands(items, true);
  EXPECT_TRUE(items.at(2).enabled);
}

TEST(Locking, OfAMenuThatWasNeverBuiltIsAnError) {
  CommandItems items;
  EXPECT_THROW(enableMenuCommands(items, false), Error);
}

TEST(Popup, FontAndColumn) {
  CommandItems items;
  buildPopup(items, "Font");
  EXPECT_EQ(printed(items), "POPUP 107\n  FONT 200 | Change Font\n");
  buildPopup(items, "Column");
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items.at(1).children.size(), 17U);
  EXPECT_EQ(items.at(1).children.front()->key, "Entry ID");
  EXPECT_EQ(items.at(1).children.back()->caption, "Comments");
  EXPECT_EQ(items.find("Summer Time"), nullptr);
}

TEST(Popup, AnyOtherTextChangesNothing) {
  CommandItems items;
  buildPopup(items, "Font");
  for (const char* other : {"", "font", "COLUMN", "Columns"}) {
    buildPopup(items, other);
    EXPECT_EQ(printed(items), "POPUP 107\n  FONT 200 | Change Font\n") << other;
  }
}

TEST(LanguageKeys, ChooseTheirOffsets) {
  const std::map<std::string, std::string> expected = {
      {"ENGLISH", "0"}, {"GERMAN", "10000"}, {"FRENCH", "20000"}, {"SPANISH", "30000"}, {"ITALIAN", "40000"}};
  for (const auto& [key, offset] : expected) EXPECT_EQ(languageOffsetOfKey(key), offset);
  EXPECT_EQ(languageOffsetOfKey("german"), "") << "dispatch compares exactly";
}

TEST(Building, AgainAnnouncesAndResetsCheckMarks) {
  CommandItems items;
  int announced = 0;
  items.changed = [&] { ++announced; };
  buildMenu(items, english);
  items.item("KEY").checked = false;
  enableMenuCommands(items, false);
  buildMenu(items, english);
  EXPECT_TRUE(items.item("KEY").checked);
  EXPECT_TRUE(items.at(2).enabled);
  EXPECT_EQ(announced, 3);
}

// --- where memory runs out ------------------------------------------------------------------------------------------

/// The items by the keys that lead to them: "VIEW/TOOLS".
std::multiset<std::string> paths(const CommandItems& items) {
  std::multiset<std::string> all;
  const std::function<void(const CommandItem&, const std::string&)> walk = [&](const CommandItem& item,
                                                                               const std::string& above) {
    const std::string path = above + '/' + item.key;
    all.insert(path);
    for (const auto& child : item.children) walk(*child, path);
  };
  for (const auto& item : items.items()) walk(*item, {});
  return all;
}

/// Builds with one allocation failing, the next one each time, until there is none left to fail.
void expectGapsOnly(const std::function<void(CommandItems&)>& build) {
  CommandItems whole;
  build(whole);
  const std::multiset<std::string> expected = paths(whole);
  std::size_t withGaps = 0;
  for (std::size_t successes = 0;; ++successes) {
    ASSERT_LT(successes, 1000U);
    CommandItems items;
    int announced = 0;
    items.changed = [&] { ++announced; };
    const std::size_t before = test::allocationCount();
    {
      const test::FailingAllocations failing(successes, 1);
      build(items);
    }
    const bool failed = test::allocationCount() - before > successes;
    EXPECT_EQ(announced, 1) << successes;
    const std::multiset<std::string> built = paths(items);
    EXPECT_TRUE(std::includes(expected.begin(), expected.end(), built.begin(), built.end())) << successes << '\n'
                                                                                             << printed(items);
    if (built.size() < expected.size()) ++withGaps;
    if (!failed) break;
  }
  EXPECT_GT(withGaps, expected.size() / 2);
}

TEST(Building, AMenuThatCannotBeAddedTakesItsEntriesWithIt) {
  expectGapsOnly([](CommandItems& items) { buildMenu(items, english); });
}

TEST(Building, TheToolbarGoesOnAfterAButtonThatCannotBeAdded) {
  expectGapsOnly([](CommandItems& items) { buildToolbar(items, english); });
}

TEST(Building, TheContextMenusGoOnAfterAnEntryThatCannotBeAdded) {
  expectGapsOnly([](CommandItems& items) { buildPopup(items, "Font"); });
  expectGapsOnly([](CommandItems& items) { buildPopup(items, "Column"); });
}

}  // namespace
}  // namespace korvel::control
