// Columns that a person arranged, in the next control of the next start.
#include <QContextMenuEvent>
#include <QMouseEvent>

#include "tests/control/command_surfaces.h"
#include "tests/support/temporary_folder.h"
#include "ui/screen_measure.h"

namespace korvel::test {
namespace {

using control::libraryState;

class ColumnMemory : public CommandTest {
 protected:
  enum Column { key, time, project, database, application, area };

  ColumnMemory() { remember(control::Remembered::Extent::all); }

  void remember(control::Remembered::Extent extent) {
    libraryState().remembered = {QString::fromStdString((folder / "remembered.json").string()), extent};
  }
  static QHeaderView& header(const AuditViewer& viewer, int index = 0) {
    return *list(viewer, index)->horizontalHeader();
  }
  static void drag(QHeaderView& header, int from, int to) {
    const int middle = header.height() / 2;
    QTest::mousePress(header.viewport(), Qt::LeftButton, {}, {from, middle});
    // Two moves: the first one begins the drag of a section.
    for (const int x : {(from + to) / 2, to}) {
      QMouseEvent move(QEvent::MouseMove, QPointF(x, middle), header.viewport()->mapToGlobal(QPoint(x, middle)),
                       Qt::NoButton, Qt::LeftButton, {});
      QApplication::sendEvent(header.viewport(), &move);
    }
    QTest::mouseRelease(header.viewport(), Qt::LeftButton, {}, {to, middle});
  }
  static void widen(QHeaderView& header, int column, int byPixels) {
    const int edge = header.sectionViewportPosition(column) + header.sectionSize(column) - 1;
    drag(header, edge, edge + byPixels);
  }
  static QMenu& openMenu(const AuditViewer& viewer, int index = 0) {
    QWidget* const target = header(viewer, index).viewport();
    QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, target->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(target, &event);
    return *element<QMenu>(viewer, "SmartPopup");
  }
  static void chooseInMenu(const AuditViewer& viewer, const QString& text, int index = 0) {
    QMenu& menu = openMenu(viewer, index);
    for (QAction* const entry : menu.actions())
      if (entry->text() == text)
        return QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(entry).center());
    FAIL() << "no entry " << text.toStdString();
  }
  static int pixels(const AuditViewer& viewer, int twips) { return ui::ScreenMeasure(viewer).horizontal(Twips{twips}); }

  TemporaryFolder folder;
};

TEST_F(ColumnMemory, AWidthThatWasDraggedIsThereAgain) {
  int width = 0;
  {
    const auto viewer = shownViewer();
    widen(header(*viewer), time, 60);
    width = list(*viewer, 0)->columnWidth(time);
  }
  const auto viewer = shownViewer();
  EXPECT_EQ(width, pixels(*viewer, 1440) + 60);
  EXPECT_NEAR(list(*viewer, 0)->columnWidth(time), width, 1) << "twips round";
  EXPECT_EQ(list(*viewer, 0)->columnWidth(project), pixels(*viewer, 1440));
  EXPECT_EQ(list(*viewer, 1)->columnWidth(time), pixels(*viewer, 1440)) << "each list has its own";
}

TEST_F(ColumnMemory, AnOrderThatWasDraggedIsThereAgain) {
  {
    const auto viewer = shownViewer();
    QHeaderView& columns = header(*viewer);
    drag(columns, columns.sectionViewportPosition(project) + 10, columns.sectionViewportPosition(time) + 10);
    ASSERT_EQ(columns.visualIndex(project), 1);
  }
  const auto viewer = shownViewer();
  EXPECT_EQ(header(*viewer).visualIndex(project), 1);
  EXPECT_EQ(header(*viewer).visualIndex(time), 2);
  EXPECT_EQ(header(*viewer).visualIndex(database), 3);
}

TEST_F(ColumnMemory, AColumnThatWasHiddenStaysHiddenAndCanBeShown) {
  chooseInMenu(*shownViewer(), "Area");
  {
    const auto viewer = shownViewer();
    EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(area));
    EXPECT_FALSE(list(*viewer, 1)->isColumnHidden(area));
    chooseInMenu(*viewer, "Area");
    EXPECT_FALSE(list(*viewer, 0)->isColumnHidden(area));
  }
  EXPECT_FALSE(list(*shownViewer(), 0)->isColumnHidden(area));
}

TEST_F(ColumnMemory, AColumnThatWasFittedByItsEdgeKeepsTheWidth) {
  int width = 0;
  {
    const auto viewer = shownViewer();
    server.resultSets = {{record("1", "CS", "an area with a name that needs more room than a column has")}};
    click(*viewer, "btQuery");
    QHeaderView& columns = header(*viewer);
    const int edge = columns.sectionViewportPosition(area) + columns.sectionSize(area) - 1;
    QTest::mouseDClick(columns.viewport(), Qt::LeftButton, {}, {edge, columns.height() / 2});
    width = columns.sectionSize(area);
  }
  const auto viewer = shownViewer();
  ASSERT_GT(width, pixels(*viewer, 1440));
  EXPECT_NEAR(list(*viewer, 0)->columnWidth(area), width, 1);
}

TEST_F(ColumnMemory, WhatTheProgramArrangesIsNotRemembered) {
  {
    const auto viewer = shownViewer();
    server.resultSets = {{record("1", "CS", "an area with a name that needs more room than a column has")}};
    click(*viewer, "btQuery");
    CommandTest::press(*viewer, "ADJUSTCOL");
    ASSERT_NE(list(*viewer, 0)->columnWidth(area), pixels(*viewer, 1440));
    list(*viewer, 0)->setColumnWidth(time, 333);
    header(*viewer).moveSection(1, 5);
    viewer->ShowKeyField(false);
  }
  const auto viewer = shownViewer();
  EXPECT_EQ(list(*viewer, 0)->columnWidth(area), pixels(*viewer, 1440));
  EXPECT_EQ(list(*viewer, 0)->columnWidth(time), pixels(*viewer, 1440));
  EXPECT_EQ(header(*viewer).visualIndex(time), 1);
  EXPECT_FALSE(list(*viewer, 0)->isColumnHidden(key));
}

TEST_F(ColumnMemory, TheKeyColumnHasItsSwitchInstead) {
  {
    const auto viewer = shownViewer();
    widen(header(*viewer), key, 50);
    chooseInMenu(*viewer, "Entry ID");
    ASSERT_TRUE(list(*viewer, 0)->isColumnHidden(key));
  }
  const auto viewer = shownViewer();
  EXPECT_FALSE(list(*viewer, 0)->isColumnHidden(key));
  EXPECT_EQ(list(*viewer, 0)->columnWidth(key), pixels(*viewer, 1440));
}

TEST_F(ColumnMemory, AQuerysColumnsGetTheWidthsOfTheirNamesAndAreAllShown) {
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"a"}, {"b"}, {"a"}};
    sink.beginResult(fields);
    sink.row(std::vector<db::Cell>{{"1"}, {"2"}, {"3"}});
    sink.endResult();
  };
  {
    const auto viewer = shownViewer();
    selectTab(*viewer, 5);
    click(*viewer, "btQuery");
    widen(header(*viewer, 5), 2, 70);
    QHeaderView& columns = header(*viewer, 5);
    drag(columns, columns.sectionViewportPosition(1) + 10, columns.sectionViewportPosition(0) + 10);
    ASSERT_EQ(columns.visualIndex(1), 0);
  }
  const auto viewer = shownViewer();
  selectTab(*viewer, 5);
  click(*viewer, "btQuery");
  const int usual = list(*viewer, 5)->columnWidth(0);
  EXPECT_NEAR(list(*viewer, 5)->columnWidth(2), usual + 70, 1) << "the second \"a\"";
  EXPECT_EQ(list(*viewer, 5)->columnWidth(1), usual);
  EXPECT_EQ(header(*viewer, 5).visualIndex(0), 0) << "the order of a query's columns is the query's";
}

TEST_F(ColumnMemory, TheMenuOfTheHeaderGivesBackTheFirstArrangement) {
  {
    const auto viewer = shownViewer();
    EXPECT_TRUE(printed(openMenu(*viewer)).endsWith("-\nColumns as at first (off)\n")) << "nothing is changed yet";
    element<QMenu>(*viewer, "SmartPopup")->close();
    choose(*viewer, "VIEW/KEY");
    widen(header(*viewer), time, 60);
    chooseInMenu(*viewer, "Area");
    widen(header(*viewer, 1), time, 60);
    chooseInMenu(*viewer, "Columns as at first");
    EXPECT_EQ(list(*viewer, 0)->columnWidth(time), pixels(*viewer, 1440));
    EXPECT_FALSE(list(*viewer, 0)->isColumnHidden(area));
    EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(key)) << "the View menu has it off";
    EXPECT_NE(list(*viewer, 1)->columnWidth(time), pixels(*viewer, 1440)) << "the other list";
  }
  const auto viewer = shownViewer();
  EXPECT_EQ(list(*viewer, 0)->columnWidth(time), pixels(*viewer, 1440));
  EXPECT_FALSE(list(*viewer, 0)->isColumnHidden(area));
  EXPECT_NE(list(*viewer, 1)->columnWidth(time), pixels(*viewer, 1440));
}

TEST_F(ColumnMemory, AControlWhoseProgramNamesNoFileHasNoEntryForIt) {
  remember(control::Remembered::Extent::nothing);
  const auto viewer = shownViewer();
  widen(header(*viewer), time, 60);
  EXPECT_FALSE(printed(openMenu(*viewer)).contains("Columns as at first"));
  EXPECT_EQ(list(*shownViewer(), 0)->columnWidth(time), pixels(*viewer, 1440));
}

}  // namespace
}  // namespace korvel::test
