#include <QHeaderView>
#include <QLocale>
#include <chrono>

#include "control/result_list_model.h"
#include "results/row_store.h"
#include "tests/control/model_warnings.h"
#include "tests/control/viewer_fixture.h"
#include "tests/control/window_thread.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::MessageIcon;
using ui::Pointer;
using ConnectionTest = ViewerTest;
using FilterTreeTest = ViewerTest;
using DateRangeTest = ViewerTest;
using QueryTest = ViewerTest;
using LockTest = ViewerTest;

TEST_F(ConnectionTest, OpeningTheDefaultServerSelectsWithoutTrying) {
  const auto viewer = newViewer();
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  viewer->setDefaultSQLServer("AUDITSRV");
  viewer->OpenDefaultSQLServer();
  const db::ConnectionState& state = libraryState().connection;
  EXPECT_EQ(state.ConnectionString,
            "Provider=SQLOLEDB; Server=AUDITSRV; Database=Korvel_Audit; Integrated Security=SSPI;");
  EXPECT_EQ(state.AdvancedConnectionString, state.ConnectionString);
  ASSERT_EQ(selected.count(), 1);
  EXPECT_EQ(selected[0][0].toString(), "AUDITSRV - [Korvel_Audit]");
  EXPECT_TRUE(element(*viewer, "btQuery")->isEnabled());
  EXPECT_THAT(server.connectionStrings, IsEmpty());
  viewer->OpenDefaultSQLServer();
  EXPECT_EQ(selected.count(), 2);
}

TEST_F(ConnectionTest, EveryTypeButZeroIsTheMuDatabase) {
  const auto viewer = newViewer();
  viewer->setDefaultSQLServer("S");
  for (const int type : {1, 2, -1}) {
    viewer->setDatabaseType(type);
    viewer->OpenDefaultSQLServer();
    EXPECT_EQ(libraryState().connection.ConnectionString,
              "Provider=SQLOLEDB; Server=S; Database=Korvel_Audit_MU; Integrated Security=SSPI;");
  }
}

TEST_F(ConnectionTest, CalledDirectlyItTakesEvenNoneForAName) {
  const auto viewer = newViewer();
  viewer->OpenDefaultSQLServer();
  EXPECT_EQ(libraryState().connection.CurrentServer, "(None)");
}

TEST_F(ConnectionTest, SelectingClearsAllLists) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  ASSERT_EQ(column(*viewer, 0), "1");
  viewer->OpenDefaultSQLServer();
  for (int i = 0; i < 6; ++i) EXPECT_EQ(list(*viewer, i)->model()->rowCount(), 0) << i;
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
}

TEST_F(ConnectionTest, SelectingAnnouncesThenUnlocksThenClears) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  viewer->LockControls();
  QStringList steps;
  const auto note = [&](const QString& step) {
    steps.append(step + (element(*viewer, "btQuery")->isEnabled() ? " unlocked " : " locked ") + column(*viewer, 0));
  };
  QObject::connect(viewer.get(), &AuditViewer::DatabaseSelected, [&] { note("event"); });
  QObject::connect(list(*viewer, 0)->model(), &QAbstractItemModel::modelReset, viewer.get(), [&] { note("cleared"); });
  viewer->OpenDefaultSQLServer();
  EXPECT_EQ(steps, (QStringList{"event locked 1", "cleared unlocked "}));
}

TEST_F(ConnectionTest, TheInformationBoxMixesFixedAndTranslatedLabels) {
  settings.values["Language"] = "10000";
  const auto viewer = shownViewer();
  click(*viewer, "btDBInfo");
  libraryState().connection.CurrentDatabaseLocation = "D:\\Audit";
  click(*viewer, "btDBInfo");
  EXPECT_EQ(recorder->messages[0].title, "Audit Database Information");
  EXPECT_EQ(recorder->messages[0].icon, MessageIcon::information);
  EXPECT_TRUE(recorder->messages[0].text.startsWith("SQL Server = S\r\n"));
  EXPECT_TRUE(recorder->messages[0].text.endsWith("\r\nDatenbankverzeichnis = "));
  EXPECT_TRUE(recorder->messages[1].text.endsWith("\r\nDatenbankverzeichnis = D:\\Audit"));
  EXPECT_EQ(recorder->owners[0], viewer.get());
}

TEST_F(FilterTreeTest, BothButtonsSetEveryNode) {
  const auto viewer = shownViewer();
  click(*viewer, "btUnselectALL");
  EXPECT_EQ(treeText(*viewer).count("[x]"), 0);
  click(*viewer, "btSelectALL");
  EXPECT_EQ(treeText(*viewer).count("[x]"), 13);
}

TEST_F(FilterTreeTest, ARootPassesItsStateToItsOwnChildren) {
  const auto viewer = shownViewer();
  node(*viewer, "Runtime")->setCheckState(0, Qt::Unchecked);
  EXPECT_EQ(treeText(*viewer).count("[x]"), 10);
  EXPECT_EQ(node(*viewer, "Runtime/User Archives")->checkState(0), Qt::Unchecked);
  EXPECT_EQ(node(*viewer, "Configuration/User Archives")->checkState(0), Qt::Checked);
  viewer->UnselectALL();
  node(*viewer, "Document Control")->setCheckState(0, Qt::Checked);
  EXPECT_EQ(treeText(*viewer).count("[x]"), 5);
}

TEST_F(FilterTreeTest, ARootIsCheckedAsLongAsOneOfItsChildrenIs) {
  const auto viewer = shownViewer();
  viewer->UnselectALL();
  node(*viewer, "Document Control/Rollback")->setCheckState(0, Qt::Checked);
  EXPECT_EQ(node(*viewer, "Document Control")->checkState(0), Qt::Checked);
  EXPECT_EQ(treeText(*viewer).count("[x]"), 2);
  node(*viewer, "Document Control/Rollback")->setCheckState(0, Qt::Unchecked);
  EXPECT_EQ(treeText(*viewer).count("[x]"), 0);
}

TEST_F(FilterTreeTest, ACollapsedNodeOpensAgain) {
  const auto viewer = shownViewer();
  node(*viewer, "Configuration")->setExpanded(false);
  EXPECT_TRUE(node(*viewer, "Configuration")->isExpanded());
  EXPECT_TRUE(node(*viewer, "Document Control")->isExpanded());
}

TEST_F(DateRangeTest, TheDialogGetsTheNewestDayThatTheListsShow) {
  using namespace std::chrono_literals;
  recorder->forms.insert("frmAdvancedFilters");
  const auto viewer = shownViewer();
  std::vector<std::optional<std::chrono::year_month_day>> told;
  recorder->onForm = [&] { told.push_back(libraryState().newestDay); };
  click(*viewer, "btDateRangeFilter");
  CannedRow early = record("1", "CS");
  early[1] = "2003-12-31 10:00:00.000";
  CannedRow late = record("2", "");
  late[1] = "2004-03-07 10:00:00.000";
  server.resultSets = {{early, late}};
  click(*viewer, "btQuery");
  selectTab(*viewer, 1);
  click(*viewer, "btDateRangeFilter");
  click(*viewer, "btClear");
  click(*viewer, "btDateRangeFilter");
  EXPECT_THAT(told, ElementsAre(std::nullopt, std::chrono::year_month_day{2004y / 3 / 7}, std::nullopt));
}

TEST_F(DateRangeTest, ClearingMakesTheRangeInactive) {
  using namespace std::chrono;
  libraryState().dateRange = {2004y / 3 / 1, 2004y / 3 / 7, true};
  const auto viewer = shownViewer();
  const QLocale system = QLocale::system();
  EXPECT_EQ(element<QLabel>(*viewer, "lblDateRange")->text(),
            system.toString(QDate(2004, 3, 1), QLocale::ShortFormat) + " - " +
                system.toString(QDate(2004, 3, 7), QLocale::ShortFormat));
  click(*viewer, "btClearDateRange");
  EXPECT_FALSE(libraryState().dateRange.DateRangeActive);
  EXPECT_EQ(element<QLabel>(*viewer, "lblDateRange")->text(), "No Date Range Selected");
}

TEST_F(DateRangeTest, TheDialogLeavesTheRangeActiveHoweverItWasClosed) {
  using namespace std::chrono;
  recorder->forms.insert("frmAdvancedFilters");
  recorder->onForm = [] {
    libraryState().dateRange.RangeFromDate = libraryState().dateRange.RangeToDate = 2004y / 3 / 7;
  };
  const auto viewer = shownViewer();
  click(*viewer, "btDateRangeFilter");
  EXPECT_EQ(recorder->shownForms, QStringList("frmAdvancedFilters"));
  EXPECT_TRUE(libraryState().dateRange.DateRangeActive);
  const QString day = QLocale::system().toString(QDate(2004, 3, 7), QLocale::ShortFormat);
  EXPECT_EQ(element<QLabel>(*viewer, "lblDateRange")->text(), day + " - " + day);

  server.resultSets = {{record("1", "CS")}};
  viewer->TriggerQuery();
  EXPECT_TRUE(QString::fromStdString(server.commands.at(0))
                  .endsWith("'True','2004-03-07 00:00:00.000','2004-03-07 23:59:59.999'"));
}

TEST_F(DateRangeTest, EveryInstanceShowsTheRangeThatItsQueryWillSend) {
  using namespace std::chrono;
  recorder->forms.insert("frmAdvancedFilters");
  recorder->onForm = [] {
    libraryState().dateRange.RangeFromDate = libraryState().dateRange.RangeToDate = 2004y / 3 / 7;
  };
  const auto first = shownViewer();
  const auto second = shownViewer();
  click(*first, "btDateRangeFilter");
  const QString day = QLocale::system().toString(QDate(2004, 3, 7), QLocale::ShortFormat);
  EXPECT_EQ(element<QLabel>(*second, "lblDateRange")->text(), day + " - " + day);
  click(*second, "btClearDateRange");
  EXPECT_EQ(element<QLabel>(*first, "lblDateRange")->text(), "No Date Range Selected");
}

TEST_F(DateRangeTest, ARangeIsInForceAlsoWhereItsViewerDiedInTheDialog) {
  using namespace std::chrono;
  recorder->forms.insert("frmAdvancedFilters");
  const auto stays = shownViewer();
  auto dies = shownViewer();
  recorder->onForm = [&] {
    libraryState().dateRange.RangeFromDate = libraryState().dateRange.RangeToDate = 2004y / 3 / 7;
    dies.reset();
  };
  dies->findChild<QAbstractButton*>("btDateRangeFilter")->click();
  EXPECT_EQ(dies, nullptr);
  const QString day = QLocale::system().toString(QDate(2004, 3, 7), QLocale::ShortFormat);
  EXPECT_EQ(element<QLabel>(*stays, "lblDateRange")->text(), day + " - " + day);
}

TEST_F(DateRangeTest, WithoutItsDialogTheButtonCannotBePressed) {
  const auto viewer = shownViewer();
  EXPECT_FALSE(element(*viewer, "btDateRangeFilter")->isEnabled());
  EXPECT_TRUE(element(*viewer, "btClearDateRange")->isEnabled());
}

TEST_F(QueryTest, RowsGoToTheListsOfTheirAuditTypes) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("10", "CS"), record("7", "RT"), record("8", "OA")},
                       {record("9", "DC"), record("6", "AU"), record("5", ""), record("4", "??")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 0), "4 5 6 7 8 9 10");
  EXPECT_EQ(column(*viewer, 1), "10");
  EXPECT_EQ(column(*viewer, 2), "7 8");
  EXPECT_EQ(column(*viewer, 3), "9");
  EXPECT_EQ(column(*viewer, 4), "6");
  EXPECT_EQ(column(*viewer, 0, 16), "      ");
  EXPECT_EQ(recordsPanel(*viewer), "7 Records on current tab");
  EXPECT_THAT(server.commands,
              ElementsAre("QueryAudits 'True','True','True','True','True','True','True','True','True','True',"
                          "'False','False','False'"));
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_EQ(lastFailure(*viewer), "");
}

TEST_F(QueryTest, TheCallCarriesTheTickedCategories) {
  const auto viewer = shownViewer();
  viewer->UnselectALL();
  node(*viewer, "Configuration/Korvel Explorer")->setCheckState(0, Qt::Checked);
  node(*viewer, "Runtime/Custom Operator Actions")->setCheckState(0, Qt::Checked);
  server.resultSets = {{record("1", "CS")}};
  viewer->TriggerQuery();
  EXPECT_THAT(server.commands,
              ElementsAre("QueryAudits 'True','False','False','False','True','False','False','False','False','False',"
                          "'False','False','False'"));
}

TEST_F(QueryTest, NoCriteriaIsReportedAfterTheListsAreCleared) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  ASSERT_EQ(column(*viewer, 0), "1");
  viewer->UnselectALL();
  recorder->onMessage = [&] {
    for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->model()->rowCount(), 0) << i;
  };
  click(*viewer, "btQuery");
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::information, "KorvelAudit Viewer Message",
                                                           "No search criteria selected"}));
  EXPECT_EQ(column(*viewer, 0), "");
  EXPECT_EQ(server.commands.size(), 1U);
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
}

TEST_F(QueryTest, NoRecordsHasATitleOfItsOwn) {
  const auto viewer = shownViewer();
  server.resultSets = {{}, {record("1", "CS")}};
  // The box may be open for hours: no connection is kept open behind it.
  recorder->onMessage = [&] { EXPECT_EQ(server.openConnections, 0); };
  control::platform().connect = [&](std::string_view text, const std::stop_token&) {
    auto connection = server.connect(text);
    EXPECT_EQ(server.openConnections, 1);
    return connection;
  };
  click(*viewer, "btQuery");
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::information, "velAudit Viewer Message",
                                                           "No records found for filter criteria"}));
  EXPECT_EQ(column(*viewer, 0), "");
}

TEST_F(QueryTest, MessagesAreInTheLanguageAndTheirTitlesAreNot) {
  settings.values["Language"] = "10000";
  const auto viewer = shownViewer();
  server.resultSets = {{}};
  click(*viewer, "btQuery");
  EXPECT_EQ(recorder->messages.at(0).title, "velAudit Viewer Message");
  EXPECT_EQ(recorder->messages.at(0).text, QString::fromStdString(std::string(settings::loadTextByIdentifier(20061))));
}

TEST_F(QueryTest, AFailureShowsNothingAndHalfATrailNeither) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  server.resultSets = {{record("2", "CS")}, {record("3", "RT")}};
  server.failure = Error(10054, "connection lost");
  click(*viewer, "btQuery");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->model()->rowCount(), 0) << i;
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_EQ(lastFailure(*viewer), "10054:connection lost");
  EXPECT_EQ(statusPanel(*viewer), "");
  EXPECT_EQ(recorder->pointers.back(), Pointer::standard);

  server.failure.reset();
  click(*viewer, "btQuery");
  EXPECT_EQ(lastFailure(*viewer), "");
  EXPECT_EQ(column(*viewer, 0), "2 3");
}

TEST_F(QueryTest, WithoutADatabaseTheQueryFailsSilently) {
  const auto viewer = newViewer();
  control::platform().connect = [](std::string_view, const std::stop_token&) -> std::unique_ptr<db::Connection> {
    throw Error(7, "no connection string");
  };
  viewer->TriggerQuery();
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_EQ(lastFailure(*viewer), "7:no connection string");
}

TEST_F(QueryTest, HourglassAndStatusTextStandWhileTheQueryRuns) {
  const auto viewer = shownViewer();
  QString statusDuringQuery;
  std::vector<Pointer> pointersDuringQuery;
  control::platform().connect = [&](std::string_view text, const std::stop_token&) {
    onWindowThread([&] {
      statusDuringQuery = statusPanel(*viewer);
      pointersDuringQuery = recorder->pointers;
    });
    return server.connect(text);
  };
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(statusDuringQuery, "Querying Database Please Wait....");
  EXPECT_THAT(pointersDuringQuery, ElementsAre(Pointer::hourglass));
  EXPECT_THAT(recorder->pointers, ElementsAre(Pointer::hourglass, Pointer::standard));
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(QueryTest, TheHourglassComesFirstAndTheStatusTextGoesLast) {
  const auto viewer = shownViewer();
  QStringList statusAtEachPointer;
  recorder->onPointer = [&] { statusAtEachPointer.append(statusPanel(*viewer)); };
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  EXPECT_THAT(recorder->pointers, ElementsAre(Pointer::hourglass, Pointer::standard));
  EXPECT_EQ(statusAtEachPointer, (QStringList{"", "Querying Database Please Wait...."}));
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(QueryTest, TheCountFollowsTheCurrentTab) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS"), record("2", "RT"), record("3", "RT")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(recordsPanel(*viewer), "3 Records on current tab");
  selectTab(*viewer, 2);
  EXPECT_EQ(recordsPanel(*viewer), "2 Records on current tab");
  selectTab(*viewer, 5);
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
}

TEST_F(QueryTest, TheClearButtonEmptiesAllListsAndCountsAgain) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  click(*viewer, "btClear");
  for (int i = 0; i < 6; ++i) EXPECT_EQ(list(*viewer, i)->model()->rowCount(), 0) << i;
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
}

TEST_F(QueryTest, TheListOfTheCurrentTabIsSortedTheOthersStayAsTheyCame) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("3", "RT"), record("1", "RT"), record("2", "RT")}};
  selectTab(*viewer, 2);
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 2), "1 2 3");
  EXPECT_EQ(column(*viewer, 0), "3 1 2");
}

TEST_F(QueryTest, OnTheCustomPageItsListIsTheOneThatIsSorted) {
  const auto viewer = shownViewer();
  auto& custom = static_cast<control::ResultListModel&>(*list(*viewer, 5)->model());
  custom.setColumns([](results::ResultList& filled) {
    filled.setColumns({results::ColumnHeader{"Nr", {1440}}});
    auto store = std::make_shared<results::RowStore>();
    const std::vector<db::Field> fields{{"Nr"}};
    store->beginResult(fields);
    std::vector<results::RowId> ids;
    for (const char* number : {"3", "1", "2"}) ids.push_back(store->append(std::vector<db::Cell>{{number}}));
    filled.setRows(store, ids);
  });
  selectTab(*viewer, 5);
  const ModelWatch watch(&custom);
  const QPersistentModelIndex three = custom.index(0, 0);
  server.resultSets = {{record("30", "RT"), record("10", "RT"), record("20", "RT")}};
  viewer->TriggerQuery();
  EXPECT_EQ(column(*viewer, 5), "1 2 3");
  EXPECT_EQ(three.row(), 2);
  EXPECT_TRUE(list(*viewer, 5)->horizontalHeader()->isSortIndicatorShown());
  EXPECT_EQ(column(*viewer, 0), "30 10 20");
  EXPECT_FALSE(list(*viewer, 0)->horizontalHeader()->isSortIndicatorShown());
}

TEST_F(LockTest, LockedElementsAreThoseThatNeedADatabase) {
  const QStringList needDatabase = {"frameFilter",   "btQuery",     "btClear",           "btSelectALL",
                                    "btUnselectALL", "tvTreeView",  "btDateRangeFilter", "btClearDateRange",
                                    "lvListView0",   "lvListView1", "lvListView2",       "lvListView3",
                                    "lvListView4",   "lvListView5", "btExcel",           "btPrint"};
  recorder->forms.insert("frmAdvancedFilters");
  const auto viewer = newViewer();
  for (const QString& name : needDatabase) EXPECT_FALSE(element(*viewer, name)->isEnabled()) << name.toStdString();
  viewer->UnlockControls();
  for (const QString& name : needDatabase) EXPECT_TRUE(element(*viewer, name)->isEnabled()) << name.toStdString();
  viewer->LockControls();
  for (const QString& name : needDatabase) EXPECT_FALSE(element(*viewer, name)->isEnabled()) << name.toStdString();
  EXPECT_TRUE(element(*viewer, "btDBInfo")->isEnabled());
  EXPECT_TRUE(element(*viewer, "SSTab1")->isEnabled());
}

TEST_F(LockTest, TheQueryButtonIsThereOnEveryPage) {
  const auto viewer = shownViewer();
  for (int page = 0; page < 6; ++page) {
    selectTab(*viewer, page);
    EXPECT_TRUE(element(*viewer, "btQuery")->isEnabled()) << page;
  }
  viewer->LockControls();
  selectTab(*viewer, 1);
  EXPECT_FALSE(element(*viewer, "btQuery")->isEnabled());
}

}  // namespace
}  // namespace korvel::test
