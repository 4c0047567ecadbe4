#pragma once

#include <QAbstractListModel>
#include <QCache>
#include <QImage>

#include "output/pages/report_sheets.h"

namespace korvel::control {

/// The pages of a report as thumbnails, drawn on demand.
class PageThumbnails final : public QAbstractListModel {
  Q_OBJECT

 public:
  /// `sheets` must outlive it. Thumbnails are `width` pixels wide at `pixelRatio` device pixels each.
  PageThumbnails(output::pages::ReportSheets& sheets, int width, qreal pixelRatio, QObject* parent);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  output::pages::ReportSheets& sheets_;
  int width_;
  qreal pixelRatio_;
  mutable QCache<int, QImage> thumbnails_;
};

}  // namespace korvel::control
