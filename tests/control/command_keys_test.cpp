// Keys of commands, including those without an item in the tables.
#include "base/error.h"
#include "control/command_menus.h"
#include "control/command_toolbar.h"
#include "tests/control/command_surfaces.h"

namespace korvel::test {
namespace {

using control::libraryState;

/// Commands outside the tables, added to a viewer's menus and chosen there.
class Keys : public CommandTest {
 protected:
  static void onMenu(const AuditViewer& viewer, control::CommandItems& items, const std::string& key) {
    items.clear();
    items.add(control::ItemKind::command, key, key);
    auto& bar = *element<control::CommandMenuBar>(viewer, "SmartMenu");
    bar.mirror(items);
    run(bar.actions().value(0));
  }
  static void onToolbar(const AuditViewer& viewer, control::CommandItems& items, const std::string& key) {
    items.clear();
    items.add(control::ItemKind::button, key);
    auto& bar = *element<control::CommandToolbar>(viewer, "SmartToolbar");
    bar.mirror(items);
    run(bar.actions().value(0));
  }
  /// Also where the command is off: its function is called directly.
  static void run(QAction* action) {
    ASSERT_NE(action, nullptr);
    action->setEnabled(true);
    action->trigger();
  }
  /// All effects of commands on services and on widgets.
  QString traces(const AuditViewer& viewer) const {
    return QStringLiteral("%1 boxes, %2 forms, %3 helps, %4 queries, %5 tree %6")
        .arg(recorder->messages.size())
        .arg(recorder->shownForms.size())
        .arg(recorder->helpOpened.size())
        .arg(recorder->pointers.size())
        .arg(viewer.ViewSideTools())
        .arg(treeText(viewer));
  }
  control::CommandItems items;
};

TEST_F(Keys, OfTheHelpCommandsOpenTheHelp) {
  const auto viewer = shownViewer();
  onMenu(*viewer, items, "CONTENTSHELP");
  ASSERT_EQ(recorder->helpOpened.size(), 1);
  EXPECT_EQ(recorder->helpOpened.last().second, control::HelpCommand::contents);
  onMenu(*viewer, items, "SEARCHHELP");
  ASSERT_EQ(recorder->helpOpened.size(), 2);
  EXPECT_EQ(recorder->helpOpened.last().second, control::HelpCommand::index);
  // The toolbar does not know them.
  onToolbar(*viewer, items, "CONTENTSHELP");
  onToolbar(*viewer, items, "SEARCHHELP");
  EXPECT_EQ(recorder->helpOpened.size(), 2);
}

TEST_F(Keys, ThatAreKnownAndDoNothingCanBeChosen) {
  const auto viewer = shownViewer();
  const QString before = traces(*viewer);
  for (const char* key : {"PRINTPREVIEW", "EXPORTNOTEPAD"}) {
    onMenu(*viewer, items, key);
    element<control::CommandMenuBar>(*viewer, "SmartMenu")->mirror(items);
    EXPECT_TRUE(menuBar(*viewer)->actions().value(0)->isEnabled()) << key;
  }
  onToolbar(*viewer, items, "PRINTPREVIEW");
  element<control::CommandToolbar>(*viewer, "SmartToolbar")->mirror(items);
  EXPECT_TRUE(toolBar(*viewer)->actions().value(0)->isEnabled());
  EXPECT_EQ(traces(*viewer), before);
}

TEST_F(Keys, OfTheTextExportExportsFromTheToolbarOnly) {
  const auto viewer = shownViewer();
  onMenu(*viewer, items, "EXPORTNOTEPAD");
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
  onToolbar(*viewer, items, "EXPORTNOTEPAD");
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_EQ(recorder->messages[0].text, "Nothing to Export");
}

TEST_F(Keys, AreComparedToTheLetter) {
  const auto viewer = shownViewer();
  const QString before = traces(*viewer);
  for (const char* key : {"query", "Query", "QUERY ", "QUER", "Select", "about", "tools", "ContentsHelp",
                          "clearallFilters", "German", "", "NOTHING"}) {
    onMenu(*viewer, items, key);
    element<control::CommandMenuBar>(*viewer, "SmartMenu")->mirror(items);
    EXPECT_FALSE(menuBar(*viewer)->actions().value(0)->isEnabled()) << key;
    onToolbar(*viewer, items, key);
    EXPECT_EQ(traces(*viewer), before) << key;
  }
  EXPECT_EQ(libraryState().language.text(), "0");
  // The same way, and the right letters.
  onMenu(*viewer, items, "CLEARALLFILTERS");
  EXPECT_NE(traces(*viewer), before);
  onToolbar(*viewer, items, "SELECTALLFILTERS");
  EXPECT_EQ(traces(*viewer), before);
}

}  // namespace
}  // namespace korvel::test
