// Outputs of a list of which only some rows are shown.
#include "control/message_boxes.h"
#include "tests/control/printing_fixture.h"
#include "ui/chip_bar.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FilteredOutputs : public Printing {
 protected:
  FilteredOutputs() { recorder->chosenFolder = QString::fromStdString(utf8FromPath(folder.path())); }
  /// Two of three rows are shown.
  std::unique_ptr<AuditViewer> filtered() {
    auto viewer = viewerWith({{"one", "x", "c"}, {"two", "y", "c"}, {"three", "x", "c"}});
    QTableView* view = list(*viewer, 5);
    view->setCurrentIndex(view->model()->index(0, 1));
    QTest::keyClick(view, Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(column(*viewer, 5), "one three");
    return viewer;
  }
};

TEST_F(FilteredOutputs, AskWhichRowsAndSayWhichTheyWere) {
  const auto viewer = filtered();
  recorder->chosenAnswer = 0;
  viewer->ExportNotepad();
  EXPECT_THAT(recorder->questions, ElementsAre(std::pair(control::messageTitle(),
                                                         QString("2 shown, 3 in the list: which are to be put out?"))));
  EXPECT_THAT(recorder->offeredAnswers, ElementsAre(QStringList{"&Shown only", "&Whole list"}));
  EXPECT_EQ(written("velview.txt").find("two"), std::string::npos);
  EXPECT_NE(written("velview.txt").find("three"), std::string::npos);
  EXPECT_TRUE(statusPanel(*viewer).endsWith("Filtered: 2 of 3 records")) << statusPanel(*viewer).toStdString();
  recorder->chosenAnswer = 1;
  viewer->ExportNotepad();
  EXPECT_NE(written("velview.txt").find("two"), std::string::npos);
  EXPECT_TRUE(statusPanel(*viewer).endsWith("Whole list: all 3 records, filters not applied"));
  EXPECT_EQ(column(*viewer, 5), "one three") << "the list goes on showing what it showed";
}

TEST_F(FilteredOutputs, TheExchangeFileAsksToo) {
  const auto viewer = filtered();
  recorder->chosenAnswer = 0;
  viewer->ExportExcel();
  ASSERT_EQ(recorder->questions.size(), 1);
  EXPECT_TRUE(statusPanel(*viewer).endsWith("Filtered: 2 of 3 records"));
}

TEST_F(FilteredOutputs, ReportsSayItOnTheirPagesAndInTheStatus) {
  const auto viewer = filtered();
  recorder->chosenAnswer = 0;
  viewer->PreviewReport();
  completeDocuments();
  EXPECT_EQ(recorder->questions.size(), 1);
  EXPECT_EQ(written("report.htm").find("two"), std::string::npos);
  EXPECT_EQ(statusPanel(*viewer), "Filtered: 2 of 3 records");
  recorder->chosenAnswer = 1;
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_NE(written("report.htm").find("two"), std::string::npos);
  EXPECT_EQ(statusPanel(*viewer), "Whole list: all 3 records, filters not applied");
}

TEST_F(FilteredOutputs, TheStatusOfAReportEndsWithTheFilter) {
  const auto viewer = filtered();
  recorder->chosenAnswer = 0;
  viewer->PreviewReport();
  completeDocuments();
  ASSERT_EQ(statusPanel(*viewer), "Filtered: 2 of 3 records");
  QTest::keyClick(list(*viewer, 5), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_EQ(column(*viewer, 5), "one two three");
  EXPECT_EQ(statusPanel(*viewer), "");
}

/// What was written stays written.
TEST_F(FilteredOutputs, TheStatusOfAFileOutlastsTheFilter) {
  const auto viewer = filtered();
  recorder->chosenAnswer = 0;
  viewer->ExportNotepad();
  const QString said = statusPanel(*viewer);
  QTest::keyClick(list(*viewer, 5), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_EQ(column(*viewer, 5), "one two three");
  EXPECT_EQ(statusPanel(*viewer), said);
}

TEST_F(FilteredOutputs, WithoutAnAnswerNothingIsPutOut) {
  const auto viewer = filtered();
  recorder->chosenAnswer = std::nullopt;
  viewer->ExportNotepad();
  viewer->ExportExcel();
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_EQ(recorder->questions.size(), 3);
  EXPECT_TRUE(folderIsEmpty());
  EXPECT_EQ(recorder->printerDialogs, 0);
  EXPECT_FALSE(control::libraryState().pendingReport.print);
}

TEST_F(FilteredOutputs, OfAListWithoutFiltersNothingIsAsked) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  viewer->ExportNotepad();
  click(*viewer, "btPrint");
  completeDocuments();
  EXPECT_THAT(recorder->questions, IsEmpty());
  EXPECT_EQ(recorder->printerDialogs, 1);
}

TEST_F(FilteredOutputs, WhereTheFiltersLeaveNothingTheWholeListMayBePutOut) {
  const auto viewer = filtered();
  QTableView* view = list(*viewer, 5);
  QTest::keyClick(view, Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_EQ(view->model()->rowCount(), 0);
  recorder->chosenAnswer = 0;
  viewer->ExportNotepad();
  EXPECT_TRUE(folderIsEmpty());
  EXPECT_EQ(recorder->messages.size(), 1U) << "there is nothing to put out";
  recorder->chosenAnswer = 1;
  viewer->ExportNotepad();
  EXPECT_NE(written("velview.txt").find("two"), std::string::npos);
}

}  // namespace
}  // namespace korvel::test
