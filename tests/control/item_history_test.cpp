#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "control/forms/history_view.h"
#include "control/forms/value_plot.h"
#include "control/texts.h"
#include "query/audit_record.h"
#include "tests/control/command_surfaces.h"
#include "tests/results/stored_rows.h"
#include "ui/result_table.h"

namespace korvel::test {
namespace {

using control::HistoryView;
using control::ResultListModel;
using control::ResultListView;
using control::ValuePlot;
using results::ResultList;
using results::RowFilling;
using results::test::Row;
using results::test::Value;

struct Change {
  std::string number;
  std::string time;
  Value before;
  Value after;
  std::string item = "TIC-1901";
  std::string user = "Luca Rossi";
};

/// The list of an audit trail, and the window of an item's history.
class ItemHistoryView : public ::testing::Test {
 protected:
  ItemHistoryView() {
    query::setUpAuditColumns(list);
    view.resize(600, 300);
    view.applyColumnWidths();
    view.show();
  }

  void fill(const std::vector<Change>& changes) {
    const ResultListModel::RowsChange change(model);
    std::vector<Row> rows;
    std::vector<results::RowId> ids;
    for (const Change& each : changes) {
      Row row(query::auditColumnCount, Value(""));
      row[0] = each.number;
      row[1] = each.time;
      row[2] = "{guid}";
      row[5] = "Limits";
      row[6] = "UpperLimit";
      row[8] = each.item;
      row[9] = each.before;
      row[10] = each.after;
      row[14] = each.user;
      ids.push_back({static_cast<std::uint32_t>(rows.size())});
      rows.push_back(row);
    }
    list.setRows(results::test::storeOf(rows), ids);
  }
  void fillGap() {
    fill({{"3", "2004-03-09 10:00:00", "4 bar", "5 bar"},
          {"1", "2004-03-07 10:00:00", "1 bar", "2 bar"},
          {"9", "2004-03-07 11:00:00", "x", "y", "TIC-2"},
          {"2", "2004-03-08 10:00:00", "2 bar", "3 bar"}});
  }
  void show(int row) { history.showHistory(view, query::itemColumns(list).value(), row); }

  /// The rows of the table: columns by their captions.
  QString column(const QString& caption) const {
    const QAbstractItemModel& shown = history.changes();
    for (int i = 0; i < shown.columnCount(); ++i) {
      if (shown.headerData(i, Qt::Horizontal).toString() != caption) continue;
      QStringList texts;
      for (int row = 0; row < shown.rowCount(); ++row) texts << shown.index(row, i).data().toString();
      return texts.join(QLatin1Char('|'));
    }
    return QStringLiteral("no column");
  }
  ui::ResultTable* table() const { return history.findChild<ui::ResultTable*>(); }
  ValuePlot* plot() const { return history.findChild<ValuePlot*>(); }
  QPushButton* button(const char* name) const { return history.findChild<QPushButton*>(QLatin1String(name)); }
  QString label(const char* name) const { return history.findChild<QLabel*>(QLatin1String(name))->text(); }

  ResultList list{RowFilling::standard};
  ResultListModel model{list};
  ResultListView view{model};
  HistoryView history{&view};
};

TEST_F(ItemHistoryView, HasTheChangesOfTheItemInTheOrderOfTime) {
  fillGap();
  show(3);
  EXPECT_TRUE(history.isVisible());
  EXPECT_EQ(history.windowTitle(), "History of TIC-1901");
  EXPECT_EQ(label("lblPlace"), QStringLiteral("{guid} \u00B7 Limits \u00B7 UpperLimit"));
  EXPECT_EQ(column("Entry ID"), "1|2|3");
  EXPECT_EQ(column("Old Value"), "1 bar|2 bar|4 bar");
  EXPECT_EQ(column("New Value"), "2 bar|3 bar|5 bar");
  EXPECT_EQ(column("User Name"), "Luca Rossi|Luca Rossi|Luca Rossi");
  // The record that it was asked for is the current one.
  EXPECT_EQ(table()->currentIndex().row(), 1);
  EXPECT_EQ(plot()->current(), 1);
}

TEST_F(ItemHistoryView, SaysInWordsWhatDoesNotContinue) {
  fillGap();
  show(0);
  EXPECT_EQ(column("Remark"), "||Does not continue from 3 bar");
  EXPECT_EQ(label("lblSummary"),
            "Changes in this list: 3. Old values that are not the new value of the change before: 1. Something "
            "happened there that this list does not show.");
  EXPECT_TRUE(plot()->readout().endsWith("(Does not continue)")) << plot()->readout().toStdString();
  show(2);
  EXPECT_EQ(column("Remark"), "");
  EXPECT_EQ(label("lblSummary"), "Changes in this list: 1. Each old value is the new value of the change before.");
}

TEST_F(ItemHistoryView, PlotsNumbersOnly) {
  fillGap();
  show(0);
  EXPECT_TRUE(plot()->isVisible());
  EXPECT_GT(plot()->markOf(0).y(), plot()->markOf(2).y());
  // A day between each two of the marks.
  EXPECT_NEAR(plot()->markOf(1).x() - plot()->markOf(0).x(), plot()->markOf(2).x() - plot()->markOf(1).x(), 0.01);
  show(2);
  EXPECT_FALSE(plot()->isVisible());
}

/// Records without an item id may be about several things.
TEST_F(ItemHistoryView, WithoutAnItemIdNothingIsSaidToContinue) {
  fill({{"1", "2004-03-07 10:00:00", "1 bar", "2 bar", ""}, {"2", "2004-03-08 10:00:00", "7 bar", "8 bar", ""}});
  show(0);
  EXPECT_EQ(history.windowTitle(), "History of UpperLimit");
  EXPECT_EQ(label("lblPlace"), QStringLiteral("{guid} \u00B7 Limits"));
  EXPECT_EQ(column("Remark"), "|");
  EXPECT_FALSE(plot()->isVisible());
  EXPECT_EQ(label("lblSummary"),
            "Changes in this list: 2. These records have no Item ID and may be about several things: whether their "
            "values continue is not said.");
}

/// With very many changes it has no more marks than places for them, and reaches each change by key and pointer.
TEST_F(ItemHistoryView, ThePlotOfVeryManyChangesHasAMarkWhereThereIsRoom) {
  std::vector<Change> changes;
  for (int i = 0; i < 20'000; ++i) {
    // Every second value does not continue.
    const int value = i / 2 % 50;
    const std::string minute = std::to_string(100 + i / 60 % 60).substr(1);
    const std::string hour = std::to_string(100 + i / 3600 % 24).substr(1);
    changes.push_back({std::to_string(i),
                       "2004-03-07 " + hour + ":" + minute + ":" + std::to_string(100 + i % 60).substr(1),
                       std::to_string(value) + " bar", std::to_string(value + 1) + " bar"});
  }
  fill(changes);
  show(0);
  ASSERT_EQ(history.changes().rowCount(), 20'000);
  plot()->setCurrent(12'345);
  const std::vector<int> marked = plot()->marked();
  EXPECT_LT(marked.size(), 4'000U);
  EXPECT_TRUE(std::binary_search(marked.begin(), marked.end(), 12'345)) << "the current one is marked";
  // What has no mark lies on one.
  for (int i = 0; i < 20'000; ++i) {
    if (history.changes().history().changes[static_cast<std::size_t>(i)].continues) continue;
    const QPointF place = plot()->markOf(i);
    const bool isCovered = std::any_of(marked.begin(), marked.end(),
                                       [&](int each) { return (plot()->markOf(each) - place).manhattanLength() < 10; });
    ASSERT_TRUE(isCovered) << i;
    i += 97;
  }
  plot()->setFocus();
  QTest::keyClick(plot(), Qt::Key_Right);
  EXPECT_EQ(table()->currentIndex().row(), 12'346);
}

TEST_F(ItemHistoryView, AChangeOfASharedAccountIsReadOutWithoutAName) {
  fill({{"1", "2004-03-07 10:00:00", "1 bar", "2 bar", "TIC-1901", ""}});
  show(0);
  EXPECT_EQ(plot()->readout(), QStringLiteral("2004-03-07 10:00:00: 1 bar \u2192 2 bar"));
}

TEST_F(ItemHistoryView, ThePlotGoesFromMarkToMarkByKeyAndPointer) {
  fillGap();
  show(0);
  plot()->setFocus();
  QTest::keyClick(plot(), Qt::Key_Home);
  EXPECT_EQ(plot()->readout(), QStringLiteral("2004-03-07 10:00:00, Luca Rossi: 1 bar \u2192 2 bar"));
  EXPECT_EQ(plot()->accessibleDescription(), plot()->readout());
  EXPECT_EQ(table()->currentIndex().row(), 0);
  QTest::keyClick(plot(), Qt::Key_Right);
  EXPECT_EQ(table()->currentIndex().row(), 1);
  QTest::keyClick(plot(), Qt::Key_End);
  QTest::keyClick(plot(), Qt::Key_Right);
  EXPECT_EQ(table()->currentIndex().row(), 2);
  QTest::keyClick(plot(), Qt::Key_Left);
  EXPECT_EQ(table()->currentIndex().row(), 1);
  // The pointer reads out without changing the current one; a click does.
  QTest::mouseMove(plot(), plot()->markOf(0).toPoint());
  EXPECT_TRUE(plot()->readout().startsWith("2004-03-07 10:00:00")) << plot()->readout().toStdString();
  EXPECT_EQ(table()->currentIndex().row(), 1);
  QTest::mouseClick(plot(), Qt::LeftButton, {}, plot()->markOf(2).toPoint());
  EXPECT_EQ(table()->currentIndex().row(), 2);
  // The other way round, too.
  table()->setFocus();
  QTest::keyClick(table(), Qt::Key_Up);
  EXPECT_EQ(plot()->current(), 1);
}

TEST_F(ItemHistoryView, EnterGoesToTheRecordInTheList) {
  fillGap();
  show(3);
  QTest::keyClick(table(), Qt::Key_Down);
  QTest::keyClick(&history, Qt::Key_Return);
  EXPECT_FALSE(history.isVisible());
  EXPECT_EQ(view.currentIndex().row(), 0);
  EXPECT_TRUE(view.selectionModel()->isRowSelected(0));
}

TEST_F(ItemHistoryView, HasRecordsThatTheFilterHidesAndSaysSo) {
  fillGap();
  {
    const ResultListModel::RowsChange change(model);
    list.setFilter({{{.column = results::ColumnIndex{0}, .values = {{"2", false}}}}, {}});
  }
  show(0);
  EXPECT_EQ(column("Entry ID"), "1|2|3");
  EXPECT_EQ(column("Remark"), "Hidden by the filter||Does not continue from 3 bar; Hidden by the filter");
  EXPECT_TRUE(button("btGoTo")->isEnabled());
  QTest::keyClick(table(), Qt::Key_Down);
  EXPECT_FALSE(button("btGoTo")->isEnabled());
}

TEST_F(ItemHistoryView, IsCopiedAsATable) {
  fillGap();
  show(0);
  history.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&history));
  QTest::keyClick(table(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(QApplication::clipboard()->text().contains("2004-03-09 10:00:00\t4 bar\t5 bar\tDoes not continue from 3"))
      << QApplication::clipboard()->text().toStdString();
  EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasHtml());
}

TEST_F(ItemHistoryView, ClosesWhenTheListGetsOtherRows) {
  fillGap();
  show(0);
  fill({{"1", "2004-03-07 10:00:00", "1 bar", "2 bar"}});
  EXPECT_FALSE(history.isVisible());
  EXPECT_EQ(history.changes().rowCount(), 0);
}

class ItemHistoryCommand : public CommandTest {
 protected:
  static HistoryView* shownHistory(const AuditViewer& viewer) {
    auto* view = viewer.findChild<HistoryView*>();
    return view != nullptr && view->isVisible() ? view : nullptr;
  }
};

TEST_F(ItemHistoryCommand, KeysAloneOpenItAndLeaveIt) {
  const auto viewer = shownViewer();
  QTableView* view = list(*viewer, 0);
  activate(*viewer);
  view->setFocus();
  QTest::keyClick(view, Qt::Key_H, Qt::ControlModifier);
  EXPECT_EQ(shownHistory(*viewer), nullptr) << "there is no record";
  server.resultSets = {{record("10", "CS"), record("7", "RT")}};
  click(*viewer, "btQuery");
  view->setFocus();
  QTest::keyClick(view, Qt::Key_Down);
  QTest::keyClick(view, Qt::Key_H, Qt::ControlModifier);
  ASSERT_NE(shownHistory(*viewer), nullptr);
  EXPECT_EQ(shownHistory(*viewer)->changes().rowCount(), 2);
  QTest::keyClick(shownHistory(*viewer), Qt::Key_Escape);
  EXPECT_EQ(shownHistory(*viewer), nullptr);
}

TEST_F(ItemHistoryCommand, IsInTheMenuOfARecord) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("10", "CS")}};
  click(*viewer, "btQuery");
  QTableView* view = list(*viewer, 0);
  const QPoint place = view->visualRect(view->model()->index(0, 0)).center();
  QContextMenuEvent event(QContextMenuEvent::Mouse, place, view->viewport()->mapToGlobal(place));
  QApplication::sendEvent(view->viewport(), &event);
  auto* menu = element<QMenu>(*viewer, "SmartPopup");
  ASSERT_TRUE(menu->isVisible());
  // The given entry comes first.
  EXPECT_EQ(menu->actions().first()->text(), "Change Font");
  for (QAction* entry : menu->actions())
    if (entry->text() == "Show history of this item")
      QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
  EXPECT_NE(shownHistory(*viewer), nullptr);
}

TEST_F(ItemHistoryCommand, AListWithoutItemsSaysWhatItLacks) {
  const auto viewer = shownViewer();
  answerWithOneRow();
  selectTab(*viewer, 5);
  viewer->TriggerAdvancedQuery("Select a, b");
  QTableView* view = list(*viewer, 5);
  view->setCurrentIndex(view->model()->index(0, 0));
  activate(*viewer);
  view->setFocus();
  QTest::keyClick(view, Qt::Key_H, Qt::ControlModifier);
  EXPECT_EQ(shownHistory(*viewer), nullptr);
  ASSERT_FALSE(recorder->messages.empty());
  EXPECT_TRUE(recorder->messages.back().text.startsWith("This list lacks columns"));
}

}  // namespace
}  // namespace korvel::test
