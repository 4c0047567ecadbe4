// The window for a review by exception, by keys and by the pointer.
#include <QCheckBox>
#include <QTimeEdit>
#include <QTreeWidget>

#include "control/forms/exception_view.h"
#include "control/working_hours.h"
#include "tests/control/list_work_fixture.h"

namespace korvel::test {
namespace {

using control::ExceptionView;
using control::libraryState;
using evidence::ExceptionRule;

class ExceptionsWork : public ListWork {
 protected:
  ExceptionsWork() {
    server.resultSets[0][3][event] = "DELETE";
    server.resultSets[0][5][event] = "DELETE";
    // At noon of a Tuesday.
    server.resultSets[0][3][time] = "2004-03-09 12:10:44.310";
  }

  static ExceptionView& view(const AuditViewer& viewer) { return *viewer.findChild<ExceptionView*>(); }
  static QTreeWidget& rules(const AuditViewer& viewer) { return *view(viewer).findChild<QTreeWidget*>("lvRules"); }
  static QString state(const AuditViewer& viewer) { return view(viewer).findChild<QLabel*>("lblState")->text(); }
  static QTreeWidgetItem& line(const AuditViewer& viewer, ExceptionRule rule) {
    return *rules(viewer).topLevelItem(static_cast<int>(rule));
  }
  static QString count(const AuditViewer& viewer, ExceptionRule rule) { return line(viewer, rule).text(1); }
  static bool isChosen(const AuditViewer& viewer, ExceptionRule rule) {
    return line(viewer, rule).checkState(0) == Qt::Checked;
  }
  static void waitForState(const AuditViewer& viewer, const QString& beginning) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return state(viewer).startsWith(beginning); })) << state(viewer).toStdString();
  }
  static void waitForCounts(const AuditViewer& viewer) { waitForState(viewer, "Records looked at"); }
  /// The keyboard goes from the window to the viewer.
  static void activate(AuditViewer& viewer) {
    viewer.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&viewer));
  }
  static void open(AuditViewer& viewer, int index = 0) {
    activate(viewer);
    list(viewer, index)->setFocus();
    QTest::keyClick(list(viewer, index), Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(view(viewer).isVisible());
  }
  std::unique_ptr<AuditViewer> openedViewer() {
    auto viewer = filledViewer();
    open(*viewer);
    waitForCounts(*viewer);
    return viewer;
  }
  static void choose(const AuditViewer& viewer, ExceptionRule rule) {
    rules(viewer).setCurrentItem(&line(viewer, rule));
    QTest::keyClick(&rules(viewer), Qt::Key_Return);
  }
};

TEST_F(ExceptionsWork, EachRuleHasItsCount) {
  const auto viewer = openedViewer();
  EXPECT_EQ(rules(*viewer).topLevelItemCount(), 10);
  EXPECT_EQ(line(*viewer, ExceptionRule::outsideHours).text(0), "Outside working hours");
  EXPECT_EQ(count(*viewer, ExceptionRule::outsideHours), "5");
  EXPECT_EQ(count(*viewer, ExceptionRule::deletion), "2");
  EXPECT_EQ(count(*viewer, ExceptionRule::numberRepeated), "0");
  EXPECT_EQ(count(*viewer, ExceptionRule::numbersMissing), "0") << "the list has the whole trail";
  EXPECT_TRUE(view(*viewer).findChild<QLabel*>("lblNote")->isHidden());
  EXPECT_EQ(state(*viewer), "Records looked at: 6");
}

TEST_F(ExceptionsWork, EnterShowsTheRecordsOfARuleAndTakesThemBack) {
  const auto viewer = openedViewer();
  choose(*viewer, ExceptionRule::deletion);
  EXPECT_EQ(column(*viewer, 0), "4 6");
  EXPECT_EQ(chips(*viewer).trimmed(), "Deletions");
  EXPECT_TRUE(isChosen(*viewer, ExceptionRule::deletion));
  EXPECT_EQ(line(*viewer, ExceptionRule::deletion).data(0, Qt::AccessibleTextRole).toString(),
            "Deletions: 2, shown in the list");
  EXPECT_EQ(state(*viewer), "Records looked at: 6") << "its own filter is not another one";
  EXPECT_EQ(recordsPanel(*viewer), "2 Records on current tab");
  // Another rule takes its place: each count is what the list shows.
  choose(*viewer, ExceptionRule::outsideHours);
  EXPECT_EQ(column(*viewer, 0), "1 2 3 5 6");
  EXPECT_FALSE(isChosen(*viewer, ExceptionRule::deletion));
  choose(*viewer, ExceptionRule::outsideHours);
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4 5 6");
  EXPECT_EQ(chips(*viewer), "");
  EXPECT_FALSE(isChosen(*viewer, ExceptionRule::outsideHours));
}

TEST_F(ExceptionsWork, AClickChoosesAndARuleThatFoundNothingCannotBeChosen) {
  const auto viewer = openedViewer();
  const auto clickOn = [&](ExceptionRule rule) {
    const QRect place = rules(*viewer).visualItemRect(&line(*viewer, rule));
    QTest::mouseClick(rules(*viewer).viewport(), Qt::LeftButton, {}, place.center());
  };
  clickOn(ExceptionRule::deletion);
  EXPECT_EQ(column(*viewer, 0), "4 6");
  clickOn(ExceptionRule::numberRepeated);
  choose(*viewer, ExceptionRule::numberRepeated);
  EXPECT_EQ(column(*viewer, 0), "4 6");
  const QVariant box = line(*viewer, ExceptionRule::numberRepeated).data(0, Qt::CheckStateRole);
  ASSERT_TRUE(box.isValid()) << "names of rules would not begin at one line";
  EXPECT_EQ(box.toInt(), Qt::Unchecked);
  clickOn(ExceptionRule::deletion);
  EXPECT_EQ(chips(*viewer), "");
}

TEST_F(ExceptionsWork, TheChipTakesTheFilterBack) {
  const auto viewer = openedViewer();
  choose(*viewer, ExceptionRule::deletion);
  Q_EMIT chipBar(*viewer).removeRequested(0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !isChosen(*viewer, ExceptionRule::deletion); }));
  waitForCounts(*viewer);
  EXPECT_EQ(count(*viewer, ExceptionRule::deletion), "2");
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4 5 6");
}

TEST_F(ExceptionsWork, OtherFiltersAreCountedWithButJudgeNothing) {
  const auto viewer = openedViewer();
  activate(*viewer);
  goTo(*viewer, 0, userName);
  QTest::keyClick(list(*viewer, 0), Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(state(*viewer), "Being counted...") << "a count of other rows is not shown";
  EXPECT_EQ(count(*viewer, ExceptionRule::deletion), QString::fromUtf8("–"));
  waitForCounts(*viewer);
  EXPECT_EQ(count(*viewer, ExceptionRule::deletion), "1");
  EXPECT_EQ(count(*viewer, ExceptionRule::numbersMissing), "0") << "what a filter hides is not missing";
  EXPECT_EQ(state(*viewer), "Records looked at: 6. Only those that the other filters show are counted");
  choose(*viewer, ExceptionRule::deletion);
  EXPECT_EQ(column(*viewer, 0), "4");
}

TEST_F(ExceptionsWork, SaysThatMissingNumbersAreNotJudgedInAPartOfTheTrail) {
  server.resultSets[0].erase(server.resultSets[0].begin() + 2);
  const auto viewer = openedViewer();
  EXPECT_EQ(count(*viewer, ExceptionRule::numbersMissing), "1");
  libraryState().dateRange.DateRangeActive = true;
  click(*viewer, "btQuery");
  waitForCounts(*viewer);
  EXPECT_EQ(count(*viewer, ExceptionRule::numbersMissing), "not judged");
  EXPECT_FALSE(view(*viewer).findChild<QLabel*>("lblNote")->isHidden());
  choose(*viewer, ExceptionRule::numbersMissing);
  EXPECT_EQ(chips(*viewer), "");
}

TEST_F(ExceptionsWork, AnotherAnswerIsCountedAnewAndDropsTheFilter) {
  const auto viewer = openedViewer();
  choose(*viewer, ExceptionRule::deletion);
  server.resultSets[0].resize(4);
  click(*viewer, "btQuery");
  EXPECT_EQ(chips(*viewer), "");
  EXPECT_EQ(state(*viewer), "Being counted...");
  waitForCounts(*viewer);
  EXPECT_EQ(state(*viewer), "Records looked at: 4");
  EXPECT_EQ(count(*viewer, ExceptionRule::deletion), "1");
  // Twice, without a look at the first one.
  server.resultSets[0].resize(3);
  click(*viewer, "btQuery");
  server.resultSets[0].resize(2);
  click(*viewer, "btQuery");
  waitForCounts(*viewer);
  EXPECT_EQ(state(*viewer), "Records looked at: 2");
  server.resultSets = {};
  click(*viewer, "btQuery");
  waitForState(*viewer, "This list has no records.");
  choose(*viewer, ExceptionRule::deletion);
  EXPECT_EQ(chips(*viewer), "");
}

TEST_F(ExceptionsWork, FollowsThePageInFrontAndSaysWhereThereIsNothingToJudge) {
  const auto viewer = openedViewer();
  selectTab(*viewer, 2);
  waitForState(*viewer, "This list has no records.");
  selectTab(*viewer, 5);
  waitForState(*viewer, "This list has no records.");
  answerWithOneRow();
  click(*viewer, "btQuery");
  waitForState(*viewer, "There is nothing to judge");
  selectTab(*viewer, 1);
  waitForCounts(*viewer);
  EXPECT_EQ(count(*viewer, ExceptionRule::numbersMissing), "not judged") << "a page has a part of the trail";
  choose(*viewer, ExceptionRule::deletion);
  EXPECT_EQ(column(*viewer, 1), "4 6");
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4 5 6");
}

TEST_F(ExceptionsWork, EscGoesBackToTheListWhichKeepsItsFilter) {
  const auto viewer = openedViewer();
  choose(*viewer, ExceptionRule::deletion);
  QTest::keyClick(&rules(*viewer), Qt::Key_Escape);
  EXPECT_FALSE(view(*viewer).isVisible());
  EXPECT_EQ(column(*viewer, 0), "4 6");
  EXPECT_EQ(viewer->focusWidget(), list(*viewer, 0));
  open(*viewer);
  waitForCounts(*viewer);
  EXPECT_TRUE(isChosen(*viewer, ExceptionRule::deletion));
}

TEST_F(ExceptionsWork, ClosingWhileCountingEndsIt) {
  const auto viewer = openedViewer();
  goTo(*viewer, 0, userName);
  QTest::keyClick(list(*viewer, 0), Qt::Key_K, Qt::ControlModifier);
  ASSERT_EQ(state(*viewer), "Being counted...");
  view(*viewer).close();
  QCoreApplication::processEvents();
  EXPECT_EQ(state(*viewer), "Being counted...");
  open(*viewer);
  waitForCounts(*viewer);
}

TEST_F(ExceptionsWork, TheViewerMayGoWhileItCounts) {
  auto viewer = filledViewer();
  open(*viewer);
  QCoreApplication::processEvents();
  viewer.reset();
}

TEST_F(ExceptionsWork, WorkingHoursAreCountedByAndRemembered) {
  {
    const auto viewer = openedViewer();
    choose(*viewer, ExceptionRule::outsideHours);
    EXPECT_EQ(chipBar(*viewer).chips().size(), 1U);
    auto* from = view(*viewer).findChild<QTimeEdit*>("timeFrom");
    from->setTime(QTime(3, 30));
    EXPECT_EQ(chips(*viewer), "") << "its records were outside of other hours";
    EXPECT_EQ(state(*viewer), "Being counted...");
    waitForCounts(*viewer);
    // The Sunday stays, the Thursday at 04:10 does not.
    EXPECT_EQ(count(*viewer, ExceptionRule::outsideHours), "4");
    view(*viewer).findChild<QCheckBox*>("chkDay6")->click();
    waitForCounts(*viewer);
    EXPECT_EQ(count(*viewer, ExceptionRule::outsideHours), "3");
  }
  EXPECT_EQ(settings.values.at("WorkingHours"), "03:30-18:00");
  EXPECT_EQ(settings.values.at("WorkingDays"), "mon,tue,wed,thu,fri,sun");
  libraryState().workingHours = {};
  const auto another = openedViewer();
  EXPECT_EQ(count(*another, ExceptionRule::outsideHours), "3");
  EXPECT_EQ(view(*another).findChild<QTimeEdit*>("timeFrom")->time(), QTime(3, 30));
}

TEST_F(ExceptionsWork, HoursThatCannotBeReadAreTheUsualOnesAndNoDayIsAChoice) {
  MemorySettings backend(settings);
  settings.values["WorkingHours"] = "6 to 18";
  settings.values["WorkingDays"] = "";
  EXPECT_EQ(control::storedWorkingHours(backend).from, std::chrono::hours{6});
  EXPECT_EQ(control::storedWorkingHours(backend).days.count(), 5U);
  control::chooseWorkingHours({std::chrono::hours{0}, std::chrono::hours{0}, {}});
  EXPECT_EQ(control::storedWorkingHours(backend).to, std::chrono::hours{0});
  EXPECT_TRUE(control::storedWorkingHours(backend).days.none());
}

TEST_F(ExceptionsWork, FollowsTheLanguage) {
  const auto viewer = openedViewer();
  choose(*viewer, ExceptionRule::deletion);
  libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_EQ(line(*viewer, ExceptionRule::deletion).text(0), QString::fromUtf8("Löschungen"));
  EXPECT_EQ(count(*viewer, ExceptionRule::deletion), "2");
}

}  // namespace
}  // namespace korvel::test
