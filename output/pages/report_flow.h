#pragma once

#include <QString>
#include <memory>
#include <string_view>
#include <vector>

#include "output/pages/cell_lines.h"
#include "output/pages/column_strips.h"
#include "output/pages/column_widths.h"
#include "output/pages/glyph_face.h"
#include "output/pages/page_margins.h"
#include "output/pages/report_pages.h"

class QPagedPaintDevice;
class QPainter;

namespace korvel::output::pages {

class PagePainter;

/// Lays a report out on pages. Measured and counted once, it can be drawn from the beginning to the end, or page by
/// page in any order.
class ReportFlow {
 public:
  /// All must outlive it. The pages have the size and resolution of `device`.
  ReportFlow(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts, const PageProgress& progress);
  ~ReportFlow();
  ReportFlow(const ReportFlow&) = delete;
  ReportFlow& operator=(const ReportFlow&) = delete;

  /// Measures the columns, turns the device's pages as they fit, and counts them. False where `progress` cancelled.
  bool count(Orientation orientation);
  [[nodiscard]] int pages() const noexcept { return pages_; }
  /// Draws pages on the device. False where `progress` cancelled.
  bool draw(const PageSelection& selection);
  [[nodiscard]] int drawn() const noexcept { return drawn_; }
  /// Draws one page, from 1, in the device's units. Earlier pages are skipped, not laid out again.
  void drawPage(int page, QPainter& painter);

 private:
  /// One section, ready to be laid out.
  struct SectionPlan {
    QString caption;
    ColumnStrip columns;
    std::vector<CellLines> headers;
    std::vector<qreal> widths;
    std::unique_ptr<GlyphFace> headerFace;
    std::unique_ptr<GlyphFace> bodyFace;
  };
  /// What a page begins with.
  struct PageStart {
    std::size_t section = 0;
    std::size_t strip = 0;  ///< of the section's columns
    std::size_t row = 0;
    std::size_t line = 0;  ///< of that row
  };

  [[nodiscard]] qreal unit() const;
  [[nodiscard]] qreal pageWidth() const;
  [[nodiscard]] qreal padding() const;
  [[nodiscard]] qreal tableWidth() const;
  [[nodiscard]] bool pageIsFresh() const { return y_ <= freshY_; }
  /// Of a page after the first one.
  [[nodiscard]] std::size_t linesOfAPage() const;

  void report(int page);
  void countRow();
  void measureSections(Orientation orientation);
  [[nodiscard]] SectionPlan planOf(const SectionHead& head, std::size_t section, std::size_t strip);
  /// Goes to a section, wherever the report stands; false where there is none.
  bool openSection(std::size_t section, SectionHead& head);
  void layOut(const PageStart& start);
  void layOutStrip(std::size_t passedRows);
  void drawPages(int first, int last);
  void beginPage();
  void endPage();
  void headerRow();
  /// Lays out a row from line `first` on.
  void row(const std::vector<std::string_view>& cells, std::size_t first);
  void drawCells(const std::vector<CellLines>& cells, std::size_t first, std::size_t count, GlyphFace& face,
                 qreal height);

  ReportSource& report_;
  QPagedPaintDevice& device_;
  const PageTexts& texts_;
  const PageProgress& progress_;
  std::vector<std::vector<ColumnWish>> measures_;  ///< of each section
  std::vector<std::vector<ColumnStrip>> strips_;   ///< likewise
  std::unique_ptr<PageMargins> margins_;
  std::vector<PageStart> starts_;
  PageStart here_;
  SectionPlan plan_;
  std::vector<CellLines> row_;
  PagePainter* out_ = nullptr;
  int lastPage_ = 0;    ///< nothing is drawn after it; 0: all there is
  int pageCopies_ = 1;  ///< of every page, one behind the other
  qreal y_ = 0;
  qreal freshY_ = 0;  ///< where the first row of a page begins
  int page_ = 0;
  int pages_ = 0;
  int toDraw_ = 0;
  int drawn_ = 0;
  int painted_ = 0;  ///< pages, on the painter that is in use
  std::size_t rowsSeen_ = 0;
};

}  // namespace korvel::output::pages
