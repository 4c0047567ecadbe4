#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QImage>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>

#include "base/whole_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {
namespace {

/// The program as a person starts it, without a display.
class Program : public ::testing::Test {
 protected:
  struct Result {
    int status;
    QString output;
    QString errors;
  };

  Result run(const QStringList& arguments, const QMap<QString, QString>& variables = {}) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR"})
      environment.remove(name);
    environment.insert("KORVEL_REGISTRY", path("settings.reg"));
    environment.insert("XDG_CONFIG_HOME", path("config"));
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
      environment.insert(variable.key(), variable.value());
    process.setProcessEnvironment(environment);
    process.start(KORVEL_HOST, arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
  }
  QString path(const char* name) const { return QString::fromStdString((folder / name).string()); }

  void writeDatabase(int rows) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open((folder / "Korvel_Audit.db").c_str(), &database), SQLITE_OK);
    std::string text =
        "create table Korvel_Audit_Trails (Nr integer, DateTime, ProjectGUID, DatabaseName, ApplicationName, "
        "TableName, "
        "FieldName, EventType, EventItem, OldValue, NewValue, PCName, OSUser, AppUser, UserName, AuditType, Comments, "
        "T1);";
    for (int i = 1; i <= rows; ++i)
      text += "insert into Korvel_Audit_Trails (Nr, AuditType) values (" + std::to_string(i) + ", 'CS');";
    EXPECT_EQ(sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
  }
  QStringList shot(const QStringList& more = {}) const {
    return QStringList{"--shot", path("shot.png"), "--server", QString::fromStdString(folder.path().string())} + more;
  }

  test::TemporaryFolder folder;
};

/// Below the headers of a picture, the part of the first column that no line of the grid crosses.
const QRect firstColumn(265, 145, 60, 285);

/// How many lines of text stand below each other in the part of a picture: stretches of pixel rows that are not of one
/// colour.
int linesOfText(const QImage& picture, const QRect& part) {
  int lines = 0;
  bool inLine = false;
  for (int y = part.top(); y <= part.bottom(); ++y) {
    bool ink = false;
    for (int x = part.left(); x <= part.right() && !ink; ++x)
      ink = picture.pixel(x, y) != picture.pixel(part.topLeft().x(), y);
    if (ink && !inLine) ++lines;
    inLine = ink;
  }
  return lines;
}

TEST_F(Program, HelpAndVersionNeedNoDisplay) {
  const Result help = run({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.output.startsWith("Usage: KorvelAuditViewer [options]"));
  const Result version = run({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(version.output.startsWith("Korvel Audit Viewer 1."));
}

TEST_F(Program, WithoutADisplayItSaysSo) {
  const Result result = run({});
  EXPECT_EQ(result.status, 2);
  EXPECT_TRUE(result.errors.contains("There is no display")) << result.errors.toStdString();
}

TEST_F(Program, WrongUsageIsSaidWithTheHelp) {
  const Result result = run(shot({"--colour", "red"}));
  EXPECT_EQ(result.status, 2);
  EXPECT_TRUE(result.errors.contains("The command line is not understood: --colour"));
  EXPECT_TRUE(result.errors.contains("--server NAME"));
}

TEST_F(Program, AShotIsThePictureOfTheAnswer) {
  writeDatabase(40);
  const Result result = run(shot({"--size", "900x500"}));
  EXPECT_EQ(result.status, 0) << result.errors.toStdString();
  const QImage picture(path("shot.png"), "PNG");
  ASSERT_EQ(picture.size(), QSize(900, 500));
  EXPECT_GE(linesOfText(picture, firstColumn), 8);
  EXPECT_FALSE(std::filesystem::exists(folder / "config" / "korvel" / "viewer-form.json"));
}

TEST_F(Program, AShotWithoutRecordsIsTakenAndSaysSo) {
  writeDatabase(0);
  const Result result = run(shot());
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.errors.contains("No records found for filter criteria"));
  const QImage picture(path("shot.png"), "PNG");
  ASSERT_FALSE(picture.isNull());
  EXPECT_EQ(linesOfText(picture, firstColumn), 0);
}

TEST_F(Program, AShotNeedsNoDisplayThatAnswers) {
  writeDatabase(1);
  const Result result = run(shot(), {{"DISPLAY", ":77"}});
  EXPECT_EQ(result.status, 0) << result.errors.toStdString();
}

TEST_F(Program, APlatformIsAskedForWithOneDashOrTwo) {
  writeDatabase(1);
  for (const char* option : {"-platform", "--platform"}) {
    const Result result = run(shot({option, "minimal"}));
    EXPECT_EQ(result.status, 0) << option << ' ' << result.errors.toStdString();
  }
}

TEST_F(Program, SettingsThatCannotBeReadAreNoEmptyAnswer) {
  writeDatabase(1);
  writeWholeFile(folder / "settings.reg", "no settings at all");
  const Result result = run(shot());
  EXPECT_EQ(result.status, 3);
  EXPECT_TRUE(result.errors.contains(":Error in Initialize.  Error Message: ")) << result.errors.toStdString();
  EXPECT_FALSE(result.errors.contains("No search criteria selected")) << result.errors.toStdString();
  EXPECT_FALSE(std::filesystem::exists(folder / "shot.png"));
}

TEST_F(Program, AFailedQueryHasAReasonAndNoPicture) {
  const Result result = run(shot());
  EXPECT_EQ(result.status, 3);
  EXPECT_TRUE(result.errors.contains("The query failed. ")) << result.errors.toStdString();
  EXPECT_FALSE(std::filesystem::exists(folder / "shot.png"));
}

TEST_F(Program, APictureThatCannotBeWrittenHasAReason) {
  writeDatabase(1);
  const Result result =
      run({"--shot", path("no/such/folder/shot.png"), "--server", QString::fromStdString(folder.path().string())});
  EXPECT_EQ(result.status, 4);
  EXPECT_TRUE(result.errors.contains("cannot be written")) << result.errors.toStdString();
}

}  // namespace
}  // namespace korvel::host
