// Help that the desktop opens: the arguments for the platform and the messages to the user.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QMessageBox>
#include <QTimer>
#include <QUrl>

#include "base/atomic_file.h"
#include "control/file_programs.h"
#include "control/qt_control_services.h"
#include "tests/support/opened_files.h"
#include "tests/support/temporary_folder.h"

namespace korvel::control {
namespace {

class HelpViewer : public ::testing::Test {
 protected:
  HelpViewer() {
    QObject::connect(&boxes_, &QTimer::timeout, [this] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      told.append(box->text());
      box->accept();
    });
    boxes_.start(0);
  }
  QString helpFile(const char* name) {
    writeFileAtomically(folder / name, "help");
    return QString::fromStdString((folder / name).string());
  }

  test::TemporaryFolder folder;
  QtControlServices services;
  QWidget owner;
  QStringList told;

 private:
  QTimer boxes_;
};

TEST_F(HelpViewer, AFileGoesToTheDesktopAsALocalAddress) {
  const test::OpenedFiles opened;
  const QString file = helpFile("-a help #1%41.chm");
  services.openHelp(&owner, file, HelpCommand::contents);
  services.openHelp(&owner, file, HelpCommand::index);
  EXPECT_EQ(opened.files(), (QStringList{file, file}));
  EXPECT_EQ(told, QStringList());
}

TEST_F(HelpViewer, ARelativePathIsMadeWhole) {
  const test::OpenedFiles opened;
  const QString file = helpFile("Help.chm");
  const QString before = QDir::currentPath();
  QDir::setCurrent(QString::fromStdString(folder.path().string()));
  services.openHelp(&owner, "Help.chm", HelpCommand::contents);
  QDir::setCurrent(before);
  EXPECT_EQ(opened.files(), QStringList{QFileInfo(file).canonicalFilePath()});
}

TEST_F(HelpViewer, AnEmptyPathShowsNothing) {
  const test::OpenedFiles opened;
  services.openHelp(&owner, QString(), HelpCommand::contents);
  services.openHelp(&owner, QString(), HelpCommand::index);
  EXPECT_EQ(opened.files(), QStringList());
  EXPECT_EQ(told, QStringList());
}

TEST_F(HelpViewer, AMissingFileIsReported) {
  const test::OpenedFiles opened;
  const QString missing = QString::fromStdString((folder / "Help_Eng.chm").string());
  services.openHelp(&owner, missing, HelpCommand::contents);
  // A folder is not a help file, and a web address is not a path.
  services.openHelp(&owner, QString::fromStdString(folder.path().string()), HelpCommand::contents);
  services.openHelp(&owner, "https://localhost/Help.chm", HelpCommand::contents);
  EXPECT_EQ(opened.files(), QStringList());
  ASSERT_EQ(told.size(), 3);
  EXPECT_EQ(told[0], "The help file " + missing + " was not found.");
}

TEST_F(HelpViewer, PagesBesideABookAreOpenedInstead) {
  const test::OpenedFiles opened;
  const QString file = helpFile("Help_Eng.chm");
  std::filesystem::create_directory(folder / "Help_Eng");
  const QString contents = helpFile("Help_Eng/index.html");
  const QString words = helpFile("Help_Eng/words.html");
  const QString query = helpFile("Help_Eng/query.html");
  services.openHelp(&owner, file, HelpCommand::contents);
  services.openHelp(&owner, file, HelpCommand::index);
  services.openHelpTopic(&owner, file, "query.html");
  services.openHelpTopic(&owner, file, "missing.html#name");
  EXPECT_EQ(opened.files(), (QStringList{contents, words, query, contents}));
  EXPECT_EQ(told, QStringList());
}

TEST_F(HelpViewer, ANameInAPageIsReachedOverAFileThatLeadsThere) {
  const test::OpenedFiles opened;
  // No book: pages alone are installed where no compiler for books was.
  const QString file = QString::fromStdString((folder / "Help & 'more'.chm").string());
  std::filesystem::create_directory(folder / "Help & 'more'");
  const QString query = helpFile("Help & 'more'/query.html");
  for (const char* name : {"dates", "run"}) {
    services.openHelpTopic(&owner, file, QStringLiteral("query.html#") + QLatin1String(name));
    ASSERT_FALSE(opened.files().isEmpty());
    QFile leading(opened.files().last());
    ASSERT_TRUE(leading.open(QIODevice::ReadOnly));
    EXPECT_EQ(leading.permissions() & (QFile::ReadOther | QFile::ReadGroup), QFile::Permissions());
    const QString text = QString::fromUtf8(leading.readAll());
    QUrl page = QUrl::fromLocalFile(query);
    page.setFragment(QLatin1String(name));
    const QString link = QString::fromUtf8(page.toEncoded()).replace("&", "&amp;").replace("'", "&#39;");
    EXPECT_TRUE(text.contains("content=\"0; url=" + link + '"')) << text.toStdString();
  }
  EXPECT_EQ(told, QStringList());
}

TEST_F(HelpViewer, ADesktopWithoutAProgramForItIsReported) {
  // The offscreen platform has no desktop.
  const QString file = helpFile("Help%1.chm");
  services.openHelp(&owner, file, HelpCommand::contents);
  EXPECT_EQ(told, QStringList{"There is no program that opens the help file " + file + "."});
}

}  // namespace
}  // namespace korvel::control
