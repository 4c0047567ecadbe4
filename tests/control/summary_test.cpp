#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "control/forms/summary_view.h"
#include "query/audit_record.h"
#include "tests/control/command_surfaces.h"
#include "tests/results/generated_list.h"
#include "tests/results/stored_rows.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

using control::ResultListModel;
using control::ResultListView;
using control::SummaryView;
using results::ResultList;
using results::RowFilling;
using results::test::Row;
using results::test::Value;

/// Chooses by keyboard: the first entry that begins so.
void chooseEntry(QComboBox* box, const QString& beginning) {
  box->setFocus();
  QTest::keyClick(box, Qt::Key_Home);
  for (int i = 0; i < box->count() && !box->currentText().startsWith(beginning); ++i)
    QTest::keyClick(box, Qt::Key_Down);
  ASSERT_TRUE(box->currentText().startsWith(beginning)) << box->currentText().toStdString();
}

/// The list of an audit trail, and its summary.
class Summary : public ::testing::Test {
 protected:
  Summary() {
    query::setUpAuditColumns(list);
    view.resize(600, 300);
    view.applyColumnWidths();
    view.show();
    std::vector<Row> rows;
    std::vector<results::RowId> ids;
    const auto add = [&](const std::string& time, const std::string& event, Value user) {
      Row row(query::auditColumnCount, Value(""));
      row[0] = std::to_string(rows.size() + 1);
      row[1] = time;
      row[7] = event;
      row[14] = std::move(user);
      ids.push_back({static_cast<std::uint32_t>(rows.size())});
      rows.push_back(row);
    };
    for (int i = 0; i < 10; ++i) add("2004-03-07 10:00:00", "UPDATE", "Luca Rossi");
    add("2004-03-07 11:00:00", "INSERT", "Luca Rossi");
    add("2004-04-08 11:00:00", "INSERT", std::nullopt);
    add("2004-04-09 11:00:00", "DELETE", "");
    const ResultListModel::RowsChange change(model);
    list.setRows(results::test::storeOf(rows), ids);
  }

  void show(int column) {
    view.setCurrentIndex(model.index(0, column));
    summary.showSummary(view);
  }
  /// What the table shows: a row of texts, as people read it from the left to the right.
  QString shown() const {
    QStringList rows;
    const QAbstractItemModel& groups = *summary.table().model();
    for (int row = 0; row < groups.rowCount(); ++row) {
      QStringList texts;
      for (int place = 0; place < groups.columnCount(); ++place)
        texts << groups.index(row, summary.table().horizontalHeader()->logicalIndex(place)).data().toString();
      rows << texts.join(QLatin1Char(' '));
    }
    return rows.join(QLatin1Char('|'));
  }
  QComboBox* box(const char* name) const { return summary.findChild<QComboBox*>(QLatin1String(name)); }
  ResultList list{RowFilling::standard};
  ResultListModel model{list};
  ResultListView view{model};
  SummaryView summary{&view};
};

constexpr int eventColumn = 7;

TEST_F(Summary, CountsTheEventsAtFirst) {
  show(14);
  EXPECT_TRUE(summary.isVisible());
  EXPECT_EQ(shown(), "UPDATE 10|INSERT 2|DELETE 1");
  EXPECT_EQ(summary.findChild<QLabel*>("lblTotal")->text(), "Groups: 3, rows: 13");
}

TEST_F(Summary, OfAListWithoutEventsCountsTheCurrentColumn) {
  {
    const ResultListModel::RowsChange change(model);
    list.startOver({{"Place", results::standardColumnWidth},
                    {"Kind", results::standardColumnWidth},
                    {"Remark", results::standardColumnWidth},
                    {"Sign", results::standardColumnWidth}});
    list.setRows(results::test::storeOf({{"1", "b", "", ""}, {"2", "b", "", ""}, {"3", "a", "", ""}}), {{0}, {1}, {2}});
  }
  show(1);
  EXPECT_EQ(shown(), "b 2|a 1");
}

/// As many groups as rows: the largest are shown, which is said, and the file has all of them.
TEST_F(Summary, OfTooManyGroupsShowsTheLargestAndSaysSo) {
  constexpr std::size_t alone = SummaryView::mostGroups + 5;
  std::vector<Row> rows;
  std::vector<results::RowId> ids;
  for (std::size_t i = 0; i < alone + 2; ++i) {
    Row row(query::auditColumnCount, Value(""));
    row[eventColumn] = i < alone ? "event " + std::to_string(100'000 + i) : "zero";
    ids.push_back({static_cast<std::uint32_t>(i)});
    rows.push_back(row);
  }
  {
    const ResultListModel::RowsChange change(model);
    list.setRows(results::test::storeOf(rows), ids);
  }
  show(eventColumn);
  EXPECT_EQ(summary.table().model()->rowCount(), 10'000);
  EXPECT_TRUE(shown().startsWith("zero 2|event 100000 1|event 100001 1|"));
  const auto* said = summary.findChild<QLabel*>("lblCut");
  EXPECT_TRUE(said->isVisible());
  EXPECT_EQ(said->text(), "Only the 10000 largest of 10006 groups are shown. The exported file has all of them.");
  EXPECT_EQ(summary.findChild<QLabel*>("lblTotal")->text(), "Groups: 10006, rows: 10007");
  const ResultList all = summary.allGroups()();
  ASSERT_EQ(all.rowCount(), alone + 1);
  EXPECT_EQ(all.text({0}, {0}), "zero");
  EXPECT_EQ(all.text({0}, {1}), "2");
  EXPECT_EQ(all.text({alone}, {0}), "event 110004");
  // Nothing is left out any more.
  chooseEntry(box("cmbFirst"), "User Name");
  EXPECT_FALSE(said->isVisible());
}

TEST_F(Summary, SaysThatAFilterHidesRows) {
  view.setFilter({{{.column = {eventColumn}, .values = {{"INSERT", false}}}}, {}});
  show(eventColumn);
  EXPECT_EQ(shown(), "INSERT 2");
  EXPECT_EQ(summary.findChild<QLabel*>("lblTotal")->text(), "Groups: 1, rows: 2. Filtered: 2 of 13 records");
  EXPECT_EQ(summary.filterRemark(), "Filtered: 2 of 13 records");
}

TEST_F(Summary, CountsTwoColumnsAndPartsOfDatesByKeysAlone) {
  show(eventColumn);
  chooseEntry(box("cmbSecond"), "User Name");
  EXPECT_EQ(shown(), "UPDATE Luca Rossi 10|DELETE  1|INSERT  1|INSERT Luca Rossi 1");
  chooseEntry(box("cmbFirst"), "Date Time by month");
  chooseEntry(box("cmbSecond"), "Event");
  EXPECT_EQ(shown(), "2004-03 UPDATE 10|2004-03 INSERT 1|2004-04 DELETE 1|2004-04 INSERT 1");
  // A column with itself is one column.
  chooseEntry(box("cmbFirst"), "Event");
  EXPECT_EQ(shown(), "UPDATE 10|INSERT 2|DELETE 1");
  chooseEntry(box("cmbFirst"), "Date Time by year");
  chooseEntry(box("cmbSecond"), "-");
  EXPECT_EQ(shown(), "2004 13");
}

TEST_F(Summary, IsSortedByValueAndByNumber) {
  show(eventColumn);
  QTableView& table = summary.table();
  table.setFocus();
  table.setCurrentIndex(table.model()->index(0, 1));
  QTest::keyClick(&table, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(shown(), "DELETE 1|INSERT 2|UPDATE 10");
  table.setCurrentIndex(table.model()->index(0, 0));
  QTest::keyClick(&table, Qt::Key_Return, Qt::ControlModifier);
  const QString once = shown();
  QTest::keyClick(&table, Qt::Key_Return, Qt::ControlModifier);
  // As numbers: 10 is more than 2.
  EXPECT_EQ((QStringList{once, shown()}), (QStringList{"UPDATE 10|INSERT 2|DELETE 1", "DELETE 1|INSERT 2|UPDATE 10"}));
}

TEST_F(Summary, CountsTheRowsThatAFilterShows) {
  {
    const ResultListModel::RowsChange change(model);
    list.setFilter(
        {{{.column = results::ColumnIndex{eventColumn}, .excludes = true, .values = {{"UPDATE", false}}}}, {}});
  }
  show(eventColumn);
  EXPECT_EQ(shown(), "INSERT 2|DELETE 1");
}

TEST_F(Summary, IsCopiedWithItsCounts) {
  show(eventColumn);
  summary.findChild<QPushButton*>("btCopy")->click();
  EXPECT_EQ(QApplication::clipboard()->text(), "Event\tCount\nUPDATE\t10\nINSERT\t2\nDELETE\t1\n");
}

TEST_F(Summary, ClosesWhenTheListGetsOtherRows) {
  show(eventColumn);
  const ResultListModel::RowsChange change(model);
  EXPECT_FALSE(summary.isVisible());
}

class SummaryCommand : public CommandTest {};

TEST_F(SummaryCommand, KeysAloneOpenItAndWriteItAsCsv) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("10", "CS", "Tags"), record("7", "RT", "Tags"), record("8", "RT", "Users")}};
  click(*viewer, "btQuery");
  QTableView* view = list(*viewer, 0);
  activate(*viewer);
  view->setFocus();
  QTest::keyClick(view, Qt::Key_G, Qt::ControlModifier);
  auto* summary = viewer->findChild<SummaryView*>();
  ASSERT_NE(summary, nullptr);
  ASSERT_TRUE(summary->isVisible()) << ::testing::PrintToString(recorder->messages);
  chooseEntry(summary->findChild<QComboBox*>("cmbFirst"), "Area");
  const TemporaryFolder folder;
  recorder->chosenFolder = QString::fromStdString(folder.path().string());
  QTest::keyClick(summary->findChild<QPushButton*>("btExport"), Qt::Key_Space);
  std::ifstream in(folder.path() / "Summary.csv", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "Area,Count\r\nTags,2\r\nUsers,1\r\n");
  EXPECT_TRUE(statusPanel(*viewer).contains("Summary.csv")) << statusPanel(*viewer).toStdString();
  QTest::keyClick(summary, Qt::Key_Escape);
  EXPECT_FALSE(summary->isVisible());
}

TEST_F(SummaryCommand, EnterOnAGroupFiltersTheList) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("10", "CS", "Tags"), record("7", "RT", "Tags"), record("8", "RT", "Users")}};
  server.resultSets[0][0][1] = "2004-03-07 10:00:00";
  server.resultSets[0][1][1] = "2004-04-07 10:00:00";
  server.resultSets[0][2][1] = "2004-03-09 10:00:00";
  click(*viewer, "btQuery");
  QTableView* view = list(*viewer, 0);
  const auto enterOn = [&](const QString& column, const QString& group) {
    activate(*viewer);
    view->setFocus();
    QTest::keyClick(view, Qt::Key_G, Qt::ControlModifier);
    auto* summary = viewer->findChild<SummaryView*>();
    ASSERT_TRUE(summary != nullptr && summary->isVisible());
    chooseEntry(summary->findChild<QComboBox*>("cmbFirst"), column);
    QTableView& groups = summary->table();
    for (int row = 0; row < groups.model()->rowCount(); ++row)
      if (groups.model()->index(row, 1).data().toString() == group)
        groups.setCurrentIndex(groups.model()->index(row, 1));
    QTest::keyClick(&groups, Qt::Key_Return);
    EXPECT_FALSE(summary->isVisible());
  };
  enterOn("Area", "Tags");
  EXPECT_EQ(column(*viewer, 0), "7 10");
  enterOn("Date Time by month", "2004-03");
  EXPECT_EQ(column(*viewer, 0), "10");
}

}  // namespace
}  // namespace korvel::test
