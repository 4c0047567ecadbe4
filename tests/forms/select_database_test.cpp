#include <QDialog>
#include <QListWidget>
#include <QTest>
#include <QTimer>

#include "control/qt_control_services.h"
#include "tests/control/viewer_fixture.h"
#include "tests/forms/canned_directory.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;

class SelectDatabase : public ViewerTest {
 protected:
  SelectDatabase() { recorder->forms = {"frmSQLServerBrowser"}; }
  /// The action on the connection state before the dialog is closed.
  void answer(std::function<void(db::ConnectionState&)> change) {
    recorder->onForm = [change = std::move(change)] { change(control::libraryState().connection); };
  }
  static void choose(db::ConnectionState& state, const char* server) {
    state = {"x", "x", server, "Korvel_Audit", "C:\\a.mdf"};
  }
  static bool unlocked(const AuditViewer& viewer) { return element(viewer, "btQuery")->isEnabled(); }
};

TEST_F(SelectDatabase, AChoiceIsAnnouncedUnlocksAndClears) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  viewer->TriggerQuery();
  viewer->LockControls();
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  answer([](db::ConnectionState& state) { choose(state, "QA"); });
  viewer->SelectDatabase();
  EXPECT_THAT(recorder->shownForms, ElementsAre("frmSQLServerBrowser"));
  ASSERT_EQ(selected.count(), 1);
  EXPECT_EQ(selected[0][0].toString(), "QA - [Korvel_Audit]");
  EXPECT_TRUE(unlocked(*viewer));
  for (int i = 0; i < 6; ++i) EXPECT_EQ(list(*viewer, i)->model()->rowCount(), 0) << i;
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
  // The same one again is announced again.
  viewer->SelectDatabase();
  EXPECT_EQ(selected.count(), 2);
}

TEST_F(SelectDatabase, CancelRepeatsAnEarlierSelection) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  viewer->TriggerQuery();
  ASSERT_EQ(list(*viewer, 0)->model()->rowCount(), 1);
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  viewer->SelectDatabase();
  ASSERT_EQ(selected.count(), 1);
  EXPECT_EQ(selected[0][0].toString(), "S - [Korvel_Audit]");
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 0);
  EXPECT_TRUE(unlocked(*viewer));
}

TEST_F(SelectDatabase, CancelWithoutASelectionLeavesItLocked) {
  const auto viewer = newViewer();
  viewer->show();
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  viewer->SelectDatabase();
  EXPECT_EQ(selected.count(), 0);
  EXPECT_FALSE(unlocked(*viewer));
}

TEST_F(SelectDatabase, OkWithoutAChoiceLocks) {
  const auto viewer = shownViewer();
  ASSERT_TRUE(unlocked(*viewer));
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  answer([](db::ConnectionState& state) {
    state.ConnectionString.clear();
    state.AdvancedConnectionString.clear();
  });
  viewer->SelectDatabase();
  EXPECT_EQ(selected.count(), 0);
  EXPECT_FALSE(unlocked(*viewer));
  EXPECT_TRUE(element(*viewer, "btSelectDB")->isEnabled());
}

TEST_F(SelectDatabase, TheSideButtonDoesTheSameAndIsNeverLocked) {
  const auto viewer = newViewer();
  viewer->show();
  EXPECT_TRUE(element(*viewer, "btSelectDB")->isEnabled());
  answer([](db::ConnectionState& state) { choose(state, "QA"); });
  click(*viewer, "btSelectDB");
  EXPECT_THAT(recorder->shownForms, ElementsAre("frmSQLServerBrowser"));
  EXPECT_TRUE(unlocked(*viewer));
}

TEST_F(SelectDatabase, AControlThatDiesWithItsDialogOpenStaysQuiet) {
  auto viewer = newViewer();
  answer([&](db::ConnectionState&) { viewer.reset(); });
  viewer->SelectDatabase();
  EXPECT_EQ(viewer, nullptr);
}

/// With the real services: OK without a choice, its message, and then Cancel.
TEST_F(SelectDatabase, CancelAfterAnOkWithoutAChoiceLocks) {
  CannedNetwork network;
  network.local = {"PLANT1"};
  const auto viewer = shownViewer();
  ASSERT_TRUE(unlocked(*viewer));
  ASSERT_FALSE(control::libraryState().connection.AdvancedConnectionString.empty());
  control::platform().services = std::make_shared<control::QtControlServices>();
  control::platform().openDirectory = [&] { return std::make_unique<CannedDirectory>(network); };
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  bool messageSeen = false;
  QTimer whenMessage;
  QObject::connect(&whenMessage, &QTimer::timeout, [&] {
    QWidget* const message = QApplication::activeModalWidget();
    if (message == nullptr || message->objectName() == "frmSQLServerBrowser") return;
    messageSeen = true;
    QTest::keyClick(message, Qt::Key_Escape);
  });
  QTimer whenModal;
  QObject::connect(&whenModal, &QTimer::timeout, [&] {
    QWidget* const browser = QApplication::activeModalWidget();
    if (browser == nullptr) return;
    whenModal.stop();
    ASSERT_EQ(browser->objectName(), "frmSQLServerBrowser");
    whenMessage.start(0);
    QTest::mouseClick(browser->findChild<QWidget*>("cmdOK"), Qt::LeftButton);
    EXPECT_TRUE(browser->isVisible());
    QTest::mouseClick(browser->findChild<QWidget*>("cmdCancel"), Qt::LeftButton);
  });
  whenModal.start(0);
  viewer->SelectDatabase();
  EXPECT_TRUE(messageSeen);
  EXPECT_EQ(selected.count(), 0);
  EXPECT_FALSE(unlocked(*viewer));
  EXPECT_EQ(control::libraryState().connection.ConnectionString, "");
  EXPECT_EQ(control::libraryState().connection.AdvancedConnectionString, "");
}

/// With the real services: the dialog itself, driven while it is modal.
TEST_F(SelectDatabase, TheDialogIsTheBrowserOwnedByTheControl) {
  CannedNetwork network;
  network.local = {"PLANT1"};
  network.databases["PLANT1"] = {{"Korvel_Audit", false, "C:\\a.mdf"}};
  control::platform().services = std::make_shared<control::QtControlServices>();
  control::platform().openDirectory = [&] { return std::make_unique<CannedDirectory>(network); };
  const auto viewer = newViewer();
  viewer->show();
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  QTimer whenModal;
  QObject::connect(&whenModal, &QTimer::timeout, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    // It lists its servers when it is shown; before that it handles no key.
    auto* servers = dialog == nullptr ? nullptr : dialog->findChild<QListWidget*>("SQL Servers");
    if (servers == nullptr || servers->count() == 0) return;
    whenModal.stop();
    EXPECT_EQ(dialog->objectName(), "frmSQLServerBrowser");
    EXPECT_EQ(dialog->parentWidget(), viewer.get());
    QTest::keyClick(servers, Qt::Key_Down);
    QTest::keyClick(servers, Qt::Key_Return);
    QTest::keyClick(dialog->findChild<QWidget*>("lvListView"), Qt::Key_Down);
    QTest::mouseClick(dialog->findChild<QWidget*>("cmdOK"), Qt::LeftButton);
  });
  whenModal.start(0);
  viewer->SelectDatabase();
  ASSERT_EQ(selected.count(), 1);
  EXPECT_EQ(selected[0][0].toString(), "PLANT1 - [Korvel_Audit]");
  EXPECT_EQ(control::libraryState().connection.CurrentDatabaseLocation, "C:\\a.mdf");
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

class LastFailure : public ViewerTest {};

TEST_F(LastFailure, IsKeptUntilTheNextQuery) {
  const auto viewer = shownViewer();
  QSignalSpy changed(viewer.get(), &AuditViewer::LastFailureChanged);
  server.failure = Error(4060, "no such database");
  const QDateTime before = QDateTime::currentDateTime();
  viewer->TriggerQuery();
  EXPECT_EQ(changed.count(), 1);
  EXPECT_EQ(viewer->property("LastFailureNumber").toInt(), 4060);
  EXPECT_EQ(viewer->property("LastFailureText").toString(), "no such database");
  EXPECT_GE(viewer->property("LastFailureTime").toDateTime(), before);
  EXPECT_LE(viewer->property("LastFailureTime").toDateTime(), QDateTime::currentDateTime());
  EXPECT_FALSE(viewer->setProperty("LastFailureNumber", 1));

  server.failure.reset();
  server.resultSets = {{record("1", "CS")}};
  viewer->TriggerQuery();
  EXPECT_EQ(changed.count(), 2);
  EXPECT_EQ(viewer->LastFailureNumber(), 0);
  EXPECT_EQ(viewer->LastFailureText(), "");
  EXPECT_FALSE(viewer->LastFailureTime().isValid());
}

TEST_F(LastFailure, IsNoStoredProperty) {
  const auto viewer = newViewer();
  EXPECT_FALSE(viewer->WriteProperties().toMap().contains("LastFailureNumber"));
}

TEST_F(LastFailure, AnAnswerThatWasCutOffIsReportedInTheStatusPanel) {
  const auto viewer = shownViewer();
  server.resultSets = {{}};
  for (int i = 1; i <= 5000; ++i) server.resultSets[0].push_back(record(std::to_string(i), "CS"));
  click(*viewer, "btQuery");
  EXPECT_TRUE(statusPanel(*viewer).startsWith("5000-row limit reached")) << statusPanel(*viewer).toStdString();
  server.resultSets[0].pop_back();
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "");
}

}  // namespace
}  // namespace korvel::test
