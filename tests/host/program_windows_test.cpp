// The program as a Windows program: without a console, and drawing off screen.
#include <filesystem>

#include "tests/host/program_fixture.h"

namespace korvel::host {
namespace {

const QMap<QString, QString> nobodyLooks{{"QT_QPA_PLATFORM", "offscreen"}};

TEST_F(Program, HelpAndVersionGoWhereTheOutputIsLedTo) {
  const Result help = run({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.output.startsWith("Usage: KorvelAuditViewer [options]")) << help.output.toStdString();
  EXPECT_EQ(help.errors, "");
  const Result version = run({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(version.output.startsWith("Korvel Audit Viewer 1."));
}

TEST_F(Program, WrongUsageIsReportedInAnyScript) {
  const Result result = run({QStringLiteral("--\u010desky"), "x"}, nobodyLooks);
  EXPECT_EQ(result.status, 2);
  EXPECT_TRUE(result.errors.contains(QStringLiteral("The command line is not understood: --\u010desky")))
      << result.errors.toStdString();
}

TEST_F(Program, AShotIsThePictureOfTheAnswer) {
  writeDatabase(40);
  const Result result = run(shot({"--size", "900x500"}), nobodyLooks);
  EXPECT_EQ(result.status, 0) << result.errors.toStdString();
  const QImage picture(path("shot.png"), "PNG");
  ASSERT_EQ(picture.size(), QSize(900, 500));
  EXPECT_GE(linesOfText(picture, firstColumn), 8);
}

TEST_F(Program, AFailedQueryHasAReasonAndNoPicture) {
  const Result result = run(shot(), nobodyLooks);
  EXPECT_EQ(result.status, 3);
  EXPECT_TRUE(result.errors.contains("The query failed. ")) << result.errors.toStdString();
  EXPECT_FALSE(std::filesystem::exists(folder / "shot.png"));
}

}  // namespace
}  // namespace korvel::host
