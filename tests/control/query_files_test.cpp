#include <QDir>
#include <filesystem>

#include "tests/control/query_files_fixture.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ui::MessageIcon;

TEST_F(QueryFiles, ThePathEndsWithASeparatorAlsoBehindARoot) {
  const auto viewer = newViewer();
  recorder->chosenFolder = "/some/where";
  EXPECT_EQ(viewer->GetExportPath("Title", 0), QDir::toNativeSeparators("/some/where/"));
  recorder->chosenFolder = "/";
  EXPECT_EQ(viewer->GetExportPath("Title", 1), QDir::toNativeSeparators("//"));
  recorder->chosenFolder.reset();
  EXPECT_EQ(viewer->GetExportPath("Other", -1), "");
  EXPECT_EQ(recorder->folderQuestions,
            (QList<std::pair<QString, bool>>{{"Title", false}, {"Title", true}, {"Other", false}}));
}

TEST_F(QueryFiles, ThePathByName) {
  const auto viewer = newViewer();
  QString path;
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "GetExportPath", Q_RETURN_ARG(QString, path),
                                        Q_ARG(QString, "Title"), Q_ARG(int, 0)));
  EXPECT_EQ(path, QDir::toNativeSeparators(*recorder->chosenFolder + "/"));
}

TEST_F(QueryFiles, SavingAsksForFolderAndName) {
  const auto viewer = customPage();
  editor(*viewer).setQueryText("select 1\nfrom \u00E9");
  click(*viewer, "btSave");
  EXPECT_EQ(recorder->folderQuestions, (QList<std::pair<QString, bool>>{{"Browse for Custom Query Path", false}}));
  EXPECT_EQ(recorder->inputQuestions, (QList<std::pair<QString, QString>>{{"Enter Query Name?", "Name"}}));
  EXPECT_EQ(saved(), "select 1\r\nfrom \xE9\r\n");
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_THAT(recorder->questions, IsEmpty());
}

TEST_F(QueryFiles, AnEmptyNameAndACancelledFolderWriteNothing) {
  const auto viewer = customPage();
  recorder->typedText.clear();
  click(*viewer, "btSave");
  EXPECT_TRUE(folderIsEmpty());
  recorder->chosenFolder.reset();
  click(*viewer, "btSave");
  EXPECT_THAT(recorder->inputQuestions, SizeIs(1));
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(QueryFiles, AnEarlierFileIsReplacedWithoutAQuestion) {
  const auto viewer = customPage();
  writeFileAtomically(folder / "My query.vqf", "old and longer than the new one");
  editor(*viewer).setQueryText("new");
  click(*viewer, "btSave");
  EXPECT_EQ(saved(), "new\r\n");
  EXPECT_THAT(recorder->questions, IsEmpty());
}

TEST_F(QueryFiles, CharactersThatAFileCannotHoldAreAskedFor) {
  const auto viewer = customPage();
  editor(*viewer).setQueryText(QString::fromUtf8("'\u4E2D'"));
  click(*viewer, "btSave");
  ASSERT_THAT(recorder->questions, SizeIs(1));
  EXPECT_EQ(recorder->questions[0].first, "KorvelAudit Viewer Message");
  EXPECT_TRUE(recorder->questions[0].second.contains("\"?\""));
  EXPECT_TRUE(folderIsEmpty());
  recorder->confirmed = true;
  click(*viewer, "btSave");
  EXPECT_EQ(saved(), "'?'\r\n");
}

TEST_F(QueryFiles, NamesThatCannotBeAreRefusedWithTheReason) {
  const auto viewer = customPage();
  for (const char* name : {"a/b", "a?", "con"}) {
    recorder->typedText = name;
    recorder->messages.clear();
    click(*viewer, "btSave");
    ASSERT_THAT(recorder->messages, SizeIs(1)) << name;
    EXPECT_EQ(recorder->messages[0].icon, MessageIcon::information);
    EXPECT_EQ(recorder->messages[0].title, "KorvelAudit Viewer Message");
    EXPECT_TRUE(recorder->messages[0].text.contains(QString('"') + name + '"')) << name;
  }
  EXPECT_TRUE(folderIsEmpty());
}

TEST_F(QueryFiles, AFileThatCannotBeWrittenIsReported) {
  const auto viewer = customPage();
  recorder->chosenFolder = QString::fromStdString((folder / "missing").string());
  click(*viewer, "btSave");
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_EQ(recorder->messages[0].icon, MessageIcon::critical);
  EXPECT_TRUE(recorder->messages[0].text.contains(":Error in btSave_Click.  Error Message: "));
  EXPECT_TRUE(recorder->messages[0].text.contains("missing"));
}

TEST_F(QueryFiles, OpeningReadsTheChosenFileOfTheChosenFolder) {
  const auto viewer = customPage();
  writeFileAtomically(folder / "one.vqf", "select 1\r\n\r\nfrom \xE9");
  choose("one.vqf");
  click(*viewer, "btOpen");
  EXPECT_EQ(recorder->folderQuestions, (QList<std::pair<QString, bool>>{{"Browse for Custom Query File", false}}));
  EXPECT_EQ(QDir::fromNativeSeparators(QString::fromStdString(libraryState().queryChoices.folder)),
            QDir::fromNativeSeparators(QString::fromStdString(utf8FromPath(folder.path()))) + "/");
  EXPECT_EQ(recorder->shownForms, QStringList("frmFileList"));
  EXPECT_EQ(editor(*viewer).queryText(), QString::fromUtf8("select 1\r\n\r\nfrom \u00E9\r\n"));
  EXPECT_EQ(editor(*viewer).document()->blockCount(), 4);
  // Loading runs nothing, and can be undone.
  EXPECT_THAT(server.commands, IsEmpty());
  editor(*viewer).undo();
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails");
}

TEST_F(QueryFiles, ATextGainsALineEndOnEveryRoundTrip) {
  const auto viewer = customPage();
  choose("My query.vqf");
  editor(*viewer).setQueryText("select 1");
  click(*viewer, "btSave");
  click(*viewer, "btOpen");
  EXPECT_EQ(editor(*viewer).queryText(), "select 1\r\n");
  click(*viewer, "btSave");
  EXPECT_EQ(saved(), "select 1\r\n\r\n");
  click(*viewer, "btOpen");
  EXPECT_EQ(editor(*viewer).queryText(), "select 1\r\n\r\n");
}

TEST_F(QueryFiles, CancellingLeavesTheTextAsItWas) {
  const auto viewer = customPage();
  editor(*viewer).setQueryText("mine");
  libraryState().queryChoices.fileName = "an earlier one.vqf";
  click(*viewer, "btOpen");
  EXPECT_EQ(editor(*viewer).queryText(), "mine");
  recorder->chosenFolder.reset();
  click(*viewer, "btOpen");
  EXPECT_THAT(recorder->shownForms, SizeIs(1));
  EXPECT_EQ(editor(*viewer).queryText(), "mine");
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(QueryFiles, AFileThatCannotBeReadLeavesTheTextAsItWas) {
  const auto viewer = customPage();
  editor(*viewer).setQueryText("mine");
  choose("missing.vqf");
  click(*viewer, "btOpen");
  EXPECT_EQ(editor(*viewer).queryText(), "mine");
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_EQ(recorder->messages[0].icon, MessageIcon::critical);
  EXPECT_TRUE(recorder->messages[0].text.contains(":Error in btOpen_Click.  Error Message: "));
  EXPECT_TRUE(recorder->messages[0].text.contains("missing.vqf"));
}

TEST_F(QueryFiles, AViewerMayDieInAnyOfTheDialogs) {
  for (const char* button : {"btSave", "btOpen"}) {
    auto viewer = customPage();
    recorder->onFolder = [&] { viewer.reset(); };
    viewer->findChild<QAbstractButton*>(button)->click();
    EXPECT_EQ(viewer, nullptr) << button;
  }
  recorder->onFolder = {};
  auto viewer = customPage();
  recorder->onForm = [&] {
    libraryState().queryChoices.fileName = "x.vqf";
    viewer.reset();
  };
  viewer->findChild<QAbstractButton*>("btOpen")->click();
  EXPECT_EQ(viewer, nullptr);
  EXPECT_TRUE(folderIsEmpty());
}

}  // namespace
}  // namespace korvel::test
