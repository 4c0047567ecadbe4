#include "query/forms/file_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <type_traits>

#include "tests/control/recorder.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class FileList : public ::testing::Test {
 protected:
  FileList() { choices.folder = folder.path().string() + "/"; }
  query::frmFileList& form() {
    if (!form_) {
      form_ = std::make_unique<query::frmFileList>(query::QueryDialogContext{choices, language, recorder}, nullptr);
      form_->show();
    }
    return *form_;
  }
  void file(const std::string& name) { std::ofstream(folder.path() / name) << "x"; }
  QListWidget& list() { return *form().findChild<QListWidget*>("List1"); }
  QStringList names() {
    QStringList texts;
    for (int i = 0; i < list().count(); ++i) texts.append(list().item(i)->text());
    // The order of the folder's entries is the system's.
    texts.sort();
    return texts;
  }
  void press(const char* button) { QTest::mouseClick(form().findChild<QPushButton*>(button), Qt::LeftButton); }
  QPoint place(const QString& name) {
    return list().visualItemRect(list().findItems(name, Qt::MatchExactly).value(0)).center();
  }
  void click(const QString& name) { QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, place(name)); }

  TemporaryFolder folder;
  query::QueryChoices choices;
  settings::LanguageOffset language;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::unique_ptr<query::frmFileList> form_;
};

TEST_F(FileList, CaptionsAreFixedEnglishInEveryLanguage) {
  language = settings::LanguageOffset("20000");
  EXPECT_EQ(form().windowTitle(), "Custom Query File List");
  EXPECT_EQ(form().findChild<QPushButton*>("btOK")->text(), "OK");
  EXPECT_EQ(form().findChild<QPushButton*>("btCancel")->text(), "Cancel");
}

TEST_F(FileList, QueryFilesOfTheFolderAndNothingElse) {
  for (const char* name : {"a.vqf", "B.VQF", "c.txt", "d.vqf.bak", "vqf"}) file(name);
  std::filesystem::create_directory(folder.path() / "folder.vqf");
  EXPECT_EQ(names(), (QStringList{"B.VQF", "a.vqf"}));
}

TEST_F(FileList, OkChoosesTheSelectedFile) {
  file("a.vqf");
  file("b.vqf");
  click("b.vqf");
  press("btOK");
  EXPECT_EQ(choices.fileName, "b.vqf");
  EXPECT_FALSE(form().isVisible());
}

TEST_F(FileList, OkWithoutASelectionDoesNothing) {
  file("a.vqf");
  choices.fileName = "before.vqf";
  press("btOK");
  EXPECT_TRUE(form().isVisible());
  EXPECT_EQ(choices.fileName, "before.vqf");
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(FileList, ASingleFileIsChosenByAnArrowKeyAndDoesNotLookChosenBefore) {
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up}) {
    form_.reset();
    choices.fileName.clear();
    file("a.vqf");
    QApplication::setActiveWindow(&form());
    list().setFocus();
    ASSERT_TRUE(list().hasFocus());
    EXPECT_EQ(list().currentRow(), -1);
    QTest::keyClick(&list(), key);
    EXPECT_THAT(list().selectedItems(), SizeIs(1));
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_EQ(choices.fileName, "a.vqf");
    EXPECT_FALSE(form().isVisible());
  }
}

TEST_F(FileList, ArrowKeysGoOnFromWhatIsSelected) {
  for (const char* name : {"a.vqf", "b.vqf", "c.vqf"}) file(name);
  QApplication::setActiveWindow(&form());
  list().setFocus();
  QTest::keyClick(&list(), Qt::Key_Down);
  EXPECT_EQ(list().row(list().selectedItems().value(0)), 0);
  // Another window in between changes nothing.
  QApplication::setActiveWindow(nullptr);
  QApplication::setActiveWindow(&form());
  QTest::keyClick(&list(), Qt::Key_Down);
  EXPECT_EQ(list().row(list().selectedItems().value(0)), 1);
}

TEST_F(FileList, ADoubleClickAndEnterAreOk) {
  file("a.vqf");
  click("a.vqf");
  QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, place("a.vqf"));
  EXPECT_EQ(choices.fileName, "a.vqf");
  EXPECT_FALSE(form().isVisible());
  form_.reset();
  choices.fileName.clear();
  list().setFocus();
  QTest::keyClick(&list(), Qt::Key_Down);
  list().setCurrentRow(0);
  QTest::keyClick(&list(), Qt::Key_Return);
  EXPECT_EQ(choices.fileName, "a.vqf");
}

TEST_F(FileList, EveryWayOutButOkChoosesNothing) {
  file("a.vqf");
  const std::function<void()> ways[] = {
      [this] { press("btCancel"); }, [this] { QTest::keyClick(&form(), Qt::Key_Escape); }, [this] { form().close(); }};
  for (const auto& leave : ways) {
    form_.reset();
    choices.fileName = "before.vqf";
    click("a.vqf");
    leave();
    EXPECT_FALSE(form().isVisible());
    EXPECT_EQ(choices.fileName, "");
  }
}

TEST_F(FileList, ANameThatIsNoTextStillOpensItsFile) {
  if (!std::is_same_v<std::filesystem::path::value_type, char>) GTEST_SKIP() << "every name is a text here";
  file("caf\xE9.vqf");
  ASSERT_EQ(list().count(), 1);
  list().setCurrentRow(0);
  press("btOK");
  EXPECT_EQ(choices.fileName, "caf\xE9.vqf");
}

TEST_F(FileList, AFolderThatCannotBeReadIsReported) {
  choices.folder = folder.path().string() + "/missing/";
  form();
  QCoreApplication::processEvents();
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_EQ(recorder->messages[0].icon, ui::MessageIcon::critical);
  EXPECT_EQ(recorder->messages[0].title, "");
  EXPECT_TRUE(recorder->messages[0].text.contains(":Error in frmFileList.  Error Message: "));
  EXPECT_TRUE(recorder->messages[0].text.contains("missing"));
  EXPECT_EQ(list().count(), 0);
  press("btOK");
  EXPECT_TRUE(form().isVisible());
}

}  // namespace
}  // namespace korvel::test
