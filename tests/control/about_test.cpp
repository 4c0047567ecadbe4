#include "control/forms/about.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "control/library_state.h"
#include "control/qt_control_services.h"
#include "ui/icons/application_icon.h"

namespace korvel::control {
namespace {

TEST(About, ShowsTheVersionInPlainNumbers) {
  EXPECT_EQ(aboutText({1, 2, 3}), "Korvel Audit Viewer - v1.2.3");
  EXPECT_EQ(aboutText({10, 0, 1234}), "Korvel Audit Viewer - v10.0.1234");
}

TEST(About, TheLibrarysVersionIsTheProjects) {
  const LibraryVersion version = libraryVersion();
  EXPECT_EQ(QStringLiteral("%1.%2.%3").arg(version.majorNumber).arg(version.minorNumber).arg(version.revision),
            QStringLiteral(KORVEL_VERSION));
}

TEST(About, HasAPictureAVersionAndAButton) {
  const frmAbout about({1, 2, 3}, nullptr);
  EXPECT_EQ(about.windowTitle(), "About velAudit Viewer");
  EXPECT_NE(about.findChild<ui::ApplicationIconPicture*>("Image1"), nullptr);
  EXPECT_EQ(about.findChild<QLabel*>("lblVersion")->text(), "Korvel Audit Viewer - v1.2.3");
  EXPECT_EQ(about.findChild<QPushButton*>("btOk")->text(), "OK");
}

TEST(About, IsNotTranslated) {
  libraryState().language = settings::LanguageOffset("10000");
  const frmAbout about({1, 2, 3}, nullptr);
  libraryState().language = settings::LanguageOffset();
  EXPECT_EQ(about.windowTitle(), "About velAudit Viewer");
  EXPECT_EQ(about.findChild<QLabel*>("lblVersion")->text(), "Korvel Audit Viewer - v1.2.3");
  EXPECT_EQ(about.findChild<QPushButton*>("btOk")->text(), "OK");
}

TEST(About, HasOneSize) {
  frmAbout about({1, 2, 3}, nullptr);
  about.show();
  const QSize size = about.size();
  about.resize(800, 600);
  EXPECT_EQ(about.size(), size);
  EXPECT_EQ(about.minimumSize(), about.maximumSize());
}

TEST(About, ThePictureShowsSomething) {
  frmAbout about({1, 2, 3}, nullptr);
  about.show();
  auto* picture = about.findChild<QWidget*>("Image1");
  const QImage image = picture->grab().toImage();
  // The tile, the drawing on it, and the window's background in the corner.
  const QRgb ground = image.pixel(0, 0);
  const QRgb tile = image.pixel(image.width() / 2, 3);
  EXPECT_NE(tile, ground);
  int drawn = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) drawn += image.pixel(x, y) == qRgb(255, 255, 255) ? 1 : 0;
  EXPECT_GT(drawn, 40);
}

TEST(About, TheButtonEnterAndEscCloseIt) {
  for (const auto& close :
       {std::function<void(frmAbout&)>([](frmAbout& about) { about.findChild<QPushButton*>("btOk")->click(); }),
        std::function<void(frmAbout&)>([](frmAbout& about) { QTest::keyClick(&about, Qt::Key_Return); }),
        std::function<void(frmAbout&)>([](frmAbout& about) { QTest::keyClick(&about, Qt::Key_Escape); })}) {
    frmAbout about({1, 2, 3}, nullptr);
    about.show();
    EXPECT_TRUE(about.isModal());
    close(about);
    EXPECT_FALSE(about.isVisible());
  }
}

TEST(About, TheServicesKnowIt) {
  EXPECT_TRUE(QtControlServices().hasForm("frmAbout"));
}

}  // namespace
}  // namespace korvel::control
