// Fonts and folders where the toolkit asks for them.
#include <gtest/gtest.h>

#include <QDialog>
#include <QFileDialog>
#include <QFontDialog>

#include "control/qt_control_services.h"
#include "tests/control/when_modal.h"
#include "tests/support/temporary_folder.h"

namespace korvel::control {
namespace {

TEST(SystemDialogs, ACancelledFontIsNone) {
  QtControlServices services;
  const WhenModal cancel([](QWidget* dialog) { qobject_cast<QDialog*>(dialog)->reject(); });
  EXPECT_EQ(services.chooseFont(nullptr, QFont()), std::nullopt);
}

TEST(SystemDialogs, AnAcceptedFontIsTheDialogs) {
  QtControlServices services;
  const WhenModal choose([](QWidget* dialog) {
    qobject_cast<QFontDialog*>(dialog)->setCurrentFont(QFont("DejaVu Sans Mono", 17));
    qobject_cast<QDialog*>(dialog)->accept();
  });
  const auto font = services.chooseFont(nullptr, QFont());
  ASSERT_TRUE(font.has_value());
  EXPECT_EQ(font->pointSize(), 17);
}

TEST(SystemDialogs, AFolderIsChosenAsItIsNamed) {
  QtControlServices services;
  const test::TemporaryFolder folder;
  const QString path = QString::fromStdString(folder.path().string());
  bool dirsOnly = false;
  QString title;
  const WhenModal choose([&](QWidget* dialog) {
    auto* files = qobject_cast<QFileDialog*>(dialog);
    ASSERT_NE(files, nullptr);
    dirsOnly = files->testOption(QFileDialog::ShowDirsOnly);
    title = files->windowTitle();
    files->setDirectory(path);
    QMetaObject::invokeMethod(files, "accept");
  });
  EXPECT_EQ(services.chooseFolder(nullptr, "Browse", false), path);
  EXPECT_EQ(title, "Browse");
  EXPECT_TRUE(dirsOnly);
}

TEST(SystemDialogs, FilesAreShownWhereTheyAreAskedForAndACancelledFolderIsNone) {
  QtControlServices services;
  bool dirsOnly = true;
  const WhenModal cancel([&](QWidget* dialog) {
    dirsOnly = qobject_cast<QFileDialog*>(dialog)->testOption(QFileDialog::ShowDirsOnly);
    qobject_cast<QDialog*>(dialog)->reject();
  });
  EXPECT_EQ(services.chooseFolder(nullptr, "Browse", true), std::nullopt);
  EXPECT_FALSE(dirsOnly);
}

TEST(SystemDialogs, TheDeathOfItsOwnerCancelsAFolder) {
  QtControlServices services;
  auto* owner = new QWidget;
  const WhenModal answer([&](QWidget*) { delete owner; });
  EXPECT_EQ(services.chooseFolder(owner, "t", false), std::nullopt);
}

}  // namespace
}  // namespace korvel::control
