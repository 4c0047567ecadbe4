#include <gtest/gtest.h>

#include <QAbstractAnimation>
#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>
#include <filesystem>

#include "host/shot.h"
#include "tests/db/audit_database.h"
#include "tests/host/main_window_fixture.h"

namespace korvel::host {
namespace {

TEST_F(MainWindowTest, TheTitleSaysWhichDatabaseIsSelected) {
  options.server = "AUDITSRV";
  MainWindow window(options, english);
  EXPECT_EQ(window.windowTitle(), "Korvel Audit Viewer");
  window.show();
  EXPECT_EQ(window.windowTitle(), "AUDITSRV - [Korvel_Audit] - Korvel Audit Viewer");
}

/// A snapshot looks like the database that it is of.
TEST_F(MainWindowTest, TheTitleSaysThatTheDatabaseIsASnapshot) {
  test::DatabaseWriter(folder / "Korvel_Audit.db")
      .run(
          "CREATE TABLE Korvel_Snapshot (Name TEXT PRIMARY KEY, Value TEXT); INSERT INTO Korvel_Snapshot VALUES "
          "('format', 'korvel-audit-snapshot'), ('version', '1'), ('server', 'PLANT1'), ('database', 'Korvel_Audit'), "
          "('begun', '2026-11-22T16:05:03+01:00')");
  options.server = QString::fromStdU16String(folder.path().u16string());
  MainWindow window(options, english);
  window.show();
  const QString wanted =
      " - [Korvel_Audit] (Snapshot of Korvel_Audit on PLANT1, taken 2026-11-22 16:05:03+01:00) - "
      "Korvel Audit Viewer";
  EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle().endsWith(wanted); }, 20'000))
      << window.windowTitle().toStdString();
}

TEST_F(MainWindowTest, AQueryFileIsInFrontWhenTheWindowIsPresented) {
  writeFileAtomically(folder / "mine.vqf", "select 'mine'\r\n");
  options.queryFile = QString::fromStdU16String((folder / "mine.vqf").u16string());
  MainWindow window(options, english);
  const auto* pages = window.viewer().findChild<QTabWidget*>("SSTab1");
  const auto* text = window.viewer().findChild<QPlainTextEdit*>("txtAdvancedQuery");
  ASSERT_TRUE(pages != nullptr && text != nullptr);
  EXPECT_EQ(pages->currentIndex(), 0);
  window.present();
  EXPECT_EQ(pages->currentIndex(), 5);
  EXPECT_EQ(text->toPlainText().trimmed(), "select 'mine'");
  // It stands there, and nothing is connected.
  EXPECT_EQ(window.windowTitle(), "Korvel Audit Viewer");
}

TEST_F(MainWindowTest, NothingInItGoesWhileItIsShown) {
  MainWindow window(options, english);
  window.resize(900, 600);
  window.show();
  // A message during the control's start runs an event loop, in which the window would be deleted.
  EXPECT_TRUE(
      window.centralWidget()->findChildren<QAbstractAnimation*>(QString(), Qt::FindDirectChildrenOnly).isEmpty());
}

TEST_F(MainWindowTest, ExitClosesTheWindow) {
  MainWindow window(options, english);
  window.show();
  Q_EMIT window.viewer().ExitApp();
  EXPECT_FALSE(window.isVisible());
}

TEST_F(MainWindowTest, TheFourPropertiesPersist) {
  {
    MainWindow window(options, english);
    window.show();
    window.viewer().setViewSideTools(false);
    window.viewer().setViewToolBar(false);
    window.viewer().setDefaultSQLServer("S");
    window.viewer().setDatabaseType(1);
    window.close();
  }
  MainWindow window(options, english);
  EXPECT_FALSE(window.viewer().ViewSideTools());
  EXPECT_FALSE(window.viewer().ViewToolBar());
  EXPECT_EQ(window.viewer().DefaultSQLServer(), "S");
  EXPECT_EQ(window.viewer().DatabaseType(), 1);
}

TEST_F(MainWindowTest, OptionsComeBeforeTheForm) {
  writeForm(R"({"DefaultSQLServer": "FORM", "DatabaseType": 1})");
  {
    MainWindow window(options, english);
    EXPECT_EQ(window.viewer().DefaultSQLServer(), "FORM");
  }
  options.server = "OPTION";
  options.databaseType = 0;
  MainWindow window(options, english);
  EXPECT_EQ(window.viewer().DefaultSQLServer(), "OPTION");
  EXPECT_EQ(window.viewer().DatabaseType(), 0);
}

TEST_F(MainWindowTest, AFormThatCannotBeUsedIsReportedAndKept) {
  for (const char* text : {"broken", R"({"DefaultSQLServer": "S", "DatabaseType": "many"})"}) {
    writeForm(text);
    const UnattendedMessages messages(qApp);
    MainWindow window(options, english);
    ASSERT_EQ(messages.texts().size(), 1) << text;
    EXPECT_TRUE(messages.texts()[0].startsWith("The form file " + *options.formFile + " cannot be read: "));
    EXPECT_TRUE(messages.texts()[0].endsWith("The file stays as it is."));
    EXPECT_EQ(window.viewer().DefaultSQLServer(), "(None)");
    window.show();
    window.viewer().setViewSideTools(false);
    window.close();
    EXPECT_EQ(formText(), text);
  }
}

TEST_F(MainWindowTest, AFormThatCannotBeWrittenIsReported) {
  writeForm("{}");
  options.formFile = *options.formFile + "/below/a/file.json";
  MainWindow window(options, english);
  window.show();
  const UnattendedMessages messages(qApp);
  window.close();
  ASSERT_EQ(messages.texts().size(), 1);
  EXPECT_TRUE(messages.texts()[0].contains("cannot be written"));
  EXPECT_FALSE(window.isVisible());
}

TEST_F(MainWindowTest, AShotUsesNoForm) {
  options.shotFile = "unused.png";
  MainWindow window(options, english);
  window.show();
  window.close();
  EXPECT_FALSE(std::filesystem::exists(folder / "form.json"));
}

class MainWindowPlacement : public MainWindowTest {
 protected:
  static QRect screen() { return QGuiApplication::primaryScreen()->availableGeometry(); }
  std::optional<WindowPlacement> stored() {
    FormFile form(*options.formFile);
    EXPECT_EQ(form.load(english), "");
    return storedPlacement(form);
  }
  void store(const WindowPlacement& placement) {
    writeForm("{\"WindowPlacement\": \"" + placementText(placement).toStdString() + "\"}");
  }
};

TEST_F(MainWindowPlacement, TheWindowStandsWhereItStoodWhenItWasClosed) {
  const QRect left(60, 70, 700, 520);
  {
    MainWindow window(options, english);
    window.present();
    window.setGeometry(left);
    window.close();
  }
  MainWindow window(options, english);
  window.present();
  EXPECT_EQ(window.geometry(), left);
  EXPECT_FALSE(window.isMaximized());
}

TEST_F(MainWindowPlacement, AMaximisedWindowRemembersItsOtherSizeToo) {
  const QRect left(60, 70, 700, 520);
  {
    MainWindow window(options, english);
    window.present();
    window.setGeometry(left);
    window.showMaximized();
    window.close();
  }
  EXPECT_EQ(stored(), (WindowPlacement{left, true}));
  MainWindow window(options, english);
  window.present();
  EXPECT_TRUE(window.isMaximized());
  window.showNormal();
  EXPECT_EQ(window.geometry(), left);
}

TEST_F(MainWindowPlacement, AMissingOrSmallerScreenLosesNoWindow) {
  for (const QRect& elsewhere : {QRect(20000, 9000, 700, 520), QRect(-500, -500, 9000, 9000)}) {
    store({elsewhere, false});
    MainWindow window(options, english);
    window.present();
    EXPECT_TRUE(screen().contains(window.geometry())) << placementText({window.geometry(), false}).toStdString();
  }
}

TEST_F(MainWindowPlacement, ASizeThatIsAskedForComesFirst) {
  store({QRect(60, 70, 700, 520), true});
  options.size = QSize(720, 560);
  MainWindow window(options, english);
  window.present();
  EXPECT_EQ(window.size(), QSize(720, 560));
  EXPECT_FALSE(window.isMaximized());
}

TEST_F(MainWindowPlacement, AShotNeitherTakesNorLeavesIt) {
  store({QRect(60, 70, 700, 520), true});
  options.shotFile = "unused.png";
  {
    MainWindow window(options, english);
    EXPECT_EQ(window.size(), QSize(1280, 800));
    window.present();
    EXPECT_FALSE(window.isMaximized());
    window.resize(900, 600);
    window.close();
  }
  EXPECT_EQ(stored(), (WindowPlacement{QRect(60, 70, 700, 520), true}));
}

TEST_F(MainWindowPlacement, ItLeavesTheSettingsAlone) {
  const QRect left(60, 70, 700, 520);
  MainWindow window(options, english);
  window.present();
  window.setGeometry(left);
  window.close();
  EXPECT_EQ(stored(), (WindowPlacement{left, false}));
  EXPECT_FALSE(std::filesystem::exists(folder / "settings.reg"));
}

TEST_F(MainWindowPlacement, AMoveAloneIsNotWorthAMessage) {
  {
    MainWindow window(options, english);
    window.present();
    window.close();
  }
  MainWindow window(options, english);
  window.present();
  window.setGeometry(QRect(80, 90, 700, 520));
  std::filesystem::remove(folder / "form.json");
  std::filesystem::create_directory(folder / "form.json");
  const UnattendedMessages messages(qApp);
  window.close();
  EXPECT_EQ(messages.texts(), QStringList());
}

TEST_F(MainWindowPlacement, AWindowThatWasNeverShownLeavesNone) {
  MainWindow window(options, english);
  window.close();
  EXPECT_EQ(stored(), std::nullopt);
}

TEST_F(MainWindowTest, KeysPrintNothingWithoutADatabase) {
  const test::EnvironmentVariable windir("windir", folder.path().string());
  MainWindow window(options, english);
  window.show();
  window.viewer().PrintReport();
  window.viewer().PreviewReport();
  EXPECT_FALSE(std::filesystem::exists(folder / "report.htm"));
}

TEST_F(MainWindowTest, ItsOwnTextsFollowTheLanguage) {
  options.server = QString::fromStdString((folder / "no such folder").string());
  MainWindow window(options, english);
  window.show();
  window.viewer().TriggerQuery();
  const auto* heading = window.findChild<QLabel*>("failureHeading");
  ASSERT_TRUE(heading->isVisible());
  ASSERT_TRUE(heading->text().startsWith("The query failed at ")) << heading->text().toStdString();
  set("Language", "10000");
  Q_EMIT window.viewer().LanguageChanged();
  EXPECT_TRUE(heading->text().startsWith("Die Abfrage ist fehlgeschlagen (")) << heading->text().toStdString();
  EXPECT_EQ(window.findChild<QToolButton*>("failureClose")->toolTip(), "Diese Meldung schließen");
}

TEST_F(MainWindowTest, AMessageThatWasClosedStaysClosedInEveryLanguage) {
  options.server = QString::fromStdString((folder / "no such folder").string());
  MainWindow window(options, english);
  window.show();
  window.viewer().TriggerQuery();
  window.findChild<QToolButton*>("failureClose")->click();
  Q_EMIT window.viewer().LanguageChanged();
  EXPECT_FALSE(window.findChild<QWidget*>("failureBar")->isVisible());
}

TEST(FailureBarInWindow, StandsAboveTheControlUntilTheNextQuery) {
  const test::TemporaryFolder folder;
  const test::OwnSettings settings(folder.path());
  Options options;
  options.formFile = QString::fromStdString((folder / "form.json").string());
  options.server = QString::fromStdString((folder / "nothing here").string());
  MainWindow window(options, ViewerLanguage());
  window.show();
  auto& bar = *window.findChild<FailureBar*>();
  EXPECT_FALSE(bar.isVisible());
  window.viewer().TriggerQuery();
  ASSERT_TRUE(bar.isVisible());
  EXPECT_EQ(bar.findChild<QTextEdit*>("failureReason")->toPlainText(), window.viewer().LastFailureText());
  QApplication::processEvents();
  EXPECT_LE(bar.mapTo(&window, QPoint(0, bar.height())).y(), window.viewer().mapTo(&window, QPoint()).y());
  bool hiddenMeanwhile = false;
  QObject::connect(&window.viewer(), &AuditViewer::LastFailureChanged, [&] { hiddenMeanwhile |= !bar.isVisible(); });
  window.viewer().TriggerQuery();
  EXPECT_TRUE(hiddenMeanwhile);
  EXPECT_TRUE(bar.isVisible());
}

}  // namespace
}  // namespace korvel::host
