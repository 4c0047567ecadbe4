// The dialogs as the viewer opens them: created by the real services, bound to the state of all viewers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCalendarWidget>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <fstream>

#include "control/library_state.h"
#include "control/qt_control_services.h"
#include "db/forms/server_browser.h"
#include "output/forms/print_font_form.h"
#include "query/forms/date_range_form.h"
#include "query/forms/field_picker.h"
#include "query/forms/file_list.h"
#include "tests/control/recorder.h"
#include "tests/control/when_modal.h"
#include "tests/forms/canned_directory.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

using control::libraryState;
using control::WhenModal;
using ::testing::ElementsAre;
using ui::MessageIcon;

class FormMakers : public ::testing::Test {
 protected:
  FormMakers() : realPlatform_(control::platform()) {
    control::platform().services = recorder;
    libraryState() = control::LibraryState();
    libraryState().language = settings::LanguageOffset("10000");
    owner.show();
  }
  ~FormMakers() override {
    control::platform() = realPlatform_;
    libraryState() = control::LibraryState();
  }

  /// Opens the form and hands it to `use` when it is modal. Whether it was a `Form` that belongs to its owner.
  template <typename Form>
  bool open(const char* name, const std::function<void(Form&)>& use) {
    bool right = false;
    const WhenModal answer([&](QWidget* dialog) {
      auto* form = qobject_cast<Form*>(dialog);
      right = form != nullptr && form->objectName() == QLatin1String(name) && form->parentWidget() == &owner;
      if (right) use(*form);
      dialog->close();
    });
    EXPECT_TRUE(services.hasForm(name));
    services.showForm(&owner, name);
    return right;
  }
  static void press(QWidget& form, const char* button) {
    QTest::mouseClick(form.findChild<QPushButton*>(button), Qt::LeftButton);
  }
  static void choose(QListWidget& list, const QString& text) {
    QListWidgetItem* const item = list.findItems(text, Qt::MatchExactly).value(0);
    ASSERT_NE(item, nullptr) << text.toStdString();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(item).center());
  }

  QWidget owner;
  control::QtControlServices services;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();

 private:
  control::Platform realPlatform_;
};

TEST_F(FormMakers, TheServerBrowserOpensAsItWasClosedAndOffersTheRecentDatabases) {
  const TemporaryFolder folder;
  libraryState().remembered = {QString::fromStdString((folder / "remembered.json").string()),
                               control::Remembered::Extent::all};
  libraryState().remembered.addDatabase({"PLANT1", "Korvel_Audit"});
  CannedNetwork network;
  control::platform().openDirectory = [&network] { return std::make_unique<CannedDirectory>(network); };
  QSize first;
  EXPECT_TRUE(open<db::frmSQLServerBrowser>("frmSQLServerBrowser", [&](db::frmSQLServerBrowser& form) {
    first = form.size();
    EXPECT_EQ(form.findChild<QPushButton*>("btRecent")->menu()->actions().first()->text(), "PLANT1 - [Korvel_Audit]");
  }));
  // Nothing was changed: the next one follows the font.
  EXPECT_FALSE(libraryState().remembered.size("frmSQLServerBrowser").isValid());
  EXPECT_EQ(libraryState().remembered.splitter("frmSQLServerBrowser"), std::nullopt);
  EXPECT_TRUE(open<db::frmSQLServerBrowser>("frmSQLServerBrowser", [&](db::frmSQLServerBrowser& form) {
    form.resize(first.width() - 40, first.height() - 30);
    form.SizeControls(Twips{3000});
  }));
  EXPECT_TRUE(open<db::frmSQLServerBrowser>("frmSQLServerBrowser", [&](db::frmSQLServerBrowser& form) {
    EXPECT_EQ(form.size(), QSize(first.width() - 40, first.height() - 30));
    EXPECT_EQ(form.splitter(), Twips{3000});
  }));
}

TEST_F(FormMakers, TheFieldPickerHandsItsQueryToTheViewers) {
  EXPECT_TRUE(open<query::frmFields>("frmFields", [](query::frmFields& form) {
    auto& fields = *form.findChild<QListWidget*>("ListView1");
    press(form, "Command1");
    choose(fields, "UserName");
    choose(fields, "DateTime");
    press(form, "Command1");
  }));
  EXPECT_EQ(libraryState().queryChoices.pickedQuery, "Select DateTime,UserName from Korvel_Audit_Trails");
  // Its message about an empty selection is shown by the viewer, in its language.
  EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::information, "KorvelAudit Viewer Message",
                                                           "Wählen Sie mindestens eine Spalte aus."}));
}

TEST_F(FormMakers, TheFileListShowsTheChosenFolderAndHandsTheFileOver) {
  const TemporaryFolder folder;
  for (const char* name : {"a.vqf", "b.vqf"}) std::ofstream(folder.path() / name) << "x";
  libraryState().queryChoices.folder = folder.path().string() + "/";
  EXPECT_TRUE(open<query::frmFileList>("frmFileList", [](query::frmFileList& form) {
    auto& names = *form.findChild<QListWidget*>("List1");
    EXPECT_EQ(names.count(), 2);
    choose(names, "b.vqf");
    press(form, "btOK");
  }));
  EXPECT_EQ(libraryState().queryChoices.fileName, "b.vqf");
}

TEST_F(FormMakers, TheDateRangeHasTheNewestDayOfTheViewerThatOpensIt) {
  using namespace std::chrono_literals;
  libraryState().newestDay = std::chrono::year_month_day{2004y / 3 / 7};
  EXPECT_TRUE(open<query::frmAdvancedFilters>("frmAdvancedFilters", [](query::frmAdvancedFilters& form) {
    EXPECT_EQ(form.findChild<QCalendarWidget*>("FromDate")->yearShown(), 2004);
    EXPECT_EQ(form.findChild<QCalendarWidget*>("FromDate")->monthShown(), 3);
  }));
}

TEST_F(FormMakers, PageSetupSetsThePrintFontOfTheViewers) {
  libraryState().printFont = {"Some Font", 7};
  QFont chosen("DejaVu Serif");
  chosen.setPointSizeF(11.25);
  EXPECT_TRUE(open<output::frmPrintFont>("frmPrintFont", [&](output::frmPrintFont& form) {
    recorder->chosenFont = chosen;
    press(form, "btChangeFont");
    EXPECT_EQ(form.findChild<QPushButton*>("btChangeFont")->text().toStdString(),
              settings::ownText("printFont.change", settings::LanguageOffset("10000")));
  }));
  EXPECT_EQ(recorder->offeredFont.family(), "Some Font");
  EXPECT_EQ(libraryState().printFont.name, "DejaVu Serif");
  EXPECT_EQ(libraryState().printFont.size, 11.25);
}

}  // namespace
}  // namespace korvel::test
