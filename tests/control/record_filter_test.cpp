// Filtering a list by some of its records.
#include <gtest/gtest.h>

#include <QWidget>

#include "control/list_filters.h"
#include "tests/results/stored_rows.h"

namespace korvel::test {
namespace {

using control::ListArea;
using control::ListFilters;
using control::ResultListModel;
using control::ResultListView;
using results::ResultList;
using results::RowFilling;

class RecordFilters : public ::testing::Test {
 protected:
  RecordFilters() { fill({{"1", "a"}, {"2", "a"}, {"3", "b"}}); }

  void fill(const std::vector<results::test::Row>& rows) {
    const ResultListModel::RowsChange change(model);
    list.setColumns({{"No", results::standardColumnWidth, 0}, {"Kind", results::standardColumnWidth, 0}});
    std::vector<results::RowId> ids;
    for (std::uint32_t i = 0; i < rows.size(); ++i) ids.push_back({i});
    list.setRows(results::test::storeOf(rows), ids);
  }
  void empty() {
    const ResultListModel::RowsChange change(model);
    list.clear();
  }
  void keep(const std::string& name, const std::vector<results::RowId>& records) {
    filters.keepOnlyRecords(name, results::matchingOnly(list, records)->records);
  }
  std::string shown() const {
    std::string texts;
    for (std::size_t row = 0; row < list.rowCount(); ++row) texts += list.text({row}, {0});
    return texts;
  }
  QStringList chips() const {
    QStringList texts;
    for (const ui::Chip& chip : area.chips->chips()) texts << (chip.column + ' ' + chip.condition).trimmed();
    return texts;
  }

  QWidget window;
  ResultList list{RowFilling::whole};
  ResultListModel model{list};
  ResultListView view{model, &window};
  ui::FindHistory history;
  ListArea area{view, history};
  ListFilters filters{area,
                      {.trapped = [](std::string_view, const std::function<void()>& operation) { operation(); },
                       .changed = [] {},
                       .find = [](const ui::FindRequest&) {}}};
};

TEST_F(RecordFilters, HaveAChipANameAndOnePlaceForEachName) {
  keep("exception.deletion", {{0}, {2}});
  EXPECT_EQ(shown(), "13");
  EXPECT_EQ(chips(), QStringList{"Deletions"});
  EXPECT_EQ(area.filterState.conditions, std::vector<std::string>{"Deletions"});
  keep("exception.deletion", {{1}, {2}});
  EXPECT_EQ(shown(), "23") << "the same name takes its place";
  filters.keepOnlyValue(model.index(0, 1));
  EXPECT_EQ(shown(), "2");
  keep("exception.outsideHours", {{0}});
  EXPECT_EQ(shown(), "") << "all conditions are met";
  EXPECT_EQ(chips(), (QStringList{"Deletions", "Kind = a", "Outside working hours"}));
  EXPECT_TRUE(filters.keepsRecords("exception.deletion"));
  filters.showAllRecords("exception.deletion");
  EXPECT_FALSE(filters.keepsRecords("exception.deletion"));
  EXPECT_EQ(shown(), "1");
  Q_EMIT area.chips->removeRequested(1);
  Q_EMIT area.chips->changeRequested(0);  // there is nothing to be changed
  Q_EMIT area.chips->removeRequested(0);
  EXPECT_EQ(shown(), "123");
}

TEST_F(RecordFilters, GoWithTheirAnswerEvenWhereTheyArePinned) {
  filters.keepOnlyValue(model.index(0, 1));
  keep("exception.deletion", {{0}});
  area.chips->setPinned(true);
  empty();
  EXPECT_EQ(chips(), QStringList{"Kind = a"});
  fill({{"4", "a"}, {"5", "b"}});
  EXPECT_EQ(shown(), "4");
  keep("exception.deletion", {{1}});
  EXPECT_EQ(shown(), "");
  fill({{"6", "a"}, {"7", "b"}});
  EXPECT_EQ(shown(), "6") << "also where the rows are replaced at once";
  EXPECT_EQ(chips(), QStringList{"Kind = a"});
}

}  // namespace
}  // namespace korvel::test
