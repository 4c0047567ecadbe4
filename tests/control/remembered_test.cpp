#include "control/remembered.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include "base/atomic_file.h"
#include "control/library_state.h"
#include "tests/support/environment_variable.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

using control::Remembered;
using control::RememberedColumns;
using Texts = Remembered::Texts;

class RememberedFile : public ::testing::Test {
 protected:
  ~RememberedFile() override { control::libraryState() = control::LibraryState(); }

  [[nodiscard]] QString path() const { return QString::fromStdString((folder / "own" / "remembered.json").string()); }
  [[nodiscard]] Remembered store(Remembered::Extent extent = Remembered::Extent::all) const { return {path(), extent}; }
  void write(const std::string& text) const {
    std::filesystem::create_directories(folder / "own");
    writeFileAtomically(folder / "own" / "remembered.json", text);
  }
  [[nodiscard]] std::string content() const { return readFile(folder / "own" / "remembered.json"); }

  TemporaryFolder folder;
};

TEST_F(RememberedFile, GivesBackWhatItWasTold) {
  store().addText(Texts::find, "pump");
  store().addText(Texts::find, "Ventil Ü");
  store().addText(Texts::queries, "Select 1\r\nfrom x");
  store().addDatabase({"PLANT1", "Korvel_Audit"});
  store().addDatabase({"(embedded)", "Korvel_Audit"});
  store().setFolder("queries", "/data/queries");
  store().setSize("frmSQLServerBrowser", {900, 600});
  store().setSplitter("frmSQLServerBrowser", {4000});
  store().changeColumns("lvListView0", [](RememberedColumns& columns) {
    columns.column("Area").width = Twips{2000};
    columns.column("Event").shown = false;
    columns.order = QStringList{"Event", "Area"};
  });
  EXPECT_EQ(store().texts(Texts::find), (QStringList{"Ventil Ü", "pump"}));
  EXPECT_EQ(store().texts(Texts::queries), QStringList{"Select 1\r\nfrom x"});
  EXPECT_TRUE(store().texts(Texts::queryFiles).isEmpty());
  EXPECT_EQ(store().databases(), (QList<RecentDatabase>{{"(embedded)", "Korvel_Audit"}, {"PLANT1", "Korvel_Audit"}}));
  EXPECT_EQ(store().folder("queries"), "/data/queries");
  EXPECT_EQ(store().size("frmSQLServerBrowser"), QSize(900, 600));
  EXPECT_EQ(store().splitter("frmSQLServerBrowser"), Twips{4000});
  RememberedColumns columns = store().columns("lvListView0");
  EXPECT_EQ(columns.order, (QStringList{"Event", "Area"}));
  EXPECT_EQ(columns.column("Area").width, Twips{2000});
  EXPECT_EQ(columns.column("Area").shown, std::nullopt);
  EXPECT_EQ(columns.column("Event").shown, false);
  EXPECT_TRUE(store().columns("lvListView1").columns.isEmpty());
}

TEST_F(RememberedFile, WhatIsUsedAgainMovesToTheFrontAndTheOldestGo) {
  for (int i = 0; i < 12; ++i) store().addText(Texts::find, QString::number(i));
  store().addText(Texts::find, "5");
  EXPECT_EQ(store().texts(Texts::find), (QStringList{"5", "11", "10", "9", "8", "7", "6", "4", "3", "2"}));
  for (int i = 0; i < 12; ++i) store().addDatabase({"S", QString::number(i)});
  store().addDatabase({"S", "11"});
  EXPECT_EQ(store().databases().size(), 10);
  EXPECT_EQ(store().databases().front().database, "11");
  EXPECT_EQ(store().databases().back().database, "2");
}

TEST_F(RememberedFile, TakesNothingThatCannotBeOffered) {
  store().addText(Texts::queries, "");
  store().addText(Texts::queries, QString(10'001, 'x'));
  store().addDatabase({"", "Korvel_Audit"});
  // The name would end in the middle of a connection string.
  store().addDatabase({"S;Server=other", "Korvel_Audit"});
  EXPECT_FALSE(QFile::exists(path()));
  store().addText(Texts::queries, QString(10'000, 'x'));
  EXPECT_EQ(store().texts(Texts::queries).size(), 1);
}

TEST_F(RememberedFile, AnEditedFileLeadsToNoOtherServerAndToNoEndlessList) {
  std::string many;
  for (int i = 0; i < 100; ++i) many += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\"";
  write(R"({"version": 1, "findTexts": [)" + many + R"(, 7, null],
    "databases": [{"server": "S;Server=other", "database": "D"}, {"server": "S"}, "S", {"server": "S", "database": "D"}],
    "windows": {"a": [5, 500], "b": [900], "c": "wide", "d": [99999, 500]},
    "splitters": {"a": -7, "b": "left"},
    "columns": {"list": {"columns": [{"name": "Area", "width": 99999999}, {"name": "Event", "width": -1}, 5]}}})");
  EXPECT_EQ(store().texts(Texts::find).size(), 10);
  EXPECT_EQ(store().databases(), (QList<RecentDatabase>{{"S", "D"}}));
  for (const char* window : {"a", "b", "c", "d", "e"}) EXPECT_FALSE(store().size(window).isValid()) << window;
  EXPECT_EQ(store().splitter("a"), Twips{150});
  EXPECT_EQ(store().splitter("b"), std::nullopt);
  RememberedColumns columns = store().columns("list");
  ASSERT_EQ(columns.columns.size(), 2);
  EXPECT_EQ(columns.column("Area").width, Twips{30'000});
  EXPECT_EQ(columns.column("Event").width, Twips{150});
}

TEST_F(RememberedFile, ADamagedFileIsAnEmptyOne) {
  for (const char* text : {"", "{\"version\": 1, \"findTe", "\xff\xfe\x00"}) {
    write(text);
    EXPECT_TRUE(store().texts(Texts::find).isEmpty()) << text;
    store().addText(Texts::find, "pump");
    EXPECT_EQ(store().texts(Texts::find), QStringList{"pump"}) << text;
  }
}

TEST_F(RememberedFile, AFileOfAnotherFormOrVersionStaysAsItIs) {
  for (const char* text : {R"({"version": 2, "findTexts": ["a"]})", R"({"DatabaseType": 1})", "[1, 2]"}) {
    write(text);
    EXPECT_TRUE(store().texts(Texts::find).isEmpty()) << text;
    store().addText(Texts::find, "pump");
    EXPECT_EQ(content(), text);
  }
}

TEST_F(RememberedFile, ThatCannotBeWrittenIsNoFailure) {
  writeFileAtomically(folder / "own", "a file where the folder should be");
  store().addText(Texts::find, "pump");
  EXPECT_TRUE(store().texts(Texts::find).isEmpty());
  EXPECT_EQ(readFile(folder / "own"), "a file where the folder should be");
}

TEST_F(RememberedFile, ChangesOfSeveralWritersAddUp) {
  const Remembered one = store();
  const Remembered other = store();
  one.addText(Texts::find, "a");
  other.addText(Texts::find, "b");
  one.addDatabase({"S", "D"});
  other.addText(Texts::find, "c");
  EXPECT_EQ(one.texts(Texts::find), (QStringList{"c", "b", "a"}));
  EXPECT_EQ(other.databases().size(), 1);
}

TEST_F(RememberedFile, ForgetsWhatItIsToldToForgetAndNothingElse) {
  store().addText(Texts::queries, "Select 1");
  store().addText(Texts::find, "pump");
  store().addDatabase({"S", "D"});
  store().changeColumns("a", [](RememberedColumns& columns) { columns.column("Area").shown = false; });
  store().changeColumns("b", [](RememberedColumns& columns) { columns.column("Area").shown = false; });
  store().forgetTexts(Texts::queries);
  store().forgetDatabases();
  store().forgetColumns("a");
  EXPECT_TRUE(store().texts(Texts::queries).isEmpty());
  EXPECT_TRUE(store().databases().isEmpty());
  EXPECT_TRUE(store().columns("a").columns.isEmpty());
  EXPECT_EQ(store().columns("b").columns.size(), 1);
  EXPECT_EQ(store().texts(Texts::find), QStringList{"pump"});
  EXPECT_EQ(content().find("Select 1"), std::string::npos);
}

TEST_F(RememberedFile, OfLayoutAloneSaysNothingOfTheWork) {
  const Remembered layout = store(Remembered::Extent::layout);
  layout.addText(Texts::queries, "Select 1");
  layout.addDatabase({"PLANT1", "Korvel_Audit"});
  layout.setFolder("queries", "/data");
  EXPECT_FALSE(QFile::exists(path()));
  layout.setSize("a", {300, 300});
  EXPECT_EQ(layout.size("a"), QSize(300, 300));
  // What an earlier start kept is not offered either.
  store().addDatabase({"PLANT1", "Korvel_Audit"});
  EXPECT_TRUE(layout.databases().isEmpty());
}

TEST_F(RememberedFile, OfNothingIsNeitherReadNorWritten) {
  store().setSize("a", {300, 300});
  const std::string before = content();
  for (const Remembered& none : {Remembered(), store(Remembered::Extent::nothing)}) {
    EXPECT_FALSE(none.keepsLayout());
    EXPECT_FALSE(none.keepsWork());
    EXPECT_FALSE(none.size("a").isValid());
    none.setSize("a", {400, 400});
  }
  EXPECT_EQ(content(), before);
}

TEST_F(RememberedFile, IsLimitedByTheEnvironment) {
  const auto extentOf = [&](const char* value) {
    const EnvironmentVariable wish("KORVEL_REMEMBER", value);
    rememberIn(path());
    const Remembered& remembered = control::libraryState().remembered;
    return std::pair(remembered.keepsLayout(), remembered.keepsWork());
  };
  EXPECT_EQ(extentOf(""), std::pair(true, true));
  EXPECT_EQ(extentOf("ALL "), std::pair(true, true));
  EXPECT_EQ(extentOf("layout"), std::pair(true, false));
  for (const char* less : {"nothing", "0", "no", "windows"}) EXPECT_EQ(extentOf(less), std::pair(false, false)) << less;
}

TEST_F(RememberedFile, GivesProgramsTheRecentDatabases) {
  const EnvironmentVariable unset("KORVEL_REMEMBER");
  rememberIn(path());
  EXPECT_TRUE(recentDatabases().isEmpty());
  store().addDatabase({"PLANT1", "Korvel_Audit"});
  EXPECT_EQ(recentDatabases(), (QList<RecentDatabase>{{"PLANT1", "Korvel_Audit"}}));
}

}  // namespace
}  // namespace korvel::test
