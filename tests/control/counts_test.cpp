// Numbers of records and characters in texts of our own: their digits are grouped by the locale; those in fixed texts
// are not.
#include <QLabel>
#include <QTest>

#include "control/forms/record_view.h"
#include "control/forms/value_field.h"
#include "control/result_list_view.h"
#include "tests/control/default_locale.h"
#include "tests/control/exports_fixture.h"

namespace korvel::test {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

class Counts : public Outputs {
 protected:
  std::unique_ptr<AuditViewer> viewerWithRows(std::size_t rows) {
    return viewerWith(std::vector<std::array<std::string, 3>>(rows, {"a", "b", "c"}));
  }
  static control::ResultListView* table(const AuditViewer& viewer, const char* name) {
    return element<control::ResultListView>(viewer, name);
  }

  const DefaultLocale german{QLocale(QLocale::German, QLocale::Germany)};
};

TEST_F(Counts, OfTheRecordsPanelAreFixed) {
  EXPECT_EQ(recordsPanel(*viewerWithRows(1500)), "1500 Records on current tab");
}

TEST_F(Counts, OfRowsThatAreNotCopiedAreGrouped) {
  const auto viewer = viewerWithRows(1500);
  table(*viewer, "lvListView5")->setCopyLimit(10);
  table(*viewer, "lvListView5")->selectAll();
  table(*viewer, "lvListView5")->copySelection();
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_THAT(recorder->messages[0].text.toStdString(), HasSubstr("1.500 rows are too many"));
}

TEST_F(Counts, OfRowsThatAreNoLongerSelectedAreGrouped) {
  std::vector<CannedRow> sent;
  for (int i = 0; i < 4998; ++i) sent.push_back(record(std::to_string(i), "CS", i % 2 == 0 ? "a" : "b"));
  const auto viewer = shownViewer();
  server.resultSets = {sent};
  click(*viewer, "btQuery");
  control::ResultListView& view = *table(*viewer, "lvListView0");
  view.clickHeader(5);
  view.selectionModel()->select({view.model()->index(0, 0), view.model()->index(2498, 1)},
                                QItemSelectionModel::ClearAndSelect);
  view.clickHeader(0);
  EXPECT_THAT(statusPanel(*viewer).toStdString(), HasSubstr("2.499 selected rows"));
}

TEST_F(Counts, OfARecordsPlaceAndOfItsCharactersAreGrouped) {
  std::vector<std::array<std::string, 3>> rows(1500, {"a", "b", "c"});
  rows.back()[1] = std::string(3000000, 'x');
  const auto viewer = viewerWith(rows);
  QTableView* const view = list(*viewer, 5);
  view->setCurrentIndex(view->model()->index(1499, 0));
  QTest::keyClick(view, Qt::Key_Return);
  const auto* const record = viewer->findChild<control::RecordView*>();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->windowTitle(), "Record 1.500 of 1.500");
  QStringList notes;
  for (const auto* label : record->findChildren<QLabel*>()) notes += label->text();
  EXPECT_TRUE(
      notes.contains("The first 100.000 of 3.000.000 characters are shown. Copying the record takes all of them."))
      << notes.join('\n').toStdString();
}

TEST_F(Counts, OfCharactersThatAFileDoesNotHoldAreGrouped) {
  std::string greek;
  for (int i = 0; i < 1200; ++i) greek += "\xCE\xB1";
  const auto viewer = viewerWith({{greek, "b", "c"}});
  viewer->ExportNotepad();
  EXPECT_THAT(statusPanel(*viewer).toStdString(), HasSubstr("cannot hold: 1.200;"));
}

}  // namespace
}  // namespace korvel::test
