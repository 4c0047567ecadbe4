#include "host/first_doors.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <filesystem>

#include "tests/host/main_window_fixture.h"
#include "tests/support/environment_variable.h"

namespace korvel::host {
namespace {

class FirstDoorsTest : public MainWindowTest {
 protected:
  static FirstDoors& doorsOf(const MainWindow& window) { return *window.findChild<FirstDoors*>("firstDoors"); }
  [[nodiscard]] QString path() const { return QString::fromStdString(folder.path().string()); }

  test::EnvironmentVariable data{"KORVEL_AUDIT_DATA", (folder / "data").string()};
};

TEST_F(FirstDoorsTest, StandOverAControlWithoutADatabase) {
  MainWindow window(options, english);
  window.show();
  EXPECT_TRUE(doorsOf(window).isVisible());
}

TEST_F(FirstDoorsTest, AreNotThereWhereAServerIsNamed) {
  options.server = "S";
  MainWindow window(options, english);
  window.show();
  EXPECT_FALSE(doorsOf(window).isVisible());
}

TEST_F(FirstDoorsTest, GoWhereADatabaseWasSelected) {
  MainWindow window(options, english);
  window.show();
  window.viewer().setDefaultSQLServer("S");
  window.viewer().OpenDefaultSQLServer();
  EXPECT_FALSE(doorsOf(window).isVisible());
}

TEST_F(FirstDoorsTest, OfferTheDatabasesThatWereUsedLast) {
  const test::EnvironmentVariable unset("KORVEL_REMEMBER");
  const QString long1 = "/a/very/long/path/that/no/button/of/a/window/has/room/for/at/all";
  rememberIn(path() + "/remembered.json");
  {
    MainWindow window(options, english);
    window.show();
    EXPECT_EQ(doorsOf(window).findChild<QPushButton*>("doorRecent"), nullptr);
    for (const QString& server : {QString("PLANT1"), QString("QA & LAB"), long1, QString("PLANT4")})
      window.viewer().OpenDatabase(server, "Korvel_Audit");
  }
  MainWindow window(options, english);
  window.show();
  FirstDoors& doors = doorsOf(window);
  ASSERT_TRUE(doors.isVisible());
  EXPECT_EQ(window.viewer().LastFailureText(), "");
  const auto recent = doors.findChildren<QPushButton*>("doorRecent");
  ASSERT_EQ(recent.size(), 3);
  EXPECT_EQ(recent[0]->text(), "PLANT4 - [Korvel_Audit]");
  EXPECT_EQ(recent[1]->text().size(), 41);
  EXPECT_EQ(recent[1]->accessibleName(), long1 + " - [Korvel_Audit]");
  EXPECT_EQ(recent[2]->text(), "QA && LAB - [Korvel_Audit]");
  recent[2]->click();
  EXPECT_EQ(window.windowTitle(), "QA & LAB - [Korvel_Audit] - Korvel Audit Viewer");
  EXPECT_FALSE(doors.isVisible());
  EXPECT_EQ(window.viewer().DefaultSQLServer(), "(None)");
  rememberIn({});
}

TEST_F(FirstDoorsTest, LeadToADemoTrail) {
  MainWindow window(options, english);
  window.show();
  doorsOf(window).findChild<QPushButton*>("doorDemo")->click();
  EXPECT_TRUE(std::filesystem::exists(folder / "data" / "Korvel_Audit.db"));
  EXPECT_EQ(window.windowTitle(), "(embedded) - [Korvel_Audit] - Korvel Audit Viewer");
  window.viewer().SelectALL();
  window.viewer().TriggerQuery();
  EXPECT_EQ(window.viewer().LastFailureText(), "");
}

TEST_F(FirstDoorsTest, LeaveADatabaseThatIsThereAsItIs) {
  std::filesystem::create_directory(folder / "data");
  writeFileAtomically(folder / "data" / "Korvel_Audit.db", "somebody's trail");
  MainWindow window(options, english);
  window.show();
  doorsOf(window).findChild<QPushButton*>("doorDemo")->click();
  EXPECT_EQ(readFile(folder / "data" / "Korvel_Audit.db"), "somebody's trail");
  EXPECT_FALSE(std::filesystem::exists(folder / "data" / "Korvel_Audit_MU.db"));
}

TEST_F(FirstDoorsTest, LeadToTheDatabaseOfAFolder) {
  MainWindow window(options, english);
  window.show();
  FirstDoors& doors = doorsOf(window);
  EXPECT_TRUE(doors.openFolder(path()).contains("holds neither Korvel_Audit.db nor Korvel_Audit_MU.db"));
  EXPECT_TRUE(doors.isVisible());
  EXPECT_EQ(window.viewer().DefaultSQLServer(), "(None)");
  writeFileAtomically(folder / "Korvel_Audit_MU.db", "");
  EXPECT_EQ(doors.openFolder(path()), "");
  EXPECT_EQ(window.viewer().DatabaseType(), 1);
  EXPECT_FALSE(doors.isVisible());
  EXPECT_TRUE(window.windowTitle().endsWith("[Korvel_Audit_MU] - Korvel Audit Viewer"))
      << window.windowTitle().toStdString();
}

TEST_F(FirstDoorsTest, SpeakTheLanguageOfTheControl) {
  MainWindow window(options, english);
  window.show();
  EXPECT_EQ(doorsOf(window).findChild<QPushButton*>("doorDemo")->text(), "Demo trail");
  set("Language", "10000");
  Q_EMIT window.viewer().LanguageChanged();
  EXPECT_EQ(doorsOf(window).findChild<QPushButton*>("doorServer")->text(), QString::fromUtf8("Server suchen…"));
}

}  // namespace
}  // namespace korvel::host
