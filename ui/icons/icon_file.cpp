#include "ui/icons/icon_file.h"

#include <QBuffer>
#include <QDataStream>
#include <QImage>
#include <QPixmap>
#include <vector>

namespace korvel::ui {
namespace {

constexpr int largestBitmap = 64;
constexpr quint32 headerBytes = 6;
constexpr quint32 entryBytes = 16;
constexpr quint32 bitmapHeaderBytes = 40;
constexpr quint16 bitsOfAPixel = 32;

QByteArray asBitmap(const QImage& picture) {
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream.setByteOrder(QDataStream::LittleEndian);
  // The height counts colours and mask; all that follows the depth is without meaning here.
  stream << bitmapHeaderBytes << qint32{picture.width()} << qint32{2 * picture.height()} << quint16{1} << bitsOfAPixel;
  for (int unused = 0; unused < 6; ++unused) stream << quint32{0};
  for (int y = picture.height() - 1; y >= 0; --y)
    for (int x = 0; x < picture.width(); ++x) stream << picture.pixel(x, y);
  // An empty mask, its rows filled up to 32 bits: how much is seen is with the colours.
  const int maskRow = (picture.width() + 31) / 32;
  for (int word = 0; word < maskRow * picture.height(); ++word) stream << quint32{0};
  return bytes;
}

QByteArray asPng(const QImage& picture) {
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  picture.save(&bytes, "PNG");
  return bytes.data();
}

}  // namespace

QByteArray iconFile(const QIcon& icon, std::span<const int> sides) {
  QByteArray file;
  QDataStream stream(&file, QIODevice::WriteOnly);
  stream.setByteOrder(QDataStream::LittleEndian);
  stream << quint16{0} << quint16{1} << static_cast<quint16>(sides.size());
  std::vector<QByteArray> pictures;
  auto offset = headerBytes + entryBytes * static_cast<quint32>(sides.size());
  for (const int side : sides) {
    const QImage picture = icon.pixmap(QSize(side, side), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
    pictures.push_back(side > largestBitmap ? asPng(picture) : asBitmap(picture));
    const auto size = static_cast<quint32>(pictures.back().size());
    // One byte a side: 256 is written as 0.
    const auto length = static_cast<quint8>(side);
    stream << length << length << quint8{0} << quint8{0} << quint16{1} << bitsOfAPixel << size << offset;
    offset += size;
  }
  for (const QByteArray& picture : pictures) stream.writeRawData(picture.constData(), static_cast<int>(picture.size()));
  return file;
}

}  // namespace korvel::ui
