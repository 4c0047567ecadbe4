#include "ui/icons/application_icon.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QImage>
#include <QPixmap>
#include <QtEndian>
#include <algorithm>
#include <cstdlib>

namespace korvel::ui {
namespace {

constexpr qsizetype headerBytes = 6;
constexpr qsizetype entryBytes = 16;

template <typename Number>
Number numberAt(const QByteArray& bytes, qsizetype place) {
  return qFromLittleEndian<Number>(bytes.constData() + place);
}

/// The picture at a place in the file's list, read by hand: a bitmap from the bottom up, or a PNG.
QImage pictureAt(const QByteArray& file, int index) {
  const qsizetype entry = headerBytes + index * entryBytes;
  const QByteArray bytes = file.mid(numberAt<qint32>(file, entry + 12), numberAt<qint32>(file, entry + 8));
  if (bytes.startsWith("\x89PNG")) return QImage::fromData(bytes, "PNG").convertToFormat(QImage::Format_ARGB32);
  const int side = numberAt<qint32>(bytes, 4);
  EXPECT_EQ(numberAt<qint32>(bytes, 8), 2 * side);
  QImage picture(side, side, QImage::Format_ARGB32);
  qsizetype place = numberAt<qint32>(bytes, 0);
  for (int y = side - 1; y >= 0; --y)
    for (int x = 0; x < side; ++x, place += 4) picture.setPixel(x, y, numberAt<quint32>(bytes, place));
  const int maskRow = (side + 31) / 32 * 4;
  EXPECT_EQ(bytes.size(), place + maskRow * side);
  return picture;
}

QByteArray committedMark() {
  QFile file(QStringLiteral(KORVEL_SOURCE_DIR "/ui/icons/application.ico"));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  return file.readAll();
}

TEST(ApplicationIcon, FileIsAsTheSignIsDrawn) {
  const QByteArray committed = committedMark();
  ASSERT_EQ(numberAt<quint16>(committed, 4), applicationIconSides.size());
  for (std::size_t i = 0; i < applicationIconSides.size(); ++i) {
    const int side = applicationIconSides.at(i);
    // 256 is written as 0.
    EXPECT_EQ(static_cast<quint8>(committed.at(headerBytes + static_cast<qsizetype>(i) * entryBytes)), side % 256);
    const QImage theirs = pictureAt(committed, static_cast<int>(i));
    const QImage ours =
        applicationIcon().pixmap(QSize(side, side), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(theirs.size(), ours.size());
    int largest = 0;
    for (int y = 0; y < side; ++y)
      for (int x = 0; x < side; ++x)
        for (const int shift : {0, 8, 16, 24}) {
          const auto channel = [&](const QImage& image) { return static_cast<int>(image.pixel(x, y) >> shift & 0xff); };
          largest = std::max(largest, std::abs(channel(theirs) - channel(ours)));
        }
    EXPECT_LE(largest, 2) << side << ": write the file anew with scripts/application-icon";
  }
}

}  // namespace
}  // namespace korvel::ui
