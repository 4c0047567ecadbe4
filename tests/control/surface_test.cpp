#include <QApplication>
#include <QFontInfo>
#include <QHeaderView>
#include <QKeyEvent>

#include "control/look/result_table.h"
#include "tests/control/viewer_fixture.h"

namespace korvel::test {
namespace {

using Surface = ViewerTest;

QRect inViewer(const QWidget* element, const AuditViewer& viewer) {
  return {element->mapTo(&viewer, QPoint(0, 0)), element->size()};
}

int pixels(const QWidget& widget, int twips) {
  return qRound(double(twips) * widget.logicalDpiX() / 1440);
}

TEST_F(Surface, TestsAreDrawnInTheFontOfTheFontPackage) {
  // Without any font every letter is a box, and tests that look at sizes prove nothing.
  EXPECT_EQ(QFontInfo(QApplication::font()).family(), "DejaVu Sans");
}

TEST_F(Surface, ElementsLieWhereTheResizeRoutinePutsThem) {
  const auto viewer = shownViewer();
  const auto* tabs = element(*viewer, "SSTab1");
  const auto* status = element(*viewer, "StatusBar1");
  for (const QSize size : {QSize(1280, 800), QSize(1000, 600), QSize(1601, 903)}) {
    viewer->resize(size);
    EXPECT_EQ(tabs->x(), pixels(*viewer, 3720));
    EXPECT_NEAR(tabs->width(), size.width() - pixels(*viewer, 3720 + 100), 1);
    EXPECT_NEAR(tabs->height(), size.height() - status->height() - pixels(*viewer, 150), 1);
    EXPECT_EQ(status->geometry(), QRect(0, size.height() - status->height(), size.width(), status->height()));
    for (int i = 0; i < 5; ++i) {
      EXPECT_NEAR(list(*viewer, i)->width(), tabs->width() - pixels(*viewer, 250), 1) << i;
      EXPECT_NEAR(list(*viewer, i)->height(), tabs->height() - pixels(*viewer, 600), 1) << i;
    }
  }
}

TEST_F(Surface, ListsLieWhollyInTheirPages) {
  const auto viewer = shownViewer();
  for (int i = 0; i < 6; ++i) {
    selectTab(*viewer, i);
    QCoreApplication::processEvents();
    const QWidget* shown = list(*viewer, i);
    EXPECT_TRUE(shown->parentWidget()->rect().contains(shown->geometry())) << i;
    EXPECT_TRUE(shown->isVisible()) << i;
  }
}

TEST_F(Surface, HidingTheSideToolsGivesTheirStripToTheTabs) {
  const auto viewer = shownViewer();
  const auto* tabs = element(*viewer, "SSTab1");
  const QRect beside = tabs->geometry();
  viewer->setViewSideTools(false);
  EXPECT_EQ(tabs->x(), pixels(*viewer, 50));
  EXPECT_NEAR(tabs->width(), beside.width() + pixels(*viewer, 3720), 1);
  viewer->setViewSideTools(true);
  EXPECT_EQ(tabs->geometry(), beside);
}

TEST_F(Surface, ViewToolsAloneLeavesTheStripToTheProperty) {
  const auto viewer = shownViewer();
  viewer->ViewTools(false);
  EXPECT_TRUE(viewer->ViewSideTools());
  EXPECT_EQ(element(*viewer, "SSTab1")->x(), pixels(*viewer, 3720));
}

TEST_F(Surface, TooSmallLeavesTheLastValidSizeAndGrowingRestoresTheRule) {
  const auto viewer = shownViewer();
  const auto* tabs = element(*viewer, "SSTab1");
  const QRect before = tabs->geometry();
  viewer->resize(100, 20);
  EXPECT_EQ(tabs->size(), before.size());
  viewer->resize(1200, 800);
  EXPECT_EQ(tabs->geometry(), before);
}

TEST_F(Surface, NothingOfTheStripOverlapsAtAnySize) {
  const auto viewer = shownViewer();
  for (int height = 10; height <= 900; height += 15) {
    viewer->resize(1000, height);
    const QRect filter = element(*viewer, "frameFilter")->geometry();
    const QRect tools = element(*viewer, "frameTools")->geometry();
    ASSERT_FALSE(filter.intersects(tools)) << height;
    ASSERT_FALSE(filter.intersects(element(*viewer, "SSTab1")->geometry())) << height;
    const QWidget* tree = element(*viewer, "tvTreeView");
    for (const char* below : {"btDateRangeFilter", "btClearDateRange", "lblDateRange"}) {
      const QRect other = inViewer(element(*viewer, below), *viewer);
      ASSERT_FALSE(inViewer(tree, *viewer).intersects(other)) << below << ' ' << height;
      ASSERT_TRUE(filter.contains(other)) << below << ' ' << height;
    }
  }
}

TEST_F(Surface, AtItsSmallestSizeTheWholeStripIsInSight) {
  const auto viewer = shownViewer();
  viewer->resize(viewer->minimumSizeHint());
  const QRect tools = element(*viewer, "frameTools")->geometry();
  EXPECT_LE(tools.bottom(), element(*viewer, "StatusBar1")->y());
  EXPECT_GT(element(*viewer, "SSTab1")->width(), 100);
}

TEST_F(Surface, SideTextsFitInEveryLanguage) {
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    settings.values["Language"] = offset;
    const auto viewer = shownViewer();
    QCoreApplication::processEvents();
    for (const char* name : {"btDateRangeFilter", "btClearDateRange"}) {
      const auto* button = element<QAbstractButton>(*viewer, name);
      const int icon = button->icon().isNull() ? 0 : button->iconSize().width();
      EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()) + icon)
          << offset << ' ' << name;
      EXPECT_GE(button->height(), button->minimumSizeHint().height()) << offset << ' ' << name;
    }
    const QWidget* label = element(*viewer, "lblDateRange");
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << offset;
  }
}

TEST_F(Surface, EmptyPagesSaySoInTheLanguage) {
  settings.values["Language"] = "30000";
  const auto viewer = shownViewer();
  EXPECT_EQ(static_cast<const look::ResultTable*>(list(*viewer, 0))->emptyText(),
            QString::fromUtf8("Aún no hay registros"));
}

TEST_F(Surface, KeyColumnIsHiddenAndComesBackNarrower) {
  const auto viewer = shownViewer();
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->columnWidth(0), pixels(*viewer, 1440)) << i;
  viewer->ShowKeyField(false);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->columnWidth(0), 0) << i;
  viewer->ShowKeyField(true);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->columnWidth(0), pixels(*viewer, 1000)) << i;
  list(*viewer, 0)->setColumnWidth(0, 200);
  viewer->ShowKeyField(true);
  EXPECT_EQ(list(*viewer, 0)->columnWidth(0), pixels(*viewer, 1000));
}

TEST_F(Surface, ColumnSetupRestoresWidthsAndTouchesNoRows) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS"), record("2", "CS")}};
  viewer->TriggerQuery();
  viewer->ShowKeyField(false);
  list(*viewer, 0)->setColumnWidth(3, 300);
  viewer->ListViewColSetup();
  EXPECT_EQ(column(*viewer, 0), "1 2");
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(list(*viewer, i)->model()->columnCount(), 18);
    for (int c = 0; c < 18; ++c) EXPECT_EQ(list(*viewer, i)->columnWidth(c), pixels(*viewer, 1440)) << i << ' ' << c;
  }
}

TEST_F(Surface, WidthsThatTheUserGaveSurviveAQuery) {
  const auto viewer = shownViewer();
  list(*viewer, 0)->setColumnWidth(1, 234);
  server.resultSets = {{record("1", "CS")}};
  viewer->TriggerQuery();
  click(*viewer, "btClear");
  EXPECT_EQ(list(*viewer, 0)->columnWidth(1), 234);
}

TEST_F(Surface, AHeaderClickSortsAndASecondOneReverses) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("7", "CS", "b"), record("10", "CS", "a"), record("8", "CS", "c")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 0), "7 8 10");
  Q_EMIT list(*viewer, 0)->horizontalHeader()->sectionClicked(5);
  EXPECT_EQ(column(*viewer, 0, 5), "a b c");
  Q_EMIT list(*viewer, 0)->horizontalHeader()->sectionClicked(5);
  EXPECT_EQ(column(*viewer, 0, 5), "c b a");
  EXPECT_EQ(list(*viewer, 0)->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 0, 5), "c b a");
}

TEST_F(Surface, TheChosenFontGoesToAllSixLists) {
  const auto viewer = shownViewer();
  QFont chosen("DejaVu Sans Mono", 12);
  chosen.setItalic(true);
  recorder->chosenFont = chosen;
  viewer->ChangeFont();
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(list(*viewer, i)->font().family(), "DejaVu Sans Mono") << i;
    EXPECT_EQ(list(*viewer, i)->font().pointSizeF(), 12) << i;
    EXPECT_TRUE(list(*viewer, i)->font().italic()) << i;
  }
  recorder->chosenFont.reset();
  viewer->ChangeFont();
  EXPECT_EQ(list(*viewer, 0)->font().family(), "DejaVu Sans Mono");
  EXPECT_EQ(recorder->offeredFont.pointSizeF(), 12);
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_F(Surface, EveryElementHasANameForAssistance) {
  const auto viewer = shownViewer();
  for (const char* name : {"tvTreeView", "btDateRangeFilter", "btClearDateRange", "btQuery", "btSelectDB", "btDBInfo",
                           "btClear", "btSelectALL", "btUnselectALL", "lvListView0", "lvListView5"})
    EXPECT_FALSE(element(*viewer, name)->accessibleName().isEmpty()) << name;
}

TEST_F(Surface, TabKeyWalksThroughTheElementsInOrder) {
  recorder->forms.insert("frmAdvancedFilters");
  const auto viewer = shownViewer();
  viewer->activateWindow();
  element(*viewer, "tvTreeView")->setFocus();
  QStringList visited;
  for (int i = 0; i < 10; ++i) {
    QWidget* focused = viewer->focusWidget();
    visited.append(focused->objectName());
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QCoreApplication::sendEvent(focused, &tab);
  }
  visited.append(viewer->focusWidget()->objectName());
  EXPECT_EQ(
      visited.join(' ').toStdString(),
      "tvTreeView btDateRangeFilter btClearDateRange btQuery btSelectDB btDBInfo btClear btSelectALL btUnselectALL "
      "qt_tabwidget_tabbar lvListView0");
}

}  // namespace
}  // namespace korvel::test
