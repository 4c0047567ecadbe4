#include <QApplication>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include "control/forms/record_view.h"
#include "tests/control/custom_page_fixture.h"
#include "ui/result_table.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::MessageIcon;

using CustomQuery = CustomPage;

TEST_F(CustomQuery, ThePageOffersEverythingWhereItIsEmpty) {
  const auto viewer = shownViewer();
  EXPECT_EQ(editor(*viewer).queryText(), "");
  selectTab(*viewer, 5);
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails");
  editor(*viewer).setQueryText("mine");
  selectTab(*viewer, 0);
  selectTab(*viewer, 5);
  EXPECT_EQ(editor(*viewer).queryText(), "mine");
  click(*viewer, "btClearAdvQuery");
  EXPECT_EQ(editor(*viewer).queryText(), "");
  selectTab(*viewer, 4);
  EXPECT_EQ(editor(*viewer).queryText(), "");
}

TEST_F(CustomQuery, FieldsBecomeColumnsAndRowsTheirTrimmedTexts) {
  const auto viewer = customPage();
  answerWith({"UserName", "DateTime"}, {{"  Ann ", "2004"}, {"   ", " x"}});
  click(*viewer, "btQuery");
  EXPECT_EQ(headers(*viewer), "UserName DateTime");
  EXPECT_EQ(column(*viewer, 5, 0), "Ann ");
  EXPECT_EQ(column(*viewer, 5, 1), "2004 x");
  EXPECT_EQ(list(*viewer, 5)->columnWidth(0), qRound(double(viewer->logicalDpiX())));
  EXPECT_EQ(recordsPanel(*viewer), "2 Records on current tab");
  EXPECT_EQ(statusPanel(*viewer), "");
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(CustomQuery, TheTextGoesToTheServerAsItStands) {
  const auto viewer = customPage();
  libraryState().connection.AdvancedConnectionString = "advanced";
  editor(*viewer).setQueryText("select 'a;b'\n-- c\n");
  answerWith({"a"}, {{"1"}});
  click(*viewer, "btQuery");
  EXPECT_THAT(server.commands, ElementsAre("select 'a;b'\r\n-- c\r\n"));
  EXPECT_THAT(server.connectionStrings, ElementsAre("advanced"));
  EXPECT_EQ(server.openConnections, 0);
}

TEST_F(CustomQuery, ByNameItRunsAnyTextFromAnyPage) {
  const auto viewer = shownViewer();
  answerWith({"a"}, {{"1"}, {"2"}});
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "TriggerAdvancedQuery", Q_ARG(QString, "other")));
  EXPECT_THAT(server.commands, ElementsAre("other"));
  EXPECT_EQ(column(*viewer, 5), "1 2");
  // The count is that of the current page.
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
  selectTab(*viewer, 5);
  EXPECT_EQ(recordsPanel(*viewer), "2 Records on current tab");
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails");
}

TEST_F(CustomQuery, StandardPagesRunTheStandardQuery) {
  const auto viewer = customPage();
  selectTab(*viewer, 2);
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  EXPECT_TRUE(QString::fromStdString(server.commands.at(0)).startsWith("QueryAudits "));
}

TEST_F(CustomQuery, NoRecordsLeaveTheColumnsThatWereThere) {
  const auto viewer = customPage();
  answerWith({"a", "b"}, {{"1", "2"}});
  click(*viewer, "btQuery");
  answerWith({"c"}, {});
  click(*viewer, "btQuery");
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::information, "velAudit Viewer Message",
                                                           "No Records Found for Query"}));
  EXPECT_EQ(headers(*viewer), "a b");
  EXPECT_EQ(list(*viewer, 5)->model()->rowCount(), 0);
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
}

TEST_F(CustomQuery, AFailureIsReportedAndItsLineIsMarked) {
  const auto viewer = customPage();
  answerWith({"a"}, {{"1"}});
  click(*viewer, "btQuery");
  editor(*viewer).setQueryText("select\r\nfrom x");
  server.failure = Error(208, "Invalid object name 'x'.", 2);
  QString statusBehindTheBox;
  QString failureBehindTheBox;
  recorder->onMessage = [&] {
    statusBehindTheBox = statusPanel(*viewer);
    failureBehindTheBox = lastFailure(*viewer);
  };
  click(*viewer, "btQuery");
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::critical, "",
                                       "208:Error in TriggerAdvancedQuery.  Error Message: Invalid object name 'x'. "
                                       "(line 2)"}));
  EXPECT_EQ(statusBehindTheBox, "Querying Database Please Wait....");
  EXPECT_EQ(editor(*viewer).errorLine(), 2);
  EXPECT_EQ(column(*viewer, 5), "");
  EXPECT_EQ(headers(*viewer), "a");
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
  EXPECT_EQ(statusPanel(*viewer), "");
  EXPECT_EQ(recorder->pointers.back(), ui::Pointer::standard);
  // The host is notified too, before the message box is closed.
  EXPECT_EQ(failureBehindTheBox, "208:Invalid object name 'x'. (line 2)");
  EXPECT_EQ(lastFailure(*viewer), failureBehindTheBox);

  server.failure.reset();
  click(*viewer, "btQuery");
  EXPECT_EQ(lastFailure(*viewer), "");
  EXPECT_EQ(editor(*viewer).errorLine(), std::nullopt);
}

TEST_F(CustomQuery, ALineIsMarkedInTheTextThatFailedOnly) {
  const auto viewer = customPage();
  server.failure = Error(102, "%1 %2", 1);
  answerWith({}, {});
  viewer->TriggerAdvancedQuery("other");
  EXPECT_EQ(editor(*viewer).errorLine(), std::nullopt);
  EXPECT_EQ(recorder->messages.at(0).text, "102:Error in TriggerAdvancedQuery.  Error Message: %1 %2 (line 1)");
}

TEST_F(CustomQuery, AViewerMayDieWhileItsFailureIsAnnounced) {
  auto viewer = customPage();
  server.failure = Error(208, "Invalid object name 'x'.");
  QObject::connect(viewer.get(), &AuditViewer::LastFailureChanged, [&] { viewer.reset(); });
  viewer->TriggerAdvancedQuery("x");
  EXPECT_EQ(viewer, nullptr);
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(CustomQuery, WithoutADatabaseItSaysSo) {
  const auto viewer = newViewer();
  control::platform().connect = [](std::string_view, const std::stop_token&) -> std::unique_ptr<db::Connection> {
    throw Error(7, "no connection string");
  };
  viewer->TriggerAdvancedQuery("x");
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::critical, "",
                                       "7:Error in TriggerAdvancedQuery.  Error Message: no connection string"}));
}

TEST_F(CustomQuery, TheNextQueryForgetsTheHostsFailure) {
  const auto viewer = customPage();
  server.failure = Error(1, "x");
  viewer->TriggerQuery();
  ASSERT_EQ(lastFailure(*viewer), "1:x");
  server.failure.reset();
  answerWith({"a"}, {{"1"}});
  click(*viewer, "btQuery");
  EXPECT_EQ(lastFailure(*viewer), "");
}

TEST_F(CustomQuery, MenuToolbarAndKeysRunItToo) {
  const auto viewer = customPage();
  answerWith({"a"}, {{"1"}});
  EXPECT_TRUE(element(*viewer, "btQuery")->isEnabled());
  editor(*viewer).setFocus();
  QTest::keyClick(&editor(*viewer), Qt::Key_F5);
  EXPECT_EQ(server.commands.size(), 1U);
  QTest::keyClick(&editor(*viewer), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(server.commands.size(), 2U);
  list(*viewer, 5)->setFocus();
  QTest::keyClick(list(*viewer, 5), Qt::Key_F5);
  EXPECT_EQ(server.commands.size(), 3U);
  viewer->LockControls();
  editor(*viewer).setFocus();
  QTest::keyClick(&editor(*viewer), Qt::Key_F5);
  EXPECT_EQ(server.commands.size(), 3U);
}

TEST_F(CustomQuery, F5RunsTheQueryOfThePageInFrontWhereverTheFocusIs) {
  const auto viewer = customPage();
  answerWith({"a"}, {{"1"}});
  ASSERT_TRUE(QTest::qWaitForWindowActive(viewer.get()));
  const auto pressOn = [&](QWidget& focus) {
    focus.setFocus();
    const std::size_t before = server.commands.size();
    QTest::keyClick(&focus, Qt::Key_F5);
    const bool once = server.commands.size() == before + 1;
    return once ? QString::fromStdString(server.commands.back()) : QStringLiteral("none, or more than one");
  };
  for (const int page : {0, 1, 4}) {
    selectTab(*viewer, page);
    for (QWidget* focus :
         {static_cast<QWidget*>(list(*viewer, page)), element(*viewer, "tvTreeView"), element(*viewer, "btClear")})
      EXPECT_TRUE(pressOn(*focus).startsWith("QueryAudits ")) << page << focus->objectName().toStdString();
  }
  selectTab(*viewer, 5);
  for (const char* focus : {"tvTreeView", "btClear", "txtAdvancedQuery", "lvListView5"})
    EXPECT_EQ(pressOn(*element(*viewer, focus)), "Select * from Korvel_Audit_Trails") << focus;
  // Without a database it does nothing and shows nothing.
  selectTab(*viewer, 0);
  viewer->LockControls();
  viewer->setFocus();
  const std::size_t before = server.commands.size();
  QTest::keyClick(viewer.get(), Qt::Key_F5);
  EXPECT_EQ(server.commands.size(), before);
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(CustomQuery, SortingRecordViewAndClearingKnowItsColumns) {
  const auto viewer = customPage();
  answerWith({"Area", "Nr"}, {{"b", "10"}, {"a", "9"}});
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 5), "b a");
  Q_EMIT list(*viewer, 5)->horizontalHeader()->sectionClicked(1);
  EXPECT_EQ(column(*viewer, 5, 1), "10 9");
  Q_EMIT list(*viewer, 5)->horizontalHeader()->sectionClicked(1);
  EXPECT_EQ(column(*viewer, 5, 1), "9 10");

  list(*viewer, 5)->setCurrentIndex(list(*viewer, 5)->model()->index(0, 0));
  list(*viewer, 5)->setFocus();
  QTest::keyClick(list(*viewer, 5), Qt::Key_Return);
  auto* records = viewer->findChild<control::RecordView*>();
  ASSERT_NE(records, nullptr);
  EXPECT_TRUE(records->isVisible());
  QStringList labels;
  for (const QLabel* label : records->findChildren<QLabel*>()) labels.append(label->text());
  EXPECT_TRUE(labels.contains("Area"));
  // The next answer does not have the record, and is not in that order any more.
  click(*viewer, "btQuery");
  EXPECT_FALSE(records->isVisible());
  EXPECT_EQ(column(*viewer, 5), "b a");

  click(*viewer, "btClearAdvQuery");
  EXPECT_EQ(column(*viewer, 5), "b a");
  EXPECT_EQ(recordsPanel(*viewer), "2 Records on current tab");
  click(*viewer, "btClear");
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
}

TEST_F(CustomQuery, TheFieldPickersQueryIsPutInAndRun) {
  const auto viewer = customPage();
  answerWith({"DateTime", "UserName"}, {{"1", "2"}});
  libraryState().queryChoices.pickedQuery = "an earlier one";
  recorder->onForm = [&] {
    EXPECT_EQ(libraryState().queryChoices.pickedQuery, "");
    libraryState().queryChoices.pickedQuery = "Select DateTime,UserName from Korvel_Audit_Trails";
  };
  click(*viewer, "btEmunFields");
  EXPECT_EQ(recorder->shownForms, QStringList("frmFields"));
  EXPECT_EQ(editor(*viewer).queryText(), "Select DateTime,UserName from Korvel_Audit_Trails");
  EXPECT_THAT(server.commands, ElementsAre("Select DateTime,UserName from Korvel_Audit_Trails"));
  EXPECT_EQ(headers(*viewer), "DateTime UserName");
}

TEST_F(CustomQuery, AClosedFieldPickerLeavesTheTextAndRunsNothing) {
  const auto viewer = customPage();
  editor(*viewer).setQueryText("mine");
  libraryState().queryChoices.pickedQuery = "an earlier one";
  click(*viewer, "btEmunFields");
  EXPECT_EQ(editor(*viewer).queryText(), "mine");
  EXPECT_THAT(server.commands, IsEmpty());
}

TEST_F(CustomQuery, AViewerMayDieInTheFieldPicker) {
  auto viewer = customPage();
  recorder->onForm = [&] {
    libraryState().queryChoices.pickedQuery = "x";
    viewer.reset();
  };
  viewer->findChild<QAbstractButton*>("btEmunFields")->click();
  EXPECT_EQ(viewer, nullptr);
  EXPECT_THAT(server.commands, IsEmpty());
}

TEST_F(CustomQuery, ThePageSpeaksTheLanguage) {
  settings.values["Language"] = "10000";
  const auto viewer = customPage();
  EXPECT_EQ(element(*viewer, "btSave")->toolTip(), "Abfrage speichern");
  EXPECT_EQ(editor(*viewer).accessibleName(), "SQL-Abfrage");
  for (const char* name : {"btOpen", "btSave", "btClearAdvQuery", "btEmunFields"}) {
    EXPECT_NE(element(*viewer, name)->toolTip(), "") << name;
    EXPECT_EQ(element(*viewer, name)->accessibleName(), element(*viewer, name)->toolTip()) << name;
  }
}

TEST_F(CustomQuery, TheFrameLiesAboveItsListByTheResizeRoutine) {
  const auto viewer = customPage();
  const auto twips = [&](int value) { return qRound(double(value) * viewer->logicalDpiX() / 1440); };
  for (const QSize size : {QSize(1280, 800), QSize(1000, 600)}) {
    viewer->resize(size);
    QCoreApplication::processEvents();
    const QRect frame = element(*viewer, "frameAdvQry")->geometry();
    const QRect listPlace = list(*viewer, 5)->geometry();
    const QWidget* tabs = element(*viewer, "SSTab1");
    EXPECT_NEAR(listPlace.height(), tabs->height() - twips(1700), 1);
    EXPECT_EQ(frame.width(), listPlace.width());
    EXPECT_LT(frame.bottom(), listPlace.top());
    EXPECT_NEAR(editor(*viewer).width(), listPlace.width() - twips(2300), 1);
    const auto edge = [&](const char* name) { return frame.width() - element(*viewer, name)->geometry().right() - 1; };
    for (const char* name : {"btOpen", "btSave"}) EXPECT_NEAR(edge(name), twips(100), 1) << name;
    for (const char* name : {"btClearAdvQuery", "btEmunFields"})
      EXPECT_NEAR(edge(name), twips(150) + element(*viewer, "btOpen")->width(), 1) << name;
    EXPECT_EQ(element(*viewer, "btClearAdvQuery")->y(), element(*viewer, "btOpen")->y());
    EXPECT_EQ(element(*viewer, "btEmunFields")->y(), element(*viewer, "btSave")->y());
    EXPECT_TRUE(element(*viewer, "frameAdvQry")->rect().contains(editor(*viewer).geometry()));
  }
}

TEST_F(CustomQuery, TabWalksThroughThePageAsItIsSeen) {
  const auto viewer = customPage();
  editor(*viewer).setFocus();
  QStringList visited;
  for (int i = 0; i < 6; ++i) {
    visited.append(viewer->focusWidget()->objectName());
    QTest::keyClick(viewer->focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(visited.join(' ').toStdString(), "txtAdvancedQuery btClearAdvQuery btOpen btEmunFields btSave lvListView5");
}

}  // namespace
}  // namespace korvel::test
