#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>

#include "control/commands/command_tables.h"
#include "tests/control/command_surfaces.h"
#include "tests/support/watched_allocations.h"

namespace korvel::test {
namespace {

const char* const allColumns =
    "[x] Entry ID\n[x] Date Time\n[x] Project GUID\n[x] Database Name\n[x] Application Name\n[x] Area\n[x] Item\n"
    "[x] Event\n[x] Item ID\n[x] Old Value\n[x] New Value\n[x] PC Name\n[x] OS User\n[x] Application User\n"
    "[x] User Name\n[x] Audit Type\n[x] Comments\n";

class ContextMenu : public CommandTest {
 protected:
  static QMenu* popup(const AuditViewer& viewer) { return element<QMenu>(viewer, "SmartPopup"); }

  static void rightClick(QWidget* target, QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) {
    const QPoint place = target->rect().center();
    QContextMenuEvent event(reason, place, target->mapToGlobal(place));
    QApplication::sendEvent(target, &event);
  }
  static void rightClickList(const AuditViewer& viewer, int index) { rightClick(list(viewer, index)->viewport()); }
  static void rightClickHeader(const AuditViewer& viewer, int index) {
    rightClick(list(viewer, index)->horizontalHeader()->viewport());
  }

  /// Right click on the header, then a click on that entry.
  static void toggleColumn(const AuditViewer& viewer, int index, const QString& caption) {
    rightClickHeader(viewer, index);
    QMenu* menu = popup(viewer);
    ASSERT_TRUE(menu->isVisible());
    const QList<QAction*> entries = menu->actions();
    for (QAction* one : entries) {
      if (one->text() != caption) continue;
      QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(one).center());
      EXPECT_FALSE(menu->isVisible());
      return;
    }
    ADD_FAILURE() << "no column " << caption.toStdString();
  }
};

TEST_F(ContextMenu, OfAListChangesTheFont) {
  const auto viewer = shownViewer();
  rightClickList(*viewer, 0);
  QMenu* menu = popup(*viewer);
  ASSERT_TRUE(menu->isVisible());
  EXPECT_EQ(printed(*menu), "Change Font\n");
  recorder->chosenFont = QFont("DejaVu Sans Mono", 17);
  QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().first()).center());
  EXPECT_FALSE(menu->isVisible());
  EXPECT_EQ(list(*viewer, 0)->font().pointSizeF(), 17);
  EXPECT_EQ(list(*viewer, 5)->font().pointSizeF(), 17);
}

TEST_F(ContextMenu, HeadersNeedNoMouseToSort) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("10", "CS"), record("7", "RT")}};
  click(*viewer, "btQuery");
  QTableView* view = list(*viewer, 0);
  view->setFocus();
  ASSERT_EQ(column(*viewer, 0), "7 10");
  view->setCurrentIndex(view->model()->index(0, 0));
  QTest::keyClick(view, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "10 7");
  QTest::keyClick(view, Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier);
  EXPECT_EQ(column(*viewer, 0), "7 10");
  QTest::keyClick(view, Qt::Key_Return, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(column(*viewer, 0), "7 10");
}

TEST_F(ContextMenu, OfAHeaderOpensWithTheKeyboard) {
  const auto viewer = shownViewer();
  QTest::keyClick(list(*viewer, 0), Qt::Key_F10, Qt::ControlModifier | Qt::ShiftModifier);
  QMenu* menu = popup(*viewer);
  ASSERT_TRUE(menu->isVisible());
  EXPECT_EQ(printed(*menu), allColumns);
  // Near the header it belongs to.
  const QWidget* header = list(*viewer, 0)->horizontalHeader();
  EXPECT_EQ(menu->pos().y(), header->mapToGlobal(QPoint(0, header->height())).y());
}

TEST_F(ContextMenu, OfAListOpensWithTheKeyboardToo) {
  const auto viewer = shownViewer();
  rightClick(list(*viewer, 0), QContextMenuEvent::Keyboard);
  ASSERT_TRUE(popup(*viewer)->isVisible());
  EXPECT_EQ(printed(*popup(*viewer)), "Change Font\n");
}

TEST_F(ContextMenu, OfALockedListStaysShut) {
  const auto viewer = newViewer();
  viewer->resize(1200, 800);
  viewer->show();
  QWidget* target = list(*viewer, 0)->viewport();
  const QPoint place = target->mapTo(viewer.get(), target->rect().center());
  // Through the window: the toolkit turns the click into a request for a menu.
  QTest::mouseClick(viewer->windowHandle(), Qt::RightButton, {}, place);
  EXPECT_FALSE(popup(*viewer)->isVisible());
  viewer->UnlockControls();
  QTest::mouseClick(viewer->windowHandle(), Qt::RightButton, {}, place);
  EXPECT_TRUE(popup(*viewer)->isVisible());
  popup(*viewer)->close();
}

TEST_F(ContextMenu, OfAHeaderHasTheColumnsInTheirOrder) {
  settings.values["Language"] = "10000";
  const auto viewer = shownViewer();
  rightClickHeader(*viewer, 0);
  ASSERT_TRUE(popup(*viewer)->isVisible());
  EXPECT_EQ(printed(*popup(*viewer)), allColumns);
}

TEST_F(ContextMenu, OfAHeaderHidesAndShowsColumnsOfThatListAlone) {
  const auto viewer = shownViewer();
  list(*viewer, 0)->setColumnWidth(9, 222);
  toggleColumn(*viewer, 0, "Old Value");
  EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(9));
  EXPECT_FALSE(list(*viewer, 1)->isColumnHidden(9));
  rightClickHeader(*viewer, 0);
  EXPECT_EQ(printed(*popup(*viewer)), QString(allColumns).replace("[x] Old Value", "[ ] Old Value"));
  popup(*viewer)->close();
  selectTab(*viewer, 1);
  rightClickHeader(*viewer, 1);
  EXPECT_EQ(printed(*popup(*viewer)), allColumns);
  popup(*viewer)->close();
  selectTab(*viewer, 0);
  toggleColumn(*viewer, 0, "Old Value");
  EXPECT_FALSE(list(*viewer, 0)->isColumnHidden(9));
  EXPECT_EQ(list(*viewer, 0)->columnWidth(9), 222) << "a column comes back as wide as it was";
}

TEST_F(ContextMenu, EveryColumnOfTheMenuCanBeHiddenAndTheHeaderStaysWithinReach) {
  const auto viewer = shownViewer();
  for (const QString& row : QString(allColumns).split('\n', Qt::SkipEmptyParts)) toggleColumn(*viewer, 2, row.mid(4));
  for (int c = 0; c < 17; ++c) EXPECT_TRUE(list(*viewer, 2)->isColumnHidden(c)) << c;
  EXPECT_FALSE(list(*viewer, 2)->isColumnHidden(17)) << "Summer Time is not in the menu";
}

TEST_F(ContextMenu, TheEntryIdIsOneSwitchWithTheViewMenu) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  toggleColumn(*viewer, 0, "Entry ID");
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(list(*viewer, i)->isColumnHidden(0)) << i;
  EXPECT_FALSE(entry(*viewer, "VIEW/KEY")->isChecked());
  press(*viewer, "ADJUSTCOL");
  EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(0)) << "sizing the columns keeps what the menu says";

  choose(*viewer, "VIEW/KEY");
  EXPECT_TRUE(entry(*viewer, "VIEW/KEY")->isChecked());
  rightClickHeader(*viewer, 0);
  EXPECT_EQ(printed(*popup(*viewer)), allColumns);
  popup(*viewer)->close();
  press(*viewer, "ADJUSTCOL");
  for (int i = 0; i < 5; ++i) EXPECT_FALSE(list(*viewer, i)->isColumnHidden(0)) << i;
}

TEST_F(ContextMenu, TheEntryIdMarkFollowsWhateverHidTheColumn) {
  const auto viewer = shownViewer();
  viewer->ShowKeyField(false);
  rightClickHeader(*viewer, 3);
  EXPECT_EQ(printed(*popup(*viewer)), QString(allColumns).replace("[x] Entry ID", "[ ] Entry ID"));
  popup(*viewer)->close();
  toggleColumn(*viewer, 0, "Entry ID");
  EXPECT_FALSE(list(*viewer, 0)->isColumnHidden(0));
  EXPECT_TRUE(entry(*viewer, "VIEW/KEY")->isChecked());
}

TEST_F(ContextMenu, SizingTheColumnsKeepsHiddenOnesHidden) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  toggleColumn(*viewer, 0, "Event");
  press(*viewer, "ADJUSTCOL");
  EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(7));
}

TEST_F(ContextMenu, AListWithoutColumnsHasNothingToChoose) {
  const auto viewer = shownViewer();
  selectTab(*viewer, 5);
  rightClickHeader(*viewer, 5);
  EXPECT_FALSE(popup(*viewer)->isVisible());
}

TEST_F(ContextMenu, ThatCouldBeBuiltLeavesTheFixedMenuShut) {
  const auto viewer = shownViewer();
  rightClickList(*viewer, 0);
  EXPECT_TRUE(popup(*viewer)->isVisible());
  EXPECT_FALSE(element<QMenu>(*viewer, "mnupopup")->isVisible());
  popup(*viewer)->close();
}

TEST_F(ContextMenu, ThatCouldNotBeBuiltGivesWayToTheFixedMenu) {
  const auto viewer = shownViewer();
  auto* fixed = element<QMenu>(*viewer, "mnupopup");
  auto* menu = popup(*viewer);
  // Finds the allocation of the menu's entry.
  for (std::size_t successes = 1; successes < 20 && !fixed->isVisible(); ++successes) {
    menu->close();
    const FailingAllocations fails(successes, 1);
    Q_EMIT list(*viewer, 0)->customContextMenuRequested(QPoint(5, 5));
  }
  ASSERT_TRUE(fixed->isVisible());
  EXPECT_FALSE(menu->isVisible());
  recorder->chosenFont = QFont("DejaVu Sans Mono", 21);
  QTest::mouseClick(fixed, Qt::LeftButton, {}, fixed->actionGeometry(fixed->actions().first()).center());
  EXPECT_EQ(list(*viewer, 0)->font().pointSizeF(), 21);
  rightClickList(*viewer, 0);
  EXPECT_TRUE(menu->isVisible()) << "the next one can be built again";
}

TEST_F(ContextMenu, IsBuiltByName) {
  const auto viewer = shownViewer();
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "BuildPopup", Q_ARG(QString, "Column")));
  EXPECT_EQ(popup(*viewer)->actions().size(), 17);
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "BuildPopup", Q_ARG(QString, "Font")));
  EXPECT_EQ(printed(*popup(*viewer)), "Change Font\n");
  for (const char* other : {"", "font", "COLUMN", "Columns", "Font "}) {
    viewer->BuildPopup(other);
    EXPECT_EQ(printed(*popup(*viewer)), "Change Font\n") << other;
  }
}

TEST_F(ContextMenu, TheFixedMenuChangesTheFont) {
  const auto viewer = shownViewer();
  auto* fixed = element<QMenu>(*viewer, "mnupopup");
  EXPECT_EQ(fixed->title(), "Popup");
  EXPECT_EQ(printed(*fixed), "Change Font\n");
  recorder->chosenFont = QFont("DejaVu Sans Mono", 19);
  fixed->actions().first()->trigger();
  EXPECT_EQ(list(*viewer, 0)->font().pointSizeF(), 19);
  recorder->chosenFont = QFont("DejaVu Sans Mono", 23);
  auto* other = fixed->addAction("another");
  other->setData(1);
  other->trigger();
  EXPECT_EQ(list(*viewer, 0)->font().pointSizeF(), 19) << "other indexes do nothing";
}

}  // namespace
}  // namespace korvel::test
