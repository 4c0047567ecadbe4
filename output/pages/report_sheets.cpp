#include "output/pages/report_sheets.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <utility>

#include "base/system_errors.h"
#include "output/pages/pdf.h"
#include "output/pages/report_flow.h"

namespace korvel::output::pages {

namespace {

constexpr qreal pointsPerInch = 72;
constexpr qreal inchesPerMetre = 100 / 2.54;

}  // namespace

// Nothing is painted on the PDF writer: it only provides the size of pages and the widths of letters.
ReportSheets::ReportSheets(std::unique_ptr<ReportSource> report, PageTexts texts)
    : report_(std::move(report)),
      texts_(std::move(texts)),
      nowhere_(std::make_unique<QBuffer>()),
      device_(std::make_unique<QPdfWriter>(nowhere_.get())) {
  device_->setPageSize(QPageSize(QPageSize::A4));
  device_->setResolution(pdfDotsPerInch);
}

ReportSheets::~ReportSheets() = default;

bool ReportSheets::layOut(const PageProgress& progress) {
  progress_ = progress;
  flow_ = std::make_unique<ReportFlow>(*report_, *device_, texts_, progress_);
  const bool whole = flow_->count(Orientation::asFits);
  // The receiver of the progress may be destroyed before pages are drawn.
  progress_ = {};
  return whole;
}

int ReportSheets::count() const {
  return flow_ ? flow_->pages() : 0;
}

QSizeF ReportSheets::pageSize() const {
  return device_->pageLayout().fullRect(QPageLayout::Point).size();
}

QImage ReportSheets::picture(int page, qreal dotsPerInch) {
  const QSizeF size = pageSize() * dotsPerInch / pointsPerInch;
  QImage picture(std::max(1, qRound(size.width())), std::max(1, qRound(size.height())), QImage::Format_RGB32);
  if (picture.isNull()) throw fileError(FileError::outOfMemory);
  picture.fill(Qt::white);
  // Fonts have the size for the device that the pages were laid out for; the painter scales them down.
  const int metre = qRound(device_->logicalDpiX() * inchesPerMetre);
  picture.setDotsPerMeterX(metre);
  picture.setDotsPerMeterY(metre);
  QPainter painter(&picture);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  const qreal scale = dotsPerInch / device_->logicalDpiX();
  const QRectF inside = device_->pageLayout().paintRect(QPageLayout::Point);
  painter.translate(inside.topLeft() * dotsPerInch / pointsPerInch);
  painter.scale(scale, scale);
  flow_->drawPage(page, painter);
  painter.end();
  const int real = qRound(dotsPerInch * inchesPerMetre);
  picture.setDotsPerMeterX(real);
  picture.setDotsPerMeterY(real);
  return picture;
}

}  // namespace korvel::output::pages
