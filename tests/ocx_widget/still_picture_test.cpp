// A picture of a control that is not shown.
#include "ocx/qt/still_picture.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

#include "korvel/AuditViewer.h"

namespace korvel::ocx {
namespace {

/// The lines and columns of a widget of two halves: red above, blue below.
class Halves final : public QWidget {
 public:
  Halves() {
    auto* const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    for (const char* style : {"background: #ff0000", "background: #0000ff"}) {
      auto* const half = new QLabel(this);
      half->setStyleSheet(QString::fromLatin1(style));
      rows->addWidget(half, 1);
    }
  }
};

TEST(StillPicture, FillsTheWholePictureWithoutShowing) {
  Halves widget;
  QImage picture(60, 40, QImage::Format_RGB32);
  paintStill(widget, picture);
  EXPECT_FALSE(widget.isVisible());
  for (const int x : {0, 59}) {
    EXPECT_EQ(picture.pixelColor(x, 0), QColor(Qt::red));
    EXPECT_EQ(picture.pixelColor(x, 19), QColor(Qt::red));
    EXPECT_EQ(picture.pixelColor(x, 20), QColor(Qt::blue));
    EXPECT_EQ(picture.pixelColor(x, 39), QColor(Qt::blue));
  }
}

TEST(StillPicture, AShownWidgetKeepsItsSizeAndIsScaled) {
  Halves widget;
  widget.resize(120, 80);
  widget.show();
  QImage picture(240, 160, QImage::Format_RGB32);
  paintStill(widget, picture);
  EXPECT_EQ(widget.size(), QSize(120, 80));
  EXPECT_EQ(picture.pixelColor(238, 1), QColor(Qt::red));
  EXPECT_EQ(picture.pixelColor(238, 158), QColor(Qt::blue));
}

TEST(StillPicture, TheControlOpensNoDatabaseForIt) {
  AuditViewer viewer;
  int selected = 0;
  QObject::connect(&viewer, &AuditViewer::DatabaseSelected, [&] { ++selected; });
  viewer.setDefaultSQLServer(QStringLiteral("(embedded)"));
  QImage picture(800, 500, QImage::Format_RGB32);
  paintStill(viewer, picture);
  EXPECT_EQ(selected, 0);
  EXPECT_FALSE(viewer.isVisible());
  // It is not empty: the control's elements have several colours.
  QSet<QRgb> colours;
  for (int y = 0; y < picture.height(); y += 5)
    for (int x = 0; x < picture.width(); x += 5) colours.insert(picture.pixel(x, y));
  EXPECT_GT(colours.size(), 10);
}

}  // namespace
}  // namespace korvel::ocx
