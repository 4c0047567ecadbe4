// Texts about the answers that lists show: in empty lists and in the status panel.
#include "control/texts.h"
#include "tests/control/custom_page_fixture.h"
#include "ui/result_table.h"

namespace korvel::test {
namespace {

using namespace std::chrono;
using control::libraryState;
using control::ownText;
using ::testing::IsEmpty;

class Answers : public CustomPage {
 protected:
  static QString emptyText(const AuditViewer& viewer, int index) {
    return static_cast<const ui::ResultTable*>(list(viewer, index))->emptyText();
  }
  static void chooseDay(const year_month_day& day) { libraryState().dateRange = {day, day, true}; }
  static void tick(const AuditViewer& viewer, const QString& path, bool ticked) {
    node(viewer, path)->setCheckState(0, ticked ? Qt::Checked : Qt::Unchecked);
  }
  /// Chooses a range in the dialog.
  void chooseDayInTheDialog(AuditViewer& viewer, const year_month_day& day) {
    recorder->onForm = [day] { libraryState().dateRange.RangeFromDate = libraryState().dateRange.RangeToDate = day; };
    click(viewer, "btDateRangeFilter");
  }
  const QString outOfDate = ownText("status.outOfDate");
  const QString allDates = ownText("query.alarmsOfAllDates");
  const std::vector<std::vector<CannedRow>> oneRecord = {{record("1", "CS")}};
};

TEST_F(Answers, AnEmptyListDistinguishesItsFourStates) {
  const auto viewer = newViewer();
  viewer->resize(1200, 800);
  viewer->show();
  const QString noDatabase = "No database is selected yet. Choose one with \"Select Database\".";
  for (int i = 0; i < 6; ++i) EXPECT_EQ(emptyText(*viewer, i), noDatabase) << i;

  viewer->setDefaultSQLServer("S");
  viewer->OpenDefaultSQLServer();
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(emptyText(*viewer, i), "Not queried yet. \"Run Query\" or F5 shows the records.") << i;
  EXPECT_EQ(emptyText(*viewer, 5), "Not queried yet. \"Run Query\" or F5 runs the query above.");

  server.resultSets = {{}};
  click(*viewer, "btQuery");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(emptyText(*viewer, i), "No records found for filter criteria") << i;
  EXPECT_EQ(emptyText(*viewer, 5), "Not queried yet. \"Run Query\" or F5 runs the query above.");

  server.resultSets.clear();
  server.failure = Error(18456, "Login failed for <b>user</b>.");
  click(*viewer, "btQuery");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(emptyText(*viewer, i), "The query failed. Login failed for <b>user</b>.") << i;
  EXPECT_EQ(list(*viewer, 0)->accessibleDescription(), emptyText(*viewer, 0));
  EXPECT_EQ(recorder->messages.size(), 1U) << "a failure shows no message box";

  click(*viewer, "btClear");
  EXPECT_EQ(emptyText(*viewer, 0), "Not queried yet. \"Run Query\" or F5 shows the records.");
  libraryState().connection = {};
  viewer->SelectDatabase();
  EXPECT_EQ(emptyText(*viewer, 0), noDatabase);
}

TEST_F(Answers, APageWithoutRecordsOfAnAnswerSaysThatNothingWasFound) {
  const auto viewer = shownViewer();
  server.resultSets = oneRecord;
  click(*viewer, "btQuery");
  EXPECT_EQ(emptyText(*viewer, 3), "No records found for filter criteria");
  viewer->UnselectALL();
  click(*viewer, "btQuery");
  EXPECT_EQ(emptyText(*viewer, 3), "Not queried yet. \"Run Query\" or F5 shows the records.");
}

TEST_F(Answers, TheCustomListShowsItsStatesToo) {
  const auto viewer = customPage();
  answerWith({"a"}, {});
  click(*viewer, "btQuery");
  EXPECT_EQ(emptyText(*viewer, 5), "No records found");
  server.failure = Error(208, "Invalid object name 'x'.", 2);
  QString behindTheBox;
  recorder->onMessage = [&] { behindTheBox = emptyText(*viewer, 5); };
  click(*viewer, "btQuery");
  EXPECT_EQ(behindTheBox, "The query failed. Invalid object name 'x'. (line 2)");
  EXPECT_EQ(emptyText(*viewer, 5), behindTheBox);
  EXPECT_EQ(emptyText(*viewer, 0), "Not queried yet. \"Run Query\" or F5 shows the records.");
  server.failure.reset();
  QString meanwhile;
  answerSlowly([&] {
    meanwhile = emptyText(*viewer, 5);
    QCoreApplication::postEvent(&editor(*viewer), new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
  });
  click(*viewer, "btQuery");
  EXPECT_EQ(meanwhile, ownText("list.querying"));
  EXPECT_EQ(emptyText(*viewer, 5), "The query was stopped; no records are shown");
}

TEST_F(Answers, AQueryThatTheControlItselfCannotEndIsOver) {
  const auto viewer = shownViewer();
  const auto failing = [] { throw Error(7, "out of something"); };
  for (const int index : {0, 5})
    QObject::connect(list(*viewer, index)->model(), &QAbstractItemModel::modelAboutToBeReset, viewer.get(), failing);
  viewer->TriggerQuery();
  viewer->TriggerAdvancedQuery("x");
  EXPECT_THAT(recorder->messages, ::testing::SizeIs(2));
  EXPECT_EQ(emptyText(*viewer, 0), "Not queried yet. \"Run Query\" or F5 shows the records.");
  EXPECT_EQ(emptyText(*viewer, 5), "Not queried yet. \"Run Query\" or F5 runs the query above.");
}

TEST_F(Answers, WhatEmptyListsSayFollowsTheLanguage) {
  const auto viewer = shownViewer();
  server.failure = Error(7, "reason");
  click(*viewer, "btQuery");
  libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_EQ(emptyText(*viewer, 0), "Die Abfrage ist fehlgeschlagen. reason");
  EXPECT_EQ(emptyText(*viewer, 5), QString::fromUtf8("Noch nicht abgefragt. \"Abfrage ausführen\" oder F5 führt die "
                                                     "Abfrage oben aus."));
}

TEST_F(Answers, AListIsOutOfDateOnceTheTreeAsksForSomethingElse) {
  const auto viewer = shownViewer();
  tick(*viewer, "Runtime", false);
  EXPECT_EQ(statusPanel(*viewer), "") << "there is no answer yet";
  server.resultSets = oneRecord;
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "");
  tick(*viewer, "Configuration/Alarms", false);
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  tick(*viewer, "Configuration/Alarms", true);
  EXPECT_EQ(statusPanel(*viewer), "") << "what the list shows is what would be asked again";
  viewer->UnselectALL();
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  selectTab(*viewer, 5);
  EXPECT_EQ(statusPanel(*viewer), "") << "the custom page has nothing to do with the tree";
  selectTab(*viewer, 1);
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  viewer->SelectALL();
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  viewer->TriggerQuery();
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(Answers, AListIsOutOfDateOnceTheRangeIsAnother) {
  recorder->forms.insert("frmAdvancedFilters");
  const auto viewer = shownViewer();
  const auto other = shownViewer();
  server.resultSets = oneRecord;
  click(*viewer, "btQuery");
  chooseDayInTheDialog(*other, 2004y / 3 / 7);
  EXPECT_EQ(statusPanel(*viewer), outOfDate) << "the range is everybody's";
  EXPECT_EQ(statusPanel(*other), "");
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "");
  chooseDayInTheDialog(*viewer, 2004y / 3 / 8);
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  chooseDayInTheDialog(*viewer, 2004y / 3 / 7);
  EXPECT_EQ(statusPanel(*viewer), "");
  click(*viewer, "btClearDateRange");
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  click(*viewer, "btClear");
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(Answers, AListIsOutOfDateOnceAnotherViewerHasSelectedAnotherDatabase) {
  const auto viewer = shownViewer();
  server.resultSets = oneRecord;
  click(*viewer, "btQuery");
  selectTab(*viewer, 5);
  click(*viewer, "btQuery");
  ASSERT_EQ(statusPanel(*viewer), "");
  const auto other = newViewer();
  other->setDefaultSQLServer("T");
  other->OpenDefaultSQLServer();
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  selectTab(*viewer, 0);
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "");
  selectTab(*viewer, 5);
  EXPECT_EQ(statusPanel(*viewer), outOfDate);
}

TEST_F(Answers, ARunningQueryKeepsItsStatusTextWhateverChangesMeanwhile) {
  const auto viewer = customPage();
  QString meanwhile;
  answerSlowly([&] {
    viewer->UnselectALL();
    meanwhile = statusPanel(*viewer);
  });
  click(*viewer, "btQuery");
  EXPECT_EQ(meanwhile, "Querying Database Please Wait....");
}

TEST_F(Answers, AlarmRowsOfAllDatesAreReported) {
  const auto viewer = shownViewer();
  server.resultSets = oneRecord;
  chooseDay(2004y / 3 / 7);
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "") << "with all ten categories the range limits everything";

  tick(*viewer, "Document Control/Restore", false);
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), allDates);
  selectTab(*viewer, 1);
  EXPECT_EQ(statusPanel(*viewer), allDates);
  for (const int page : {2, 3, 4, 5}) {
    selectTab(*viewer, page);
    EXPECT_EQ(statusPanel(*viewer), "") << "no alarm row is on page " << page;
  }
  selectTab(*viewer, 0);
  // It applies to the rows that are shown, not to later choices.
  click(*viewer, "btClearDateRange");
  EXPECT_EQ(statusPanel(*viewer), outOfDate + ". " + allDates);
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "");

  chooseDay(2004y / 3 / 7);
  tick(*viewer, "Configuration/Alarms", false);
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "");

  tick(*viewer, "Configuration/Alarms", true);
  server.resultSets = {{}};
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "") << "there are no rows";
}

TEST_F(Answers, ACutAnswerWithAlarmsOfAllDatesTellsOfBoth) {
  const auto viewer = shownViewer();
  server.resultSets = {std::vector<CannedRow>(5000, record("1", "CS"))};
  chooseDay(2004y / 3 / 7);
  tick(*viewer, "Document Control", false);
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), allDates + ". " + ownText("status.rowLimit"));
}

}  // namespace
}  // namespace korvel::test
