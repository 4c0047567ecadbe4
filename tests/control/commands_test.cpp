#include <QHeaderView>

#include "base/error.h"
#include "control/command_menus.h"
#include "control/command_toolbar.h"
#include "control/commands/command_tables.h"
#include "control/result_list_view.h"
#include "control/texts.h"
#include "tests/control/command_surfaces.h"
#include "tests/control/exports_fixture.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ui::MessageIcon;
using Menu = CommandTest;
using Toolbar = CommandTest;
using StatusHelp = CommandTest;
using Dispatch = CommandTest;

struct LanguageCase {
  const char* entry;
  int offset;
};
constexpr std::array<LanguageCase, 5> languages = {{{"Language/LANGUAGE/GERMAN", 10000},
                                                    {"Language/LANGUAGE/FRENCH", 20000},
                                                    {"Language/LANGUAGE/SPANISH", 30000},
                                                    {"Language/LANGUAGE/ITALIAN", 40000},
                                                    {"Language/LANGUAGE/ENGLISH", 0}}};

int pixels(const QWidget& widget, int twips) {
  return qRound(double(twips) * widget.logicalDpiX() / 1440);
}

TEST_F(Menu, StandsOnTheControlInItsOrder) {
  recorder->forms.insert("frmPrintFont");
  const auto viewer = shownViewer();
  EXPECT_EQ(printed(*menuBar(*viewer)).toStdString(),
            "File\n"
            "  &Select Database\n"
            "  -\n"
            "  Pa&ge Setup\n"
            "  Prin&t\n"
            "  -\n"
            "  E&xit  Alt+x\n"
            "&Tools\n"
            "  &Query\n"
            "  &Clear\n"
            "  &Select ALL Filters\n"
            "  C&lear ALL Filters\n"
            "  -\n"
            "  Export Data\n"
            "  -\n"
            "  Change &Font\n"
            "Language\n"
            "  Language\n"
            "    English\n"
            "    German\n"
            "    French\n"
            "    Spanish\n"
            "    Italian\n"
            "&View\n"
            "  [x] &Tools\n"
            "  [x] &Entry ID\n"
            "&Help\n"
            "  &About\n");
}

TEST_F(Toolbar, StandsOnTheControlInItsOrder) {
  const auto viewer = shownViewer();
  EXPECT_EQ(
      printedToolbar(*viewer),
      "| SELECT INFO | QUERY CLEAR | SELECTALLFILTERS CLEARALLFILTERS _ EXPORTEXCEL _ | ADJUSTCOL TOOLS | _ PRINT");
  EXPECT_EQ(toolBar(*viewer)->height(), pixels(*viewer, 600));
}

TEST_F(Toolbar, EveryButtonHasADrawingANameAndTheTooltipOfItsTable) {
  const auto viewer = shownViewer();
  for (const control::ToolbarRow& row : control::toolbarTable()) {
    if (row.kind != control::ItemKind::button || row.placeholder) continue;
    const QToolButton& face = *button(*viewer, QString::fromUtf8(row.key.data(), qsizetype(row.key.size())));
    EXPECT_FALSE(face.icon().isNull()) << row.key;
    EXPECT_FALSE(face.accessibleName().isEmpty()) << row.key;
    EXPECT_EQ(face.toolTip(), row.toolTip.id == 0 ? QString() : tableText(row.toolTip.id, 0)) << row.key;
  }
  // Also after something about them has changed.
  viewer->LockControls();
  viewer->UnlockControls();
  EXPECT_EQ(button(*viewer, "ADJUSTCOL")->toolTip(), "");
  EXPECT_EQ(button(*viewer, "TOOLS")->toolTip(), "");
}

TEST_F(Toolbar, FollowsItsPropertyAndLeavesItsRoom) {
  const auto viewer = shownViewer();
  const QRect below = element(*viewer, "SSTab1")->geometry();
  const int height = toolBar(*viewer)->height();
  viewer->setViewToolBar(false);
  EXPECT_FALSE(toolBar(*viewer)->isVisible());
  EXPECT_EQ(element(*viewer, "SSTab1")->geometry(), below.adjusted(0, -height, 0, 0));
  viewer->setViewToolBar(true);
  EXPECT_TRUE(toolBar(*viewer)->isVisible());
  EXPECT_EQ(element(*viewer, "SSTab1")->geometry(), below);
}

TEST_F(Toolbar, AStoredPropertyTakesEffectAtTheNextShow) {
  const auto viewer = newViewer();
  EXPECT_EQ(viewer->ReadProperties(QVariantMap{{"ViewToolBar", false}}), "");
  viewer->show();
  EXPECT_FALSE(toolBar(*viewer)->isVisible());
  EXPECT_EQ(viewer->ReadProperties(QVariantMap{}), "");
  EXPECT_FALSE(toolBar(*viewer)->isVisible());
  viewer->hide();
  viewer->show();
  EXPECT_TRUE(toolBar(*viewer)->isVisible());
}

TEST_F(Menu, TheBarsLieAboveEverythingElse) {
  const auto viewer = shownViewer();
  const QRect menu = menuBar(*viewer)->geometry();
  const QRect bar = toolBar(*viewer)->geometry();
  EXPECT_EQ(menu.topLeft(), QPoint(0, 0));
  EXPECT_EQ(menu.width(), viewer->width());
  EXPECT_EQ(bar.topLeft(), QPoint(0, menu.height()));
  EXPECT_EQ(bar.width(), viewer->width());
  EXPECT_EQ(element(*viewer, "SSTab1")->y(), pixels(*viewer, 75) + menu.height() + bar.height());
  EXPECT_GT(element(*viewer, "frameFilter")->y(), bar.bottom());
}

TEST_F(Menu, OnlyExitHasAShortcut) {
  const auto viewer = shownViewer();
  int entries = 0;
  const QList<QAction*> actions = viewer->findChildren<QAction*>();
  for (const QAction* action : actions) {
    if (action->text().isEmpty()) continue;
    ++entries;
    const bool exit = action->objectName() == "EXIT";
    EXPECT_EQ(action->text().contains('\t'), exit) << action->text().toStdString();
    EXPECT_EQ(action->shortcut().isEmpty(), !exit) << action->text().toStdString();
  }
  EXPECT_GT(entries, 20);
  EXPECT_TRUE(entry(*viewer, "FILE/EXIT")->text().endsWith("\tAlt+x"));
}

TEST_F(Menu, NoLanguageCarriesAMark) {
  const auto viewer = shownViewer();
  choose(*viewer, "Language/LANGUAGE/GERMAN");
  const QList<QAction*> entries = entry(*viewer, "Language/LANGUAGE")->menu()->actions();
  ASSERT_EQ(entries.size(), 5);
  for (const QAction* one : entries) EXPECT_FALSE(one->isCheckable()) << one->text().toStdString();
}

TEST_F(StatusHelp, AHighlightedItemShowsItsDescription) {
  const auto viewer = shownViewer();
  QMenuBar* bar = menuBar(*viewer);
  QAction* tools = entry(*viewer, "TOOLS");
  QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(tools).center());
  EXPECT_EQ(statusPanel(*viewer), "");
  QTest::keyClick(tools->menu(), Qt::Key_Down);
  EXPECT_EQ(statusPanel(*viewer), "Query database");
  QTest::keyClick(tools->menu(), Qt::Key_Down);
  EXPECT_EQ(statusPanel(*viewer), "Clear current results");
  QTest::keyClick(tools->menu(), Qt::Key_Escape);
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(StatusHelp, ShowsTheDescriptionOfEveryItemUnderThePointer) {
  const auto viewer = shownViewer();
  QMenuBar* bar = menuBar(*viewer);
  QAction* file = entry(*viewer, "FILE");
  QMenu* menu = file->menu();
  QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(file).center());
  const auto moveTo = [&](QAction* action) {
    QTest::mouseMove(menu, menu->actionGeometry(action).center());
    QCoreApplication::processEvents();
  };
  QAction* const select = entry(*viewer, "FILE/SELECT");
  QAction* const disabled = entry(*viewer, "FILE/PAGESETUP");
  ASSERT_FALSE(disabled->isEnabled());
  moveTo(select);
  ASSERT_EQ(statusPanel(*viewer), tableText(10003, 0));
  moveTo(menu->actions().at(1));
  ASSERT_TRUE(menu->actions().at(1)->isSeparator());
  EXPECT_EQ(statusPanel(*viewer), "");
  moveTo(select);
  EXPECT_EQ(statusPanel(*viewer), tableText(10003, 0));
  moveTo(disabled);
  EXPECT_EQ(statusPanel(*viewer), tableText(10007, 0));
  moveTo(select);
  // As the window system sends it while a menu is open: to the menu, with the bar at negative coordinates.
  QTest::mouseMove(menu, menu->mapFromGlobal(bar->mapToGlobal(bar->actionGeometry(file).center())));
  QCoreApplication::processEvents();
  EXPECT_TRUE(menu->isVisible());
  EXPECT_EQ(statusPanel(*viewer), "");
  menu->close();
}

TEST_F(StatusHelp, AClosedMenuGivesTheWarningOfATruncatedAnswerBack) {
  const auto viewer = shownViewer();
  server.resultSets = {std::vector<CannedRow>(5000, record("1", "CS"))};
  click(*viewer, "btQuery");
  const QString warning = statusPanel(*viewer);
  ASSERT_NE(warning, "");
  activate(*viewer);
  element(*viewer, "tvTreeView")->setFocus();
  QAction* view = entry(*viewer, "VIEW");
  QMenuBar* bar = menuBar(*viewer);
  QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(view).center());
  QTest::keyClick(view->menu(), Qt::Key_Down);
  EXPECT_EQ(statusPanel(*viewer), "View side tools");
  // The first leaves the menu, the second the menu bar.
  QTest::keyClick(view->menu(), Qt::Key_Escape);
  QTest::keyClick(bar, Qt::Key_Escape);
  EXPECT_EQ(statusPanel(*viewer), warning);
}

/// Every caption, description and tooltip as the tables have it in that language.
class Captions : public CommandTest {
 protected:
  static QString expected(const control::CommandText& text, int offset) {
    return text.id == 0 ? QString::fromUtf8(text.fixed.data(), qsizetype(text.fixed.size()))
                        : tableText(text.id, offset);
  }

  static void expectMenu(const AuditViewer& viewer, int offset) {
    // The stack of menus on the current path.
    std::vector<std::pair<const QWidget*, qsizetype>> stack = {{menuBar(viewer), 0}};
    for (const control::MenuRow& row : control::menuTable()) {
      SCOPED_TRACE(std::string(row.key));
      stack.resize(static_cast<std::size_t>(row.depth) + 1);
      auto& [container, next] = stack.back();
      ASSERT_LT(next, container->actions().size());
      QAction* action = container->actions()[next++];
      if (row.kind == control::ItemKind::menuSeparator) {
        EXPECT_TRUE(action->isSeparator());
        continue;
      }
      const QString shortcut = QString::fromUtf8(row.shortcut.data(), qsizetype(row.shortcut.size()));
      EXPECT_EQ(action->text(), expected(row.caption, offset) + (shortcut.isEmpty() ? "" : '\t' + shortcut));
      action->hover();
      EXPECT_EQ(statusPanel(viewer), expected(row.description, offset));
      if (action->menu() != nullptr) stack.emplace_back(action->menu(), 0);
    }
  }

  static void expectToolbar(const AuditViewer& viewer, int offset) {
    for (const control::ToolbarRow& row : control::toolbarTable()) {
      if (row.kind != control::ItemKind::button || row.placeholder) continue;
      const QToolButton& face = *button(viewer, QString::fromUtf8(row.key.data(), qsizetype(row.key.size())));
      EXPECT_EQ(face.toolTip(), expected(row.toolTip, offset)) << row.key;
      if (row.toolTip.id == 0) continue;
      EXPECT_EQ(face.accessibleName(), expected(row.toolTip, offset)) << row.key;
    }
  }
};

TEST_F(Captions, FollowTheLanguageCommandEverywhere) {
  const auto viewer = shownViewer();
  for (const LanguageCase& language : languages) {
    SCOPED_TRACE(language.entry);
    choose(*viewer, language.entry);
    EXPECT_EQ(settings.values["Language"], std::to_string(language.offset));
    EXPECT_EQ(libraryState().language.text(), std::to_string(language.offset));
    expectMenu(*viewer, language.offset);
    expectToolbar(*viewer, language.offset);
    EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), tableText(10040, language.offset));
    EXPECT_EQ(element(*viewer, "btQuery")->toolTip(), tableText(10046, language.offset));
  }
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_F(Captions, NamesOfButtonsWithoutATooltipFollowTheLanguageToo) {
  const auto viewer = shownViewer();
  const QString english = button(*viewer, "ADJUSTCOL")->accessibleName();
  choose(*viewer, "Language/LANGUAGE/FRENCH");
  EXPECT_NE(button(*viewer, "ADJUSTCOL")->accessibleName(), english);
  EXPECT_EQ(button(*viewer, "TOOLS")->accessibleName(), tableText(10029, 20000));
}

class EveryCommand : public Outputs, public ::testing::WithParamInterface<LanguageCase> {
 protected:
  static int checkedNodes(const AuditViewer& viewer) {
    return static_cast<int>(treeText(viewer).count(QLatin1String("[x]")));
  }
};

TEST_P(EveryCommand, OfTheMenuActs) {
  recorder->forms = {"frmPrintFont", "frmAbout", "frmSQLServerBrowser"};
  const auto viewer = shownViewer();
  choose(*viewer, GetParam().entry);
  QSignalSpy exit(viewer.get(), &AuditViewer::ExitApp);
  server.resultSets = {{record("1", "CS"), record("2", "CS")}};

  choose(*viewer, "FILE/SELECT");
  EXPECT_EQ(recorder->shownForms, QStringList{"frmSQLServerBrowser"});
  choose(*viewer, "FILE/PAGESETUP");
  EXPECT_EQ(recorder->shownForms.last(), "frmPrintFont");
  choose(*viewer, "TOOLS/CLEARALLFILTERS");
  EXPECT_EQ(checkedNodes(*viewer), 0);
  choose(*viewer, "TOOLS/SELECTALLFILTERS");
  EXPECT_EQ(checkedNodes(*viewer), 13);
  choose(*viewer, "TOOLS/QUERY");
  EXPECT_EQ(column(*viewer, 0), "1 2");
  choose(*viewer, "TOOLS/CLEAR");
  EXPECT_EQ(column(*viewer, 0), "");
  choose(*viewer, "TOOLS/EXPORTEXCEL");
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_EQ(recorder->messages[0].text, tableText(10069, GetParam().offset));
  recorder->messages.clear();
  choose(*viewer, "FILE/PRINT");
  QCoreApplication::processEvents();
  EXPECT_EQ(recorder->printerDialogs, 1);
  recorder->chosenFont = QFont("DejaVu Sans Mono", 15);
  choose(*viewer, "TOOLS/FONT");
  EXPECT_EQ(list(*viewer, 3)->font().pointSizeF(), 15);
  choose(*viewer, "VIEW/TOOLS");
  EXPECT_FALSE(viewer->ViewSideTools());
  EXPECT_FALSE(element(*viewer, "frameFilter")->isVisible());
  choose(*viewer, "VIEW/TOOLS");
  EXPECT_TRUE(viewer->ViewSideTools());
  choose(*viewer, "VIEW/KEY");
  EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(0));
  choose(*viewer, "VIEW/KEY");
  EXPECT_EQ(list(*viewer, 0)->columnWidth(0), pixels(*viewer, 1000));
  choose(*viewer, "HELP/ABOUT");
  EXPECT_EQ(recorder->shownForms.last(), "frmAbout");
  EXPECT_EQ(exit.count(), 0);
  choose(*viewer, "FILE/EXIT");
  EXPECT_EQ(exit.count(), 1);
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_P(EveryCommand, OfTheToolbarActs) {
  recorder->forms = {"frmSQLServerBrowser"};
  const auto viewer = shownViewer();
  choose(*viewer, GetParam().entry);
  server.resultSets = {{record("1", "CS"), record("2", "CS")}};

  press(*viewer, "SELECT");
  EXPECT_EQ(recorder->shownForms, QStringList{"frmSQLServerBrowser"});
  press(*viewer, "INFO");
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_TRUE(recorder->messages[0].text.contains(tableText(10070, GetParam().offset) + " = Korvel_Audit"));
  press(*viewer, "CLEARALLFILTERS");
  EXPECT_EQ(checkedNodes(*viewer), 0);
  press(*viewer, "SELECTALLFILTERS");
  EXPECT_EQ(checkedNodes(*viewer), 13);
  press(*viewer, "QUERY");
  EXPECT_EQ(column(*viewer, 0), "1 2");
  list(*viewer, 0)->setColumnWidth(4, 700);
  press(*viewer, "ADJUSTCOL");
  EXPECT_LT(list(*viewer, 0)->columnWidth(4), 200);
  press(*viewer, "CLEAR");
  EXPECT_EQ(column(*viewer, 0), "");
  press(*viewer, "TOOLS");
  EXPECT_FALSE(viewer->ViewSideTools());
  press(*viewer, "TOOLS");
  EXPECT_TRUE(viewer->ViewSideTools());
  EXPECT_EQ(recorder->messages.size(), 1U);
  press(*viewer, "EXPORTEXCEL");
  ASSERT_EQ(recorder->messages.size(), 2U);
  EXPECT_EQ(recorder->messages[1].text, tableText(10069, GetParam().offset));
  press(*viewer, "PRINT");
  QCoreApplication::processEvents();
  EXPECT_EQ(recorder->printerDialogs, 1);
}

INSTANTIATE_TEST_SUITE_P(InEveryLanguage, EveryCommand, ::testing::ValuesIn(languages),
                         [](const auto& language) { return std::to_string(language.param.offset); });

TEST_F(Dispatch, ACommandWhoseFormDoesNotExistIsThereAndOff) {
  const auto viewer = shownViewer();
  EXPECT_FALSE(entry(*viewer, "FILE/PAGESETUP")->isEnabled());
}

TEST_F(Dispatch, OnTheCustomPageTheCommandsRunItsQuery) {
  const auto viewer = shownViewer();
  selectTab(*viewer, 5);
  choose(*viewer, "TOOLS/QUERY");
  press(*viewer, "QUERY");
  EXPECT_THAT(server.commands,
              ::testing::ElementsAre("Select * from Korvel_Audit_Trails", "Select * from Korvel_Audit_Trails"));
}

TEST_F(Dispatch, AFailureOfAMenuCommandIsShown) {
  const auto viewer = shownViewer();
  settings.openFailure = Win32Error::accessDenied;
  choose(*viewer, "Language/LANGUAGE/GERMAN");
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_EQ(recorder->messages[0].icon, MessageIcon::critical);
  EXPECT_TRUE(recorder->messages[0].text.contains(":Error in SmartMenu_Click.  Error Message: "))
      << recorder->messages[0].text.toStdString();
  // Neither stored nor partly switched.
  EXPECT_EQ(libraryState().language.text(), "0");
  EXPECT_EQ(entry(*viewer, "TOOLS")->text(), "&Tools");
}

TEST_F(Dispatch, AFailureOfAToolbarCommandIsIgnored) {
  const auto viewer = shownViewer();
  recorder->onForm = [] { throw Error(57, "device unavailable"); };
  press(*viewer, "SELECT");
  EXPECT_EQ(recorder->shownForms.size(), 1);
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
  choose(*viewer, "FILE/SELECT");
  EXPECT_EQ(recorder->messages.size(), 1U);
}

TEST_F(Dispatch, AViewerMayDieOfItsExitCommand) {
  auto viewer = shownViewer();
  QObject::connect(viewer.get(), &AuditViewer::ExitApp, [&] { viewer.reset(); });
  entry(*viewer, "FILE/EXIT")->trigger();
  EXPECT_EQ(viewer, nullptr);
}

TEST_F(Dispatch, AViewerMayDieOfAToolbarCommand) {
  auto viewer = shownViewer();
  QObject::connect(viewer.get(), &AuditViewer::PropertyChanged, [&] { viewer.reset(); });
  const QList<QAction*> actions = toolBar(*viewer)->actions();
  for (QAction* action : actions) {
    if (action->objectName() != "TOOLS") continue;
    action->trigger();
    break;
  }
  EXPECT_EQ(viewer, nullptr);
}

TEST_F(Dispatch, TheToolbarSwitchTogglesAndTheMenuMarkStays) {
  const auto viewer = shownViewer();
  press(*viewer, "TOOLS");
  EXPECT_FALSE(viewer->ViewSideTools());
  EXPECT_TRUE(entry(*viewer, "VIEW/TOOLS")->isChecked());
  press(*viewer, "TOOLS");
  EXPECT_TRUE(viewer->ViewSideTools());
  EXPECT_TRUE(element(*viewer, "frameFilter")->isVisible());
  // The menu's mark shows the state that it switches to, not the current one: off at first, in either state.
  press(*viewer, "TOOLS");
  choose(*viewer, "VIEW/TOOLS");
  EXPECT_FALSE(entry(*viewer, "VIEW/TOOLS")->isChecked());
  EXPECT_FALSE(viewer->ViewSideTools());
}

TEST_F(Dispatch, FittingTheColumnsOfAnEmptyListDoesNothing) {
  const auto viewer = shownViewer();
  list(*viewer, 0)->setColumnWidth(3, 333);
  viewer->ShowKeyField(false);
  press(*viewer, "ADJUSTCOL");
  EXPECT_EQ(list(*viewer, 0)->columnWidth(3), 333);
  EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(0));
}

TEST_F(Dispatch, FittingTheColumnsHidesTheKeyAgainWhereTheMenuSaysSo) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS", "an area with a name that needs a good deal more room than a column has")}};
  click(*viewer, "btQuery");
  const QTableView& shown = *list(*viewer, 0);
  const int before = shown.columnWidth(1);
  choose(*viewer, "VIEW/KEY");
  press(*viewer, "ADJUSTCOL");
  EXPECT_TRUE(shown.isColumnHidden(0));
  EXPECT_GT(shown.columnWidth(5), 300);
  for (int c = 1; c < 18; ++c) EXPECT_NE(shown.columnWidth(c), before) << c;
  // Other lists keep their widths; only their key column is updated.
  EXPECT_EQ(list(*viewer, 1)->columnWidth(1), before);
  choose(*viewer, "VIEW/KEY");
  press(*viewer, "ADJUSTCOL");
  EXPECT_EQ(shown.columnWidth(0), pixels(*viewer, 1000));
}

TEST_F(Dispatch, ADoubleClickOnAColumnsEdgeFitsItAndSetsTheKeyColumnAsTheMenuSays) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS", "an area with a name that needs a good deal more room than a column has")}};
  click(*viewer, "btQuery");
  QTableView& shown = *list(*viewer, 0);
  const int before = shown.columnWidth(1);
  shown.setColumnWidth(0, 40);
  list(*viewer, 3)->setColumnWidth(0, 40);
  const auto clickEdge = [&](int column) {
    QHeaderView& header = *shown.horizontalHeader();
    const int edge = header.sectionViewportPosition(column) + header.sectionSize(column) - 1;
    QTest::mouseDClick(header.viewport(), Qt::LeftButton, {}, {edge, header.height() / 2});
  };
  clickEdge(5);
  EXPECT_GT(shown.columnWidth(5), 300);
  for (const int other : {1, 4, 6}) EXPECT_EQ(shown.columnWidth(other), before) << other;
  EXPECT_EQ(shown.columnWidth(0), pixels(*viewer, 1000));
  EXPECT_EQ(list(*viewer, 3)->columnWidth(0), pixels(*viewer, 1000));
  // A key column that is off in the menu stays hidden.
  choose(*viewer, "VIEW/KEY");
  clickEdge(1);
  EXPECT_TRUE(shown.isColumnHidden(0));
  EXPECT_NE(shown.columnWidth(1), before);
}

TEST_F(Dispatch, FittingTheColumnsOfTheCustomPageLooksAfterTheKeysOfTheOthers) {
  const auto viewer = shownViewer();
  answerWithOneRow();
  selectTab(*viewer, 5);
  click(*viewer, "btQuery");
  list(*viewer, 5)->setColumnWidth(0, 700);
  for (int i = 0; i < 5; ++i) list(*viewer, i)->setColumnWidth(0, 333);
  press(*viewer, "ADJUSTCOL");
  EXPECT_LT(list(*viewer, 5)->columnWidth(0), 200);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->columnWidth(0), pixels(*viewer, 1000)) << i;
  // A key column that was shown in another way is set as the menu says.
  choose(*viewer, "VIEW/KEY");
  for (int i = 0; i < 5; ++i) list(*viewer, i)->setColumnHidden(0, false);
  press(*viewer, "ADJUSTCOL");
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(list(*viewer, i)->isColumnHidden(0)) << i;
  EXPECT_FALSE(list(*viewer, 5)->isColumnHidden(0)) << "the custom list has no key column";
}

TEST_F(Dispatch, FittingTheColumnsLooksAtTheCurrentPage) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  list(*viewer, 0)->setColumnWidth(4, 700);
  selectTab(*viewer, 2);
  press(*viewer, "ADJUSTCOL");
  EXPECT_EQ(list(*viewer, 0)->columnWidth(4), 700);
  selectTab(*viewer, 0);
  press(*viewer, "ADJUSTCOL");
  EXPECT_LT(list(*viewer, 0)->columnWidth(4), 200);
}

TEST_F(StatusHelp, APointerThatCrossesTheMenuBarTakesNoWarningAway) {
  const auto viewer = shownViewer();
  server.resultSets = {std::vector<CannedRow>(5000, record("1", "CS"))};
  click(*viewer, "btQuery");
  const QString warning = statusPanel(*viewer);
  QMenuBar* bar = menuBar(*viewer);
  QTest::mouseMove(bar, bar->actionGeometry(entry(*viewer, "TOOLS")).center());
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(bar, &leave);
  EXPECT_EQ(statusPanel(*viewer), warning);
}

/// Rows that a sort by another column scatters, as many as the server sends.

}  // namespace
}  // namespace korvel::test
