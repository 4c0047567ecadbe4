// The help file that the control selects, and the requests of the help commands.
#include <QAbstractButton>

#include "base/error.h"
#include "control/texts.h"
#include "control/viewer_help.h"
#include "tests/control/viewer_fixture.h"

namespace korvel::test {
namespace {

using control::HelpCommand;
using control::libraryState;
using Opened = QList<std::pair<QString, HelpCommand>>;

/// The help file for a viewer's path and a language, where "before" was chosen before.
QString helpFileFor(const QString& viewerPath, const std::string& offset) {
  QString file = QStringLiteral("before");
  control::chooseHelpFile(file, viewerPath, settings::LanguageOffset(offset));
  return file;
}

const QString viewerPath = QStringLiteral("C:\\Program\\KorvelAuditViewer.exe");

TEST(HelpFile, EveryLanguageHasItsOwnInTheViewersFolder) {
  EXPECT_EQ(helpFileFor(viewerPath, "0"), "C:\\Program\\KorvelAuditViewerHelp_Eng.chm");
  EXPECT_EQ(helpFileFor(viewerPath, "10000"), "C:\\Program\\KorvelAuditViewerHelp_Ger.chm");
  EXPECT_EQ(helpFileFor(viewerPath, "20000"), "C:\\Program\\KorvelAuditViewerHelp_Fre.chm");
  EXPECT_EQ(helpFileFor(viewerPath, "30000"), "C:\\Program\\KorvelAuditViewerHelp_Spa.chm");
  EXPECT_EQ(helpFileFor(viewerPath, "40000"), "C:\\Program\\KorvelAuditViewerHelp_Ita.chm");
}

TEST(HelpFile, AnyOtherOffsetLeavesItUnchanged) {
  for (const char* offset : {"", "00", "50000", " 0", "German"}) EXPECT_EQ(helpFileFor(viewerPath, offset), "before");
}

TEST(HelpFile, ThePathIsCutByLengthOnly) {
  EXPECT_EQ(helpFileFor("/opt/viewer/123456789012345678901", "0"), "/opt/viewer/KorvelAuditViewerHelp_Eng.chm");
  EXPECT_EQ(helpFileFor("/opt/korvel/bin/KorvelAuditViewer", "0"), "/opt/korvel/KorvelAuditViewerHelp_Eng.chm");
  // Characters, not bytes.
  EXPECT_EQ(helpFileFor("/opt/Größe/12345678901234567890ß", "0"), "/opt/Größe/KorvelAuditViewerHelp_Eng.chm");
}

TEST(HelpFile, NothingMayBeLeftOfThePath) {
  EXPECT_EQ(helpFileFor("KorvelAuditViewer.exe", "0"), "KorvelAuditViewerHelp_Eng.chm");
}

TEST(HelpFile, AShorterPathFailsAndLeavesItUnchanged) {
  for (const char* path : {"", "0", "orvelAuditViewer.exe"}) {
    QString file = QStringLiteral("before");
    EXPECT_THROW(control::chooseHelpFile(file, path, settings::LanguageOffset()), Error) << path;
    EXPECT_EQ(file, "before");
  }
}

class Help : public ViewerTest {
 protected:
  void speak(const char* offset) {
    settings.values["Language"] = offset;
    libraryState().language = settings::LanguageOffset(offset);
  }
};

TEST_F(Help, IsChosenWhenTheControlIsBuilt) {
  settings.values["ViewerAppPath"] = viewerPath.toStdString();
  const auto viewer = newViewer();
  EXPECT_EQ(libraryState().helpFile, "C:\\Program\\KorvelAuditViewerHelp_Eng.chm");
}

TEST_F(Help, FrenchLoadsItsTextsAndItsHelpFile) {
  settings.values["ViewerAppPath"] = viewerPath.toStdString();
  const auto viewer = newViewer();
  speak("20000");
  viewer->BuildMisc();
  EXPECT_EQ(control::loadText(10012), "&Outils");
  EXPECT_EQ(libraryState().helpFile, "C:\\Program\\KorvelAuditViewerHelp_Fre.chm");
}

TEST_F(Help, ItalianRepeatsTheFirstText) {
  speak("40000");
  EXPECT_EQ(control::loadText(10001), "File");
  EXPECT_EQ(control::loadText(10012), "S&trumenti");
}

TEST_F(Help, IsTheSameForAllInstances) {
  const auto first = newViewer();
  settings.values["ViewerAppPath"] = viewerPath.toStdString();
  const auto second = newViewer();
  first->HelpContents();
  EXPECT_EQ(recorder->helpOpened, (Opened{{"C:\\Program\\KorvelAuditViewerHelp_Eng.chm", HelpCommand::contents}}));
}

TEST_F(Help, ContentsAndSearchOpenTheFileOnDifferentPages) {
  settings.values["ViewerAppPath"] = viewerPath.toStdString();
  const auto viewer = newViewer();
  viewer->HelpContents();
  viewer->HelpSearch();
  const QString file = QStringLiteral("C:\\Program\\KorvelAuditViewerHelp_Eng.chm");
  EXPECT_EQ(recorder->helpOpened, (Opened{{file, HelpCommand::contents}, {file, HelpCommand::index}}));
  EXPECT_EQ(static_cast<int>(HelpCommand::contents), 1);
  EXPECT_EQ(static_cast<int>(HelpCommand::index), 2);
}

TEST_F(Help, WithoutAViewersPathTheEmptyPathIsAskedFor) {
  const auto viewer = newViewer();
  viewer->HelpContents();
  viewer->HelpSearch();
  EXPECT_EQ(recorder->helpOpened, (Opened{{"", HelpCommand::contents}, {"", HelpCommand::index}}));
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_F(Help, APathThatNoLongerExistsKeepsTheFile) {
  settings.values["ViewerAppPath"] = viewerPath.toStdString();
  const auto viewer = newViewer();
  settings.values.erase("ViewerAppPath");
  speak("10000");
  viewer->BuildMisc();
  EXPECT_EQ(libraryState().helpFile, "C:\\Program\\KorvelAuditViewerHelp_Eng.chm");
}

TEST_F(Help, SettingsThatCannotBeReadStopNoOtherStep) {
  settings.values["ViewerAppPath"] = viewerPath.toStdString();
  const auto viewer = newViewer();
  settings.openFailure = Win32Error::accessDenied;
  libraryState().language = settings::LanguageOffset("10000");
  viewer->BuildMisc();
  EXPECT_EQ(libraryState().helpFile, "C:\\Program\\KorvelAuditViewerHelp_Eng.chm");
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), control::loadText(10040));
  EXPECT_EQ(element(*viewer, "tvTreeView")->accessibleName(), control::loadText(10039));
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_F(Help, TheAboutBoxIsAForm) {
  const auto viewer = newViewer();
  viewer->ShowAbout();
  EXPECT_EQ(recorder->shownForms, QStringList{"frmAbout"});
}

}  // namespace
}  // namespace korvel::test
