// The dialogs for fonts and folders, where they are the toolkit's.
#include <gtest/gtest.h>

#include <QDialog>
#include <QFileDialog>
#include <QFontDialog>
#include <filesystem>
#include <functional>

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

TEST(SystemDialogs, AFontThatIsLeftAsItIsOfferedStays) {
  QtControlServices services;
  // Neither the name nor the size is one that the dialog has.
  QFont current("no such font");
  current.setPointSizeF(9.75);
  const WhenModal accept([](QWidget* dialog) { qobject_cast<QDialog*>(dialog)->accept(); });
  const auto font = services.chooseFont(nullptr, current);
  ASSERT_TRUE(font.has_value());
  EXPECT_EQ(font->family(), "no such font");
  EXPECT_EQ(font->pointSizeF(), 9.75);
}

TEST(SystemDialogs, OfAFontOnlyWhatIsChangedIsAnother) {
  QtControlServices services;
  QFont current("no such font");
  current.setPointSizeF(9.75);
  const auto changed = [&](const std::function<void(QFontDialog&, QFont)>& change) {
    const WhenModal choose([&](QWidget* dialog) {
      auto& fonts = *qobject_cast<QFontDialog*>(dialog);
      change(fonts, fonts.currentFont());
      fonts.accept();
    });
    return services.chooseFont(nullptr, current).value_or(QFont());
  };
  const QFont larger = changed([](QFontDialog& fonts, QFont font) {
    font.setPointSize(17);
    fonts.setCurrentFont(font);
  });
  EXPECT_EQ(larger.family(), "no such font");
  EXPECT_EQ(larger.pointSizeF(), 17);
  const QFont other = changed([](QFontDialog& fonts, QFont font) {
    font.setFamilies({"DejaVu Serif"});
    fonts.setCurrentFont(font);
  });
  EXPECT_EQ(other.family(), "DejaVu Serif");
  EXPECT_EQ(other.pointSizeF(), 9.75);
}

TEST(SystemDialogs, AFolderBeginsWhereTheLastOneEnded) {
  QtControlServices services;
  const test::TemporaryFolder folder;
  std::filesystem::create_directory(folder / "first");
  const QString first = QString::fromStdString((folder / "first").string());
  QString begun;
  const auto asked = [&](const std::function<void(QFileDialog&)>& answer) {
    const WhenModal choose([&](QWidget* dialog) {
      auto& files = *qobject_cast<QFileDialog*>(dialog);
      begun = files.directory().absolutePath();
      answer(files);
    });
    return services.chooseFolder(nullptr, "Browse", false);
  };
  const auto cancelElsewhere = [](QFileDialog& files) {
    files.setDirectory(QDir::rootPath());
    files.reject();
  };
  // The folder is clicked, not entered.
  EXPECT_EQ(asked([&](QFileDialog& files) {
              files.setDirectory(QString::fromStdString(folder.path().string()));
              files.selectFile(first);
              QMetaObject::invokeMethod(&files, "accept");
            }),
            first);
  EXPECT_NE(begun, first);
  EXPECT_EQ(asked(cancelElsewhere), std::nullopt);
  EXPECT_EQ(begun, first);
  EXPECT_EQ(asked(cancelElsewhere), std::nullopt);
  EXPECT_EQ(begun, first) << "a cancelled one was no end";
  std::filesystem::remove(folder / "first");
  asked(cancelElsewhere);
  EXPECT_TRUE(QFileInfo::exists(begun)) << begun.toStdString();
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
