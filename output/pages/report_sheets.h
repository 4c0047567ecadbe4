#pragma once

#include <QImage>
#include <QSizeF>
#include <memory>

#include "output/pages/report_pages.h"

class QIODevice;
class QPdfWriter;

namespace korvel::output::pages {

class ReportFlow;

/// The pages of a report as pictures, one by one in any order: for looking at a report before it is printed. Pages end
/// where they do in a PDF of the same report. Needs a QGuiApplication.
class ReportSheets {
 public:
  ReportSheets(std::unique_ptr<ReportSource> report, PageTexts texts);
  ~ReportSheets();
  ReportSheets(const ReportSheets&) = delete;
  ReportSheets& operator=(const ReportSheets&) = delete;

  /// Lays the report out; to be called first. False where `progress` cancelled. Passes on what the source throws.
  bool layOut(const PageProgress& progress = {});
  [[nodiscard]] int count() const;
  /// The size of every page, in points.
  [[nodiscard]] QSizeF pageSize() const;
  /// A page, from 1, at so many dots per inch, dark on white like paper. Throws what the source throws.
  [[nodiscard]] QImage picture(int page, qreal dotsPerInch);

 private:
  std::unique_ptr<ReportSource> report_;
  PageTexts texts_;
  PageProgress progress_;
  std::unique_ptr<QIODevice> nowhere_;
  std::unique_ptr<QPdfWriter> device_;
  std::unique_ptr<ReportFlow> flow_;
};

}  // namespace korvel::output::pages
