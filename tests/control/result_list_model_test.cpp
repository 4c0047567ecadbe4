#include "control/result_list_model.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStringListModel>

#include "tests/control/list_fixture.h"
#include "tests/control/model_warnings.h"

namespace korvel::control {
namespace {

using results::ColumnHeader;
using results::ResultList;
using test::ListModel;
using test::ListView;

/// A model that announces two rows and then has three.
class BrokenModel final : public QAbstractListModel {
 public:
  int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rows; }
  QVariant data(const QModelIndex&, int) const override { return {}; }
  void breakPromise() {
    beginInsertRows({}, 0, 0);
    rows += 2;
    endInsertRows();
  }
  int rows = 2;
};

TEST(ModelWatchItself, SeesABrokenModel) {
  static BrokenModel broken;
  EXPECT_NONFATAL_FAILURE(
      {
        const test::ModelWatch watch(&broken);
        broken.breakPromise();
      },
      "model tester");
}

TEST_F(ListModel, KeepsTheRulesThroughItsWholeLife) {
  const test::ModelWatch watch(&model);
  fill({{"2", "b"}, {"1", "a"}});
  model.clickColumn(1);
  model.clickColumn(1);
  model.clear();
  fill({});
  model.setColumns([](ResultList& changed) { changed.setColumns({ColumnHeader{"One", {1000}}}); });
  fill({{"3", "c"}});
  EXPECT_EQ(shown(), "3");
}

TEST_F(ListModel, ShowsWhatTheListShows) {
  fill({{" 1 ", ""}, {"2", "\xC3\x84nderung"}});
  EXPECT_EQ(model.rowCount(), 2);
  EXPECT_EQ(model.columnCount(), 2);
  EXPECT_EQ(model.headerData(1, Qt::Horizontal).toString(), "Area");
  EXPECT_EQ(model.index(0, 0).data().toString(), "1");
  EXPECT_EQ(model.index(1, 1).data().toString(), QString::fromUtf8("Änderung"));
}

TEST_F(ListModel, AnswersNothingOutsideOfItself) {
  fill({{"1", "a"}});
  EXPECT_FALSE(model.data({}).isValid());
  EXPECT_FALSE(model.index(1, 0).isValid());
  EXPECT_FALSE(model.index(0, 2).isValid());
  EXPECT_FALSE(model.headerData(2, Qt::Horizontal).isValid());
  EXPECT_FALSE(model.headerData(-1, Qt::Horizontal).isValid());
  EXPECT_FALSE(model.headerData(0, Qt::Vertical).isValid());
  EXPECT_EQ(model.rowCount(model.index(0, 0)), 0);
  model.clickColumn(7);
  EXPECT_EQ(shown(), "1");
}

TEST_F(ListModel, ASortMovesPersistentIndexesWithTheirRecords) {
  fill({{"3", "c"}, {"1", "a"}, {"2", "b"}});
  const QPersistentModelIndex third = model.index(0, 1);
  const QPersistentModelIndex first = model.index(1, 0);
  model.clickColumn(1);
  EXPECT_EQ(shown(), "1 2 3");
  EXPECT_EQ(third, model.index(2, 1));
  EXPECT_EQ(first, model.index(0, 0));
  model.clickColumn(1);
  EXPECT_EQ(shown(), "3 2 1");
  EXPECT_EQ(third, model.index(0, 1));
}

TEST_F(ListView, SortKeepsSelectionAndTheCurrentRecordInSight) {
  fillMany(500);
  view.selectRow(0);
  view.setCurrentIndex(model.index(0, 0));
  view.clickHeader(1);
  EXPECT_EQ(view.currentIndex().siblingAtColumn(0).data().toString(), "1");
  EXPECT_EQ(view.currentIndex().row(), 499);
  EXPECT_TRUE(view.viewport()->rect().intersects(view.visualRect(view.currentIndex())));
  EXPECT_EQ(view.selectionModel()->selectedRows().size(), 1);
  EXPECT_TRUE(view.selectionModel()->isRowSelected(499));
}

TEST_F(ListView, SortWithoutACurrentRecordInSightStartsAtTheTop) {
  fillMany(500);
  view.verticalScrollBar()->setValue(100);
  view.clickHeader(0);
  EXPECT_EQ(view.verticalScrollBar()->value(), 0);
}

TEST_F(ListView, HeaderShowsKeyAndDirection) {
  fill({{"2", "b"}, {"1", "a"}});
  EXPECT_FALSE(view.header()->isSortIndicatorShown());
  view.clickHeader(1);
  EXPECT_TRUE(view.header()->isSortIndicatorShown());
  EXPECT_EQ(view.header()->sortIndicatorSection(), 1);
  EXPECT_EQ(view.header()->sortIndicatorOrder(), Qt::AscendingOrder);
  view.clickHeader(1);
  EXPECT_EQ(view.header()->sortIndicatorOrder(), Qt::DescendingOrder);
  view.clickHeader(0);
  EXPECT_EQ(view.header()->sortIndicatorSection(), 0);
}

TEST_F(ListView, WidthsThatTheUserGaveSurviveNewRows) {
  fill({{"1", "a"}});
  view.setColumnWidth(1, 333);
  fill({{"2", "b"}});
  model.clear();
  fill({{"3", "c"}});
  EXPECT_EQ(view.columnWidth(1), 333);
}

TEST_F(ListView, WidthsAreTwips) {
  EXPECT_EQ(view.columnWidth(0), view.logicalDpiX());
  view.setColumnTwips(0, {1000});
  EXPECT_EQ(view.columnWidth(0), qRound(1000.0 * view.logicalDpiX() / 1440));
  view.setColumnTwips(0, {0});
  EXPECT_EQ(view.columnWidth(0), 0);
  EXPECT_TRUE(view.isColumnHidden(0));
  view.setColumnTwips(0, {1440});
  EXPECT_EQ(view.columnWidth(0), view.logicalDpiX());
}

TEST_F(ListView, AMillionRowsHaveOneHeight) {
  Rows rows(1000000, {"1", "a"});
  fill(rows);
  EXPECT_EQ(view.verticalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
  EXPECT_EQ(view.rowHeight(0), view.rowHeight(999999));
  view.scrollToBottom();
  EXPECT_GE(view.rowAt(view.viewport()->height() - 1), 999998);
}

TEST_F(ListView, TheFontGivesNameSizeBoldAndItalicAndNothingElse) {
  QFont chosen("DejaVu Serif", 14);
  chosen.setBold(true);
  chosen.setItalic(true);
  chosen.setUnderline(true);
  chosen.setStrikeOut(true);
  const int before = view.rowHeight(0) + view.verticalHeader()->defaultSectionSize();
  view.setListFont(chosen);
  EXPECT_EQ(view.font().family(), "DejaVu Serif");
  EXPECT_EQ(view.font().pointSizeF(), 14);
  EXPECT_TRUE(view.font().bold());
  EXPECT_TRUE(view.font().italic());
  EXPECT_FALSE(view.font().underline());
  EXPECT_FALSE(view.font().strikeOut());
  EXPECT_GE(view.verticalHeader()->defaultSectionSize() * 2, before);
  EXPECT_GE(view.verticalHeader()->defaultSectionSize(), view.fontMetrics().height());
}

}  // namespace
}  // namespace korvel::control
