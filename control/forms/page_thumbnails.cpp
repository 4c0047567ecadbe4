#include "control/forms/page_thumbnails.h"

#include <QPainter>
#include <QSize>
#include <exception>
#include <memory>

namespace korvel::control {
namespace {

constexpr qreal pointsPerInch = 72;
/// Size of the cache: the thumbnails of a screen or two.
constexpr int cachedThumbnails = 64;

/// A border, because white paper on a white background has no visible edge.
void frame(QImage& picture) {
  QPainter painter(&picture);
  painter.setPen(QColor(0, 0, 0, 72));
  painter.drawRect(picture.rect().adjusted(0, 0, -1, -1));
}

}  // namespace

PageThumbnails::PageThumbnails(output::pages::ReportSheets& sheets, int width, qreal pixelRatio, QObject* parent)
    : QAbstractListModel(parent),
      sheets_(sheets),
      width_(width),
      pixelRatio_(pixelRatio),
      thumbnails_(cachedThumbnails) {}

int PageThumbnails::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : sheets_.count();
}

QVariant PageThumbnails::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) return {};
  const int page = index.row() + 1;
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return QString::number(page);
  if (role == Qt::TextAlignmentRole) return int(Qt::AlignHCenter);
  if (role != Qt::DecorationRole) return {};
  if (const QImage* const kept = thumbnails_.object(page)) return *kept;
  try {
    // Some systems cannot draw letters of a few points: the page is drawn larger and scaled down.
    constexpr int enlargement = 3;
    const qreal width = width_ * pixelRatio_;
    auto picture =
        std::make_unique<QImage>(sheets_.picture(page, enlargement * width * pointsPerInch / sheets_.pageSize().width())
                                     .scaledToWidth(qRound(width), Qt::SmoothTransformation));
    frame(*picture);
    picture->setDevicePixelRatio(pixelRatio_);
    const QImage shown = *picture;
    thumbnails_.insert(page, picture.release());
    return shown;
  } catch (const std::exception&) {
    return {};  // the large picture says why it cannot be shown
  }
}

}  // namespace korvel::control
