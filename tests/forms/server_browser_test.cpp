#include "db/forms/server_browser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <QWindow>
#include <stdexcept>

#include "db/worker.h"
#include "settings/string_table.h"
#include "tests/control/recorder.h"
#include "tests/control/window_thread.h"
#include "tests/forms/canned_directory.h"
#include "ui/screen_measure.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::MessageIcon;
using ui::Pointer;

class Browser : public ::testing::Test {
 protected:
  Browser() {
    makeKeyboard();
    network.local = {"(embedded)", "PLANT1"};
    network.all = {"(embedded)", "PLANT1", "QA\\AUDIT"};
    network.databases["PLANT1"] = {{"korvel_audit_mu", false, ""},
                                   {"master", true, "C:\\m.mdf"},
                                   {"Other", false, "C:\\o.mdf"},
                                   {"Korvel_Audit", false, "C:\\Data\\a.mdf"},
                                   {"Korvel_Audit_System", true, "C:\\s.mdf"},
                                   {"Old Korvel_Audit 2003", false, "D:\\old.mdf"}};
  }
  db::frmSQLServerBrowser& form() {
    if (!form_) {
      form_ = std::make_unique<db::frmSQLServerBrowser>(
          db::ServerBrowserContext{connection, language, recorder,
                                   [this] { return std::make_unique<CannedDirectory>(network); }, memory},
          nullptr);
      form_->show();
      QCoreApplication::processEvents();
    }
    return *form_;
  }
  template <typename Element = QWidget>
  Element& element(const char* name) {
    auto* found = form().findChild<Element*>(name);
    if (found == nullptr) throw std::runtime_error(name);
    return *found;
  }
  QListWidget& servers() { return element<QListWidget>("SQL Servers"); }
  QTableView& databases() { return element<QTableView>("lvListView"); }
  QStringList serverNames() {
    QStringList names;
    for (int i = 0; i < servers().count(); ++i) names.append(servers().item(i)->text());
    return names;
  }
  /// The list as text: name, bar and path, a line a row.
  QString listed() {
    QStringList lines;
    const QAbstractItemModel& model = *databases().model();
    for (int row = 0; row < model.rowCount(); ++row)
      lines.append(model.index(row, 0).data().toString() + '|' + model.index(row, 1).data().toString());
    return lines.join('\n');
  }
  void press(const char* button) { QTest::mouseClick(&element(button), Qt::LeftButton); }
  static void clickItem(QAbstractItemView& view, int row) {
    const QRect place = view.visualRect(view.model()->index(row, 0));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place.center());
  }
  void clickServer(int row) { clickItem(servers(), row); }
  void clickDatabase(int row) { clickItem(databases(), row); }
  void typeServer(const QString& name) {
    auto& line = element<QLineEdit>("txtServer");
    line.setFocus();
    line.clear();
    QTest::keyClicks(&line, name);
    QTest::keyClick(&line, Qt::Key_Return);
  }
  int twips(int value) { return ui::ScreenMeasure(form()).horizontal(Twips{value}); }
  void drag(int byPixels) {
    QWidget& grip = element("imgSplitterV");
    QTest::mousePress(&grip, Qt::LeftButton, {}, {0, 20});
    QTest::mouseMove(&grip, {byPixels, 20});
    dragged = element("picSplitterV").geometry();
    QTest::mouseRelease(&grip, Qt::LeftButton, {}, {byPixels, 20});
  }

  CannedNetwork network;
  db::BrowserMemory memory;
  db::ConnectionState connection;
  settings::LanguageOffset language;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  QRect dragged;
  std::unique_ptr<db::frmSQLServerBrowser> form_;
};

TEST_F(Browser, CaptionsAreFixedEnglishInEveryLanguage) {
  language = settings::LanguageOffset("10000");
  EXPECT_EQ(form().windowTitle(), "SQL Server / Audit Trail Browser");
  EXPECT_EQ(element<QLabel>("lblInfo").text(), "Select desired SQL Server for audit trail viewing");
  EXPECT_EQ(element<QRadioButton>("ServerLocation0").text(), "Local Servers");
  EXPECT_EQ(element<QRadioButton>("ServerLocation1").text(), "ALL Servers");
  EXPECT_EQ(element<db::SmartViewBar>("SmartViewBar").title(), "SQL Servers");
  EXPECT_EQ(element<QPushButton>("cmdOK").text(), "OK");
  EXPECT_EQ(element<QPushButton>("cmdCancel").text(), "Cancel");
  EXPECT_EQ(databases().model()->headerData(0, Qt::Horizontal).toString(), "Current Databases");
  EXPECT_EQ(databases().model()->headerData(1, Qt::Horizontal).toString(), "Database Path");
  EXPECT_TRUE(element<QLineEdit>("txtServer").placeholderText().startsWith("Anderer Server"));
}

TEST_F(Browser, HasNoButtonForRecentDatabasesWhereThereAreNone) {
  EXPECT_EQ(form().findChild<QPushButton*>("btRecent"), nullptr);
}

TEST_F(Browser, RecentDatabasesAreSelectedWithoutAskingTheirServers) {
  connection.CurrentDatabaseLocation = "C:\\of the database before.mdf";
  memory.recent = {{"PLANT2", "Korvel_Audit"}, {"QA & LAB", "Korvel_Audit_MU"}};
  QPushButton& recent = element<QPushButton>("btRecent");
  EXPECT_EQ(recent.text(), "Recent databases");
  network.asked.clear();
  const QList<QAction*> entries = recent.menu()->actions();
  ASSERT_EQ(entries.size(), 2);
  EXPECT_EQ(entries[1]->text(), "QA && LAB - [Korvel_Audit_MU]");
  entries[1]->trigger();
  EXPECT_EQ(form().result(), QDialog::Accepted);
  EXPECT_FALSE(form().isVisible());
  EXPECT_THAT(network.asked, IsEmpty());
  EXPECT_EQ(connection.CurrentServer, "QA & LAB");
  EXPECT_EQ(connection.CurrentDatabase, "Korvel_Audit_MU");
  EXPECT_EQ(connection.CurrentDatabaseLocation, "");
  EXPECT_NE(connection.ConnectionString, "");
  EXPECT_EQ(connection.AdvancedConnectionString, connection.ConnectionString);
}

TEST_F(Browser, RecentDatabasesAreReachedByTabAndForgottenOnRequest) {
  int forgotten = 0;
  memory.recent = {{"PLANT2", "Korvel_Audit"}};
  memory.forget = [&] { ++forgotten; };
  QPushButton& recent = element<QPushButton>("btRecent");
  databases().setFocus();
  QTest::keyClick(&databases(), Qt::Key_Tab);
  EXPECT_TRUE(recent.hasFocus());
  EXPECT_FALSE(recent.isDefault());
  recent.menu()->actions().last()->trigger();
  EXPECT_EQ(forgotten, 1);
  EXPECT_FALSE(recent.isVisible());
  EXPECT_TRUE(form().isVisible());
  EXPECT_EQ(connection.CurrentServer, "");
}

TEST_F(Browser, HasItsSplitterWhereItWas) {
  memory.splitter = Twips{3000};
  EXPECT_EQ(form().splitter(), Twips{3000});
  EXPECT_EQ(element("imgSplitterV").x(), twips(3000));
}

TEST_F(Browser, ShowingListsTheLocalServersUnderTheHourglass) {
  network.whileListing = [&] { EXPECT_THAT(recorder->pointers, ElementsAre(Pointer::hourglass)); };
  form();
  EXPECT_EQ(serverNames(), (QStringList{"(embedded)", "PLANT1"}));
  EXPECT_THAT(network.asked, ElementsAre("local"));
  EXPECT_THAT(recorder->pointers, ElementsAre(Pointer::hourglass, Pointer::standard));
  EXPECT_FALSE(form().switches.eventEcho);
  EXPECT_FALSE(form().switches.connectionOption);
}

TEST_F(Browser, EveryServerIsHighlighted) {
  form();
  for (int i = 0; i < servers().count(); ++i) {
    EXPECT_TRUE(servers().item(i)->font().weight() >= QFont::DemiBold) << i;
    EXPECT_EQ(servers().item(i)->data(Qt::UserRole).toString(), "SERVER");
  }
}

TEST_F(Browser, TheOtherLocationClearsTheDatabasesAndListsAnew) {
  clickServer(1);
  EXPECT_NE(listed(), "");
  press("ServerLocation1");
  EXPECT_EQ(listed(), "");
  EXPECT_EQ(serverNames(), (QStringList{"(embedded)", "PLANT1", "QA\\AUDIT"}));
  press("ServerLocation0");
  EXPECT_THAT(network.asked, ElementsAre("local", "PLANT1", "all", "local"));
}

TEST_F(Browser, TheSameLocationOnceMoreListsNothing) {
  clickServer(1);
  const QString before = listed();
  press("ServerLocation0");
  EXPECT_EQ(listed(), before);
  EXPECT_THAT(network.asked, ElementsAre("local", "PLANT1"));
}

TEST_F(Browser, EachClickOnAServerHasAServerObjectOfItsOwn) {
  form();
  EXPECT_EQ(network.opened, 1);
  clickServer(1);
  EXPECT_EQ(network.opened, 2);
  clickServer(1);
  EXPECT_EQ(network.opened, 3);
  EXPECT_EQ(network.open, 1);
}

TEST_F(Browser, AServerObjectHasTheOptionsOfItsSwitch) {
  clickServer(1);
  form().switches.connectionOption = true;
  clickServer(1);
  EXPECT_THAT(network.options,
              ElementsAre(db::BrowserOptions{true, true, false}, db::BrowserOptions{true, false, false}));
}

TEST_F(Browser, NoServerLeavesTheGroupEmpty) {
  network.local.clear();
  EXPECT_EQ(serverNames(), QStringList());
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(Browser, ServersThatCannotBeListedAreReported) {
  network.listingFailure = Error(101, "no network");
  EXPECT_EQ(serverNames(), QStringList());
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::critical, "SQL Server / Audit Trail Browser",
                                                           "The servers cannot be listed.\r\n101:no network"}));
  EXPECT_EQ(recorder->pointers.back(), Pointer::standard);
}

TEST_F(Browser, AuditDatabasesOnlyInTheOrderOfTheServer) {
  clickServer(1);
  EXPECT_EQ(listed(), "korvel_audit_mu|\nKorvel_Audit|C:\\Data\\a.mdf\nOld Korvel_Audit 2003|D:\\old.mdf");
  EXPECT_EQ(recorder->pointers.back(), Pointer::standard);
  EXPECT_EQ(element<QStatusBar>("StatusBar1").currentMessage(), "Audit databases on PLANT1: 3");
}

TEST_F(Browser, AFailedConnectionIsReportedAndLeavesNothingBehind) {
  network.failures.emplace("(embedded)", Error(18456, "Login failed for <user>."));
  recorder->onMessage = [&] { EXPECT_EQ(recorder->pointers.back(), Pointer::standard); };
  clickServer(1);
  clickServer(0);
  EXPECT_EQ(listed(), "");
  EXPECT_THAT(
      recorder->messages,
      ElementsAre(ShownMessage{MessageIcon::critical, "SQL Server / Audit Trail Browser",
                               "The databases of (embedded) cannot be listed.\r\n18456:Login failed for <user>."}));
  clickServer(1);
  EXPECT_NE(listed(), "");
}

TEST_F(Browser, AnyExceptionIsReported) {
  bool broken = true;
  network.whileListing = [&] {
    if (broken) throw std::runtime_error("something odd");
  };
  form();
  EXPECT_EQ(recorder->messages.back().text, "The servers cannot be listed.\r\n51:something odd");
  broken = false;
  press("ServerLocation1");
  broken = true;
  clickServer(1);
  ASSERT_EQ(recorder->messages.size(), 2U);
  EXPECT_EQ(recorder->messages.back().text, "The databases of PLANT1 cannot be listed.\r\n51:something odd");
  EXPECT_EQ(recorder->pointers.back(), Pointer::standard);
}

TEST_F(Browser, AFailureIsExplainedInTheUsersLanguage) {
  language = settings::LanguageOffset("10000");
  network.failures.emplace("PLANT1", settings::localizedError(11001, "failure.hostUnknown", {"PLANT1"}));
  clickServer(1);
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_TRUE(recorder->messages[0].text.startsWith("Die Datenbanken von PLANT1 können nicht aufgelistet werden."));
  EXPECT_TRUE(recorder->messages[0].text.contains("11001:Der Computer PLANT1 wurde nicht gefunden."));
}

TEST_F(Browser, OkHandsTheChoiceBack) {
  clickServer(1);
  clickDatabase(1);
  press("cmdOK");
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(connection.ConnectionString,
            "Provider=SQLOLEDB; Server=PLANT1; Database=Korvel_Audit; Integrated Security=SSPI;");
  EXPECT_EQ(connection.AdvancedConnectionString, connection.ConnectionString);
  EXPECT_EQ(connection.CurrentServer, "PLANT1");
  EXPECT_EQ(connection.CurrentDatabase, "Korvel_Audit");
  EXPECT_EQ(connection.CurrentDatabaseLocation, "C:\\Data\\a.mdf");
}

TEST_F(Browser, ADatabasesNameCannotLeadToAnotherServer) {
  connection = {"old", "old too", "S", "D", "L"};
  network.databases["PLANT1"] = {{"Korvel_Audit; Server=127.0.0.1,2", false, ""}, {" Korvel_Audit", false, ""}};
  clickServer(1);
  for (const int row : {0, 1}) {
    clickDatabase(row);
    press("cmdOK");
    EXPECT_TRUE(form().isVisible());
    EXPECT_EQ(connection.ConnectionString, "old");
    EXPECT_EQ(connection.CurrentServer, "S");
  }
  ASSERT_EQ(recorder->messages.size(), 2U);
  EXPECT_EQ(recorder->messages[0],
            (ShownMessage{MessageIcon::critical, "SQL Server / Audit Trail Browser",
                          "\"Korvel_Audit; Server=127.0.0.1,2\" cannot be used in a connection to a server."}));
}

TEST_F(Browser, OkWithoutAChoiceClearsBothStringsAndStays) {
  connection = {"old", "old too", "S", "D", "L"};
  clickServer(1);
  press("cmdOK");
  EXPECT_TRUE(form().isVisible());
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::none, QApplication::applicationDisplayName(),
                                                           "No Database Selected"}));
  EXPECT_EQ(connection.ConnectionString, "");
  EXPECT_EQ(connection.AdvancedConnectionString, "");
  EXPECT_EQ(connection.CurrentServer, "S");
  press("cmdCancel");
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(connection.ConnectionString, "");
}

TEST_F(Browser, IsShownBeforeItsServersAreListed) {
  db::frmSQLServerBrowser own(
      {connection, language, recorder, [this] { return std::make_unique<CannedDirectory>(network); }}, nullptr);
  bool visible = false;
  network.whileListing = [&] { onWindowThread([&] { visible = own.isVisible(); }); };
  own.show();
  EXPECT_THAT(network.asked, IsEmpty());
  QCoreApplication::processEvents();
  EXPECT_THAT(network.asked, ElementsAre("local"));
  EXPECT_TRUE(visible);
}

TEST_F(Browser, EscapeStopsAListingAndLeavesTheDialogOpen) {
  form();
  network.whileListing = [&] {
    QCoreApplication::postEvent(&databases(), new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    EXPECT_TRUE(comesAbout([&] { return network.stop.stop_requested(); }));
  };
  clickServer(1);
  EXPECT_TRUE(form().isVisible());
  EXPECT_EQ(listed(), "");
  EXPECT_EQ(element<QStatusBar>("StatusBar1").currentMessage(), "Stopped");
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_EQ(recorder->pointers.back(), Pointer::standard);
  network.whileListing = nullptr;
  clickServer(1);
  EXPECT_NE(listed(), "");
  while (db::hasAbandonedWorkers()) QThread::yieldCurrentThread();
}

TEST_F(Browser, CancelAndEscapeLeaveTheState) {
  connection = {"c", "a", "S", "D", "L"};
  clickServer(1);
  clickDatabase(0);
  press("cmdCancel");
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(connection.ConnectionString, "c");
  form().show();
  QTest::keyClick(&databases(), Qt::Key_Escape);
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(connection.ConnectionString, "c");
}

TEST_F(Browser, ANameTypedByHandIsAServerLikeAnyOther) {
  network.databases["FAR\\AUDIT"] = {{"Korvel_Audit", false, ""}};
  typeServer("  FAR\\AUDIT ");
  EXPECT_TRUE(form().isVisible());
  EXPECT_EQ(serverNames(), (QStringList{"(embedded)", "PLANT1", "FAR\\AUDIT"}));
  EXPECT_EQ(listed(), "Korvel_Audit|");
  clickDatabase(0);
  press("cmdOK");
  EXPECT_EQ(connection.CurrentServer, "FAR\\AUDIT");
}

TEST_F(Browser, ATypedNameThatIsListedIsThatItem) {
  typeServer("plant1");
  EXPECT_EQ(serverNames(), (QStringList{"(embedded)", "PLANT1"}));
  EXPECT_THAT(network.asked, ElementsAre("local", "PLANT1"));
  typeServer("");
  EXPECT_EQ(network.asked.size(), 2U);
}

TEST_F(Browser, ATypedNameCannotSmuggleInASecondPart) {
  typeServer("S; Database=master");
  EXPECT_EQ(serverNames(), (QStringList{"(embedded)", "PLANT1"}));
  EXPECT_THAT(network.asked, ElementsAre("local"));
  EXPECT_EQ(recorder->messages.size(), 1U);
}

TEST_F(Browser, TheKeyboardDoesAll) {
  form();
  servers().setFocus();
  QTest::keyClick(&servers(), Qt::Key_Down);
  EXPECT_EQ(servers().currentRow(), 0);
  QTest::keyClick(&servers(), Qt::Key_Down);
  EXPECT_THAT(network.asked, ElementsAre("local"));
  QTest::keyClick(&servers(), Qt::Key_Return);
  EXPECT_TRUE(form().isVisible());
  EXPECT_THAT(network.asked, ElementsAre("local", "PLANT1"));
  databases().setFocus();
  QTest::keyClick(&databases(), Qt::Key_Down);
  QTest::keyClick(&databases(), Qt::Key_Return);
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(connection.CurrentDatabase, "korvel_audit_mu");
}

TEST_F(Browser, DatabasesNeverStandBesideAnotherServersName) {
  clickServer(1);
  servers().setFocus();
  QTest::keyClick(&servers(), Qt::Key_Up);
  EXPECT_EQ(listed(), "");
}

TEST_F(Browser, ADoubleClickChooses) {
  clickServer(1);
  const QPoint place = databases().visualRect(databases().model()->index(1, 0)).center();
  clickDatabase(1);
  EXPECT_TRUE(form().isVisible());
  QTest::mouseDClick(databases().viewport(), Qt::LeftButton, {}, place);
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(connection.CurrentDatabase, "Korvel_Audit");
}

TEST_F(Browser, TheSplitterFollowsThePointer) {
  const int before = element("imgSplitterV").x();
  drag(40);
  EXPECT_EQ(dragged.x(), before + 40);
  EXPECT_EQ(dragged.width(), twips(40));
  EXPECT_EQ(dragged.height(), element("imgSplitterV").height() - twips(20));
  EXPECT_NEAR(element("imgSplitterV").x(), before + 40, 1);
  EXPECT_FALSE(element("picSplitterV").isVisible());
}

TEST_F(Browser, TheSplitterStopsAtItsLimits) {
  drag(-5000);
  EXPECT_EQ(dragged.x(), twips(500));
  EXPECT_EQ(element("imgSplitterV").x(), twips(500));
  drag(5000);
  EXPECT_EQ(dragged.x(), form().width() - twips(500));
  EXPECT_NEAR(element("imgSplitterV").x(), form().width() - twips(500), 1);
  EXPECT_LE(element("SmartViewBar").geometry().right(), element("imgSplitterV").x());
}

TEST_F(Browser, MovingWithoutAPressDragsNothing) {
  const int before = element("imgSplitterV").x();
  QTest::mouseMove(&element("imgSplitterV"), {60, 20});
  QTest::mousePress(&element("imgSplitterV"), Qt::RightButton, {}, {0, 20});
  EXPECT_FALSE(element("picSplitterV").isVisible());
  QTest::mouseRelease(&element("imgSplitterV"), Qt::RightButton, {}, {60, 20});
  EXPECT_EQ(element("imgSplitterV").x(), before);
}

TEST_F(Browser, ItIsNeverSmallerThanItsMinimum) {
  form().resize(10, 10);
  EXPECT_EQ(form().size(), QSize(twips(5000), twips(3000)));
  EXPECT_LE(element("cmdCancel").mapTo(&form(), QPoint()).x() + element("cmdCancel").width(), form().width());
  EXPECT_LE(element("Controlspic").geometry().bottom(), element("StatusBar1").y());
}

TEST_F(Browser, ASmallSizeThatIsForcedSnapsBackAndShowsItsLists) {
  form();
  for (const QSize forced : {QSize(60, 40), QSize(900, 40), QSize(60, 700)}) {
    // As a window system does, below the window's smallest size.
    const QSize expected = forced.expandedTo({twips(5000), twips(3000)});
    for (int time = 0; time < 10; ++time) {
      form().windowHandle()->resize(forced);
      QCoreApplication::processEvents();
      ASSERT_EQ(form().size(), expected) << time;
      form().windowHandle()->resize(900, 700);
      QCoreApplication::processEvents();
    }
    form().windowHandle()->resize(forced);
    QCoreApplication::processEvents();
    const auto seen = [&](const QAbstractItemView& list) {
      const QWidget& viewport = *list.viewport();
      return viewport.rect() & QRect(viewport.mapFrom(&form(), QPoint()), form().size()) &
             QRect(viewport.mapFrom(list.parentWidget(), QPoint()), list.parentWidget()->size());
    };
    EXPECT_GE(seen(databases()).height(), databases().verticalHeader()->defaultSectionSize()) << forced.width();
    EXPECT_GE(seen(databases()).width(), 100) << forced.width();
    EXPECT_GE(seen(servers()).height(), servers().sizeHintForRow(0)) << forced.width();
    EXPECT_GE(seen(servers()).width(), 40) << forced.width();
    EXPECT_LE(databases().mapTo(&form(), QPoint(0, databases().height())).y(), element("Controlspic").y());
  }
  // With enough room the splitter and the explanation are shown again.
  form().resize(900, 700);
  EXPECT_NEAR(element("imgSplitterV").x(), twips(3600), 1);
  EXPECT_TRUE(element("lblInfo").isVisible());
}

TEST_F(Browser, AWindowSystemThatInsistsOnASmallSizeIsObeyed) {
  form();
  int asked = 0;
  for (int i = 0; i < 20; ++i) {
    const QSize before(60, 40);
    form().windowHandle()->resize(before);
    QCoreApplication::processEvents();
    if (form().size() != before) ++asked;
  }
  EXPECT_GT(asked, 0);
  EXPECT_LT(asked, 20);
}

TEST_F(Browser, WhileMinimisedNothingIsPlaced) {
  const QRect before = element("StatusBar1").geometry();
  form().setWindowState(Qt::WindowMinimized);
  form().resize(form().width() + 200, form().height() + 200);
  QResizeEvent resized(form().size(), before.size());
  QApplication::sendEvent(&form(), &resized);
  EXPECT_EQ(element("StatusBar1").geometry(), before);
}

TEST_F(Browser, EventsAreEchoedOnlyWithTheSwitchOn) {
  network.events = {{db::ServerEventKind::connectionBroken, "gone"}};
  clickServer(1);
  EXPECT_THAT(recorder->messages, IsEmpty());
  form().switches.eventEcho = true;
  clickServer(1);
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::none, "SQLServer Object Event", "ConnectionBroken: \r\ngone"}));
  // Listing servers turns it off again.
  press("ServerLocation1");
  EXPECT_FALSE(form().switches.eventEcho);
}

TEST_F(Browser, ClosingReleasesTheServerObjects) {
  form();
  EXPECT_EQ(network.open, 1);
  press("cmdCancel");
  EXPECT_EQ(network.open, 0);
}

TEST_F(Browser, EverythingHasANameForAssistance) {
  form();
  for (const char* name : {"SQL Servers", "txtServer", "btServer", "lvListView"})
    EXPECT_FALSE(element(name).accessibleName().isEmpty()) << name;
}

}  // namespace
}  // namespace korvel::test
