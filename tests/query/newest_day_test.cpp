#include "query/audit_record.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "results/row_store.h"

namespace korvel::query {
namespace {

using namespace std::chrono_literals;
using std::chrono::year_month_day;

/// The newest day of a standard list with these dates, of which it shows the rows from `first` on.
std::optional<year_month_day> newest(const std::vector<std::string>& dates, std::size_t first = 0,
                                     const results::RowFilter& filter = {}) {
  results::ResultList list(results::RowFilling::standard);
  setUpAuditColumns(list);
  auto store = std::make_shared<results::RowStore>();
  std::vector<db::Field> fields;
  for (const AuditColumn& column : auditColumns()) fields.push_back({std::string(column.name)});
  store->beginResult(fields);
  std::vector<results::RowId> rows;
  for (const std::string& date : dates) {
    std::vector<db::Cell> cells(auditColumnCount);
    cells[0] = {"1"};
    cells[1] = {date};
    // Other columns hold dates as well.
    cells[9] = {"2020-01-01 00:00:00.000"};
    rows.push_back(store->append(cells));
  }
  rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(first));
  list.setRows(store, rows);
  list.setFilter(filter);
  return newestDay(list);
}

TEST(NewestDay, IsTheLastDateOfTheRowsWhateverTheirOrder) {
  EXPECT_EQ(newest({"2004-03-07 12:00:00.000", "2004-11-30 23:59:59.999", "2003-12-31 00:00:00.000"}),
            (year_month_day{2004y / 11 / 30}));
  EXPECT_EQ(newest({"2004-03-07"}), (year_month_day{2004y / 3 / 7}));
  EXPECT_EQ(newest({"2004-03-07T12:00:00Z"}), (year_month_day{2004y / 3 / 7}));
}

TEST(NewestDay, RowsOfOtherListsDoNotCount) {
  EXPECT_EQ(newest({"2005-01-01 00:00:00.000", "2004-03-07 00:00:00.000"}, 1), (year_month_day{2004y / 3 / 7}));
}

TEST(NewestDay, RowsThatAFilterHidesCount) {
  EXPECT_EQ(newest({"2005-01-01 00:00:00.000", "2004-03-07 00:00:00.000"}, 0,
                   {{{.column = {1}, .beginnings = {"2004"}}}, {}}),
            (year_month_day{2005y / 1 / 1}));
}

TEST(NewestDay, TextsThatAreNoDateAreNone) {
  EXPECT_EQ(newest({}), std::nullopt);
  EXPECT_EQ(newest({"x", "", "9999-99-99", "2004", "Mar  7 2004 12:00PM"}), std::nullopt);
  EXPECT_EQ(newest({"x", "2004-03-07 00:00:00", "9999-99-99 00:00:00"}), (year_month_day{2004y / 3 / 7}));
}

TEST(NewestDay, AListWithoutColumnsHasNone) {
  EXPECT_EQ(newestDay(results::ResultList(results::RowFilling::whole)), std::nullopt);
}

}  // namespace
}  // namespace korvel::query
