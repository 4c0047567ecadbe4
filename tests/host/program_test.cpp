#include "base/atomic_file.h"
#include "tests/host/program_fixture.h"

namespace korvel::host {
namespace {

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

TEST_F(Program, WrongUsageIsReportedWithTheHelp) {
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

TEST_F(Program, AQueryFileIsShownAndNotRun) {
  // No database: whatever were run would fail.
  writeFileAtomically(folder / "mine.vqf", "select 'mine'\r\n");
  const Result result = run(shot({path("mine.vqf")}));
  EXPECT_EQ(result.status, 0) << result.errors.toStdString();
  EXPECT_TRUE(QFile::exists(path("shot.png")));
}

TEST_F(Program, AQueryFileThatCannotBeReadIsNamedWithTheReason) {
  writeDatabase(1);
  const Result result = run(shot({path("missing.vqf")}));
  EXPECT_EQ(result.status, 3);
  EXPECT_TRUE(result.errors.contains(":Error in OpenQueryFile.  Error Message: ")) << result.errors.toStdString();
  EXPECT_FALSE(QFile::exists(path("shot.png")));
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
  writeFileAtomically(folder / "settings.reg", "no settings at all");
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
