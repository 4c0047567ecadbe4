#include "host/main_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>

#include "base/whole_file.h"
#include "host/shot.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {
namespace {

const settings::LanguageOffset english;

class MainWindowTest : public ::testing::Test {
 protected:
  MainWindowTest() { options.formFile = QString::fromStdString((folder / "form.json").string()); }
  void writeForm(const std::string& text) { writeWholeFile(folder / "form.json", text); }
  std::string formText() { return readWholeFile(folder / "form.json"); }

  test::TemporaryFolder folder;
  test::EnvironmentVariable registry{"KORVEL_REGISTRY", (folder / "settings.reg").string()};
  Options options;
};

TEST_F(MainWindowTest, TheTitleSaysWhichDatabaseIsSelected) {
  options.server = "AUDITSRV";
  MainWindow window(options, english);
  EXPECT_EQ(window.windowTitle(), "Korvel Audit Viewer");
  window.show();
  EXPECT_EQ(window.windowTitle(), "AUDITSRV - [Korvel_Audit] - Korvel Audit Viewer");
}

TEST_F(MainWindowTest, ExitClosesTheWindow) {
  MainWindow window(options, english);
  window.show();
  Q_EMIT window.viewer().ExitApp();
  EXPECT_FALSE(window.isVisible());
}

TEST_F(MainWindowTest, TheFourPropertiesPersist) {
  {
    MainWindow window(options, english);
    window.show();
    window.viewer().setViewSideTools(false);
    window.viewer().setViewToolBar(false);
    window.viewer().setDefaultSQLServer("S");
    window.viewer().setDatabaseType(1);
    window.close();
  }
  MainWindow window(options, english);
  EXPECT_FALSE(window.viewer().ViewSideTools());
  EXPECT_FALSE(window.viewer().ViewToolBar());
  EXPECT_EQ(window.viewer().DefaultSQLServer(), "S");
  EXPECT_EQ(window.viewer().DatabaseType(), 1);
}

TEST_F(MainWindowTest, OptionsComeBeforeTheForm) {
  writeForm(R"({"DefaultSQLServer": "FORM", "DatabaseType": 1})");
  {
    MainWindow window(options, english);
    EXPECT_EQ(window.viewer().DefaultSQLServer(), "FORM");
  }
  options.server = "OPTION";
  options.databaseType = 0;
  MainWindow window(options, english);
  EXPECT_EQ(window.viewer().DefaultSQLServer(), "OPTION");
  EXPECT_EQ(window.viewer().DatabaseType(), 0);
}

TEST_F(MainWindowTest, AFormThatCannotBeUsedIsSaidAndKept) {
  for (const char* text : {"broken", R"({"DefaultSQLServer": "S", "DatabaseType": "many"})"}) {
    writeForm(text);
    const UnattendedMessages messages(qApp);
    MainWindow window(options, english);
    ASSERT_EQ(messages.texts().size(), 1) << text;
    EXPECT_TRUE(messages.texts()[0].startsWith("The form file " + *options.formFile + " cannot be read: "));
    EXPECT_TRUE(messages.texts()[0].endsWith("The file stays as it is."));
    EXPECT_EQ(window.viewer().DefaultSQLServer(), "(None)");
    window.show();
    window.viewer().setViewSideTools(false);
    window.close();
    EXPECT_EQ(formText(), text);
  }
}

TEST_F(MainWindowTest, AFormThatCannotBeWrittenIsSaid) {
  writeForm("{}");
  options.formFile = *options.formFile + "/below/a/file.json";
  MainWindow window(options, english);
  window.show();
  const UnattendedMessages messages(qApp);
  window.close();
  ASSERT_EQ(messages.texts().size(), 1);
  EXPECT_TRUE(messages.texts()[0].contains("cannot be written"));
  EXPECT_FALSE(window.isVisible());
}

TEST_F(MainWindowTest, AShotIsNobodysForm) {
  options.shotFile = "unused.png";
  MainWindow window(options, english);
  window.show();
  window.close();
  EXPECT_FALSE(std::filesystem::exists(folder / "form.json"));
}

}  // namespace
}  // namespace korvel::host
