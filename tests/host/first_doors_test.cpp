#include "host/first_doors.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>
#include <filesystem>

#include "tests/host/main_window_fixture.h"
#include "tests/support/accessible_tree.h"
#include "tests/support/cut_texts.h"
#include "tests/support/environment_variable.h"
#include "tests/support/tab_order.h"

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

/// A start without a database, with databases that were used before, in five languages.
class FirstMinute : public FirstDoorsTest, public testing::WithParamInterface<const char*> {
 protected:
  FirstMinute() {
    set("Language", GetParam());
    rememberIn(path() + "/remembered.json");
    MainWindow before(options, english);
    before.show();
    before.viewer().OpenDatabase("PLANT1", "Korvel_Audit");
    before.viewer().OpenDatabase("/srv/audit/copies/of/line/4/and/a/long/way/down", "Korvel_Audit");
  }
  ~FirstMinute() override {
    QApplication::setFont(usual_);
    rememberIn({});
  }

  QFont usual_ = QApplication::font();
  ViewerLanguage language{GetParam()};
  test::EnvironmentVariable all{"KORVEL_REMEMBER"};
};

TEST_P(FirstMinute, NamesEachElementAndReachesItByTab) {
  MainWindow window(options, language);
  window.resize(1280, 800);
  window.show();
  FirstDoors& doors = doorsOf(window);
  ASSERT_EQ(doors.findChildren<QPushButton*>().size(), 5);
  EXPECT_EQ(test::AccessibleTree::missing(window), QStringList());
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  EXPECT_EQ(test::TabOrder::problems(window), QStringList());
}

TEST_P(FirstMinute, CutsNoTextOfTwiceTheSize) {
  QFont large = usual_;
  large.setPointSizeF(2 * large.pointSizeF());
  QApplication::setFont(large);
  MainWindow window(options, language);
  window.resize(1280, 800);
  window.show();
  FirstDoors& doors = doorsOf(window);
  EXPECT_LE(window.width(), 1280);
  EXPECT_EQ(test::CutTexts::in(doors), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Languages, FirstMinute, testing::Values("0", "10000", "20000", "30000", "40000"));

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
