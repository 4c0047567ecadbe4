#include "output/pages/report_pages.h"

#include <QFont>
#include <QMarginsF>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>
#include <memory>
#include <vector>

#include "output/pages/cell_text.h"
#include "output/pages/column_widths.h"
#include "output/pages/page_painter.h"
#include "output/windows_error.h"

namespace korvel::output::pages {

namespace {

// In points.
constexpr qreal bodySize = 8;
constexpr qreal leastSize = 6;
constexpr qreal greatestHeaderSize = 24;
constexpr qreal marginSize = 8;
constexpr qreal captionSize = 11;
constexpr qreal cellPadding = 2.5;
constexpr qreal rowPadding = 1.5;
constexpr qreal captionRoom = 20;
constexpr qreal footerRoom = 16;
constexpr qreal pointsPerInch = 72;
constexpr qreal pageMarginMillimetres = 12;

constexpr std::size_t leastLinesOfAPart = 3;
constexpr std::size_t rowsBetweenReports = 1000;

QFont bodyFont(qreal size) {
  QFont font;
  // Narrow ones first: a record has eighteen columns.
  font.setFamilies({QStringLiteral("DejaVu Sans Condensed"), QStringLiteral("Segoe UI"), QStringLiteral("Arial"),
                    QStringLiteral("Liberation Sans"), QStringLiteral("DejaVu Sans")});
  font.setStyleHint(QFont::SansSerif);
  font.setPointSizeF(size);
  return font;
}

QFont headerFont(const PrintFont& font, qreal scale) {
  QFont header(QString::fromStdString(font.name));
  header.setPointSizeF(std::clamp(font.size, qreal{1}, greatestHeaderSize) * scale);
  return header;
}

struct Cancelled {};

/// One section, ready to be laid out.
struct SectionPlan {
  QString caption;
  std::vector<CellLines> headers;
  std::vector<qreal> widths;
  std::unique_ptr<GlyphFace> headerFace;
  std::unique_ptr<GlyphFace> bodyFace;
};

/// What measuring found out about a section.
using SectionMeasure = std::vector<ColumnWish>;

class Flow {
 public:
  Flow(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts, const PageProgress& progress)
      : report_(report), device_(device), texts_(texts), progress_(progress) {}

  PaintedPages run(Orientation orientation) {
    PaintedPages result;
    try {
      device_.setPageMargins(
          {pageMarginMillimetres, pageMarginMillimetres, pageMarginMillimetres, pageMarginMillimetres},
          QPageLayout::Millimeter);
      measureSections(orientation);
      layOut();  // counts
      pages_ = page_;
      QPainter painter;
      if (!painter.begin(&device_)) throw windowsError(errorDeviceUnavailable);
      PagePainter out(painter);
      out_ = &out;
      layOut();
      if (!painter.end()) throw windowsError(errorDeviceInputOutput);
    } catch (const Cancelled&) {
      result.cancelled = true;
    }
    out_ = nullptr;
    result.pages = drawn_;
    return result;
  }

 private:
  [[nodiscard]] qreal unit() const { return device_.logicalDpiX() / pointsPerInch; }
  [[nodiscard]] qreal pageWidth() const { return device_.width(); }
  [[nodiscard]] qreal bottom() const { return device_.height() - footerRoom * unit(); }
  [[nodiscard]] qreal padding() const { return 2 * cellPadding * unit(); }

  void report(int page) {
    if (progress_ && !progress_(page, pages_)) throw Cancelled{};
  }
  void countRow() {
    if (++rowsSeen_ % rowsBetweenReports == 0 && pages_ == 0) report(0);
  }

  void measureSections(Orientation orientation) {
    GlyphFace body(bodyFont(bodySize), device_);
    SectionHead head;
    std::vector<std::string_view> cells;
    report_.rewind();
    while (report_.nextSection(head)) {
      GlyphFace header(headerFont(head.font, 1), device_);
      SectionMeasure& section = measures_.emplace_back();
      section.resize(head.headers.size());
      for (std::size_t i = 0; i < head.headers.size(); ++i)
        measure(shownOnPaper(head.headers[i]), header, device_, section[i].header);
      while (report_.nextRow(cells)) {
        for (std::size_t i = 0; i < cells.size(); ++i)
          if (!cells[i].empty())
            measure(shownOnPaper(cells[i].substr(0, measuredBytes)), body, device_, section[i].body);
        countRow();
      }
    }
    if (orientation == Orientation::asGiven) return;
    device_.setPageOrientation(QPageLayout::Portrait);
    for (const SectionMeasure& section : measures_)
      if (!fitsUnbroken(section, pageWidth(), padding())) {
        device_.setPageOrientation(QPageLayout::Landscape);
        break;
      }
  }

  [[nodiscard]] SectionPlan planOf(const SectionHead& head, const SectionMeasure& measured) {
    SectionPlan plan;
    plan.caption = shownOnPaper(head.caption);
    const qreal headerSize = headerFont(head.font, 1).pointSizeF();
    const ColumnPlan columns =
        planColumns(measured, pageWidth(), padding(), leastSize / bodySize, std::min(qreal{1}, leastSize / headerSize));
    plan.widths = columns.widths;
    plan.headerFace = std::make_unique<GlyphFace>(headerFont(head.font, columns.headerScale), device_);
    plan.bodyFace = std::make_unique<GlyphFace>(bodyFont(bodySize * columns.bodyScale), device_);
    plan.headers.resize(head.headers.size());
    for (std::size_t i = 0; i < plan.headers.size(); ++i)
      breakIntoLines(shownOnPaper(head.headers[i]), plan.widths[i] - padding(), *plan.headerFace, device_,
                     plan.headers[i]);
    return plan;
  }

  /// Goes through the whole report, with or without a page to draw on.
  void layOut() {
    page_ = 0;
    SectionHead head;
    std::vector<std::string_view> cells;
    std::size_t section = 0;
    report_.rewind();
    while (report_.nextSection(head)) {
      plan_ = planOf(head, measures_.at(section++));
      if (out_ != nullptr) out_->forgetFaces();
      beginPage();
      while (report_.nextRow(cells)) {
        row(cells);
        countRow();
      }
      endPage();
    }
    if (section == 0) {  // a report without sections is a page that says so by being empty
      plan_ = {};
      beginPage();
      endPage();
    }
  }

  void beginPage() {
    if (out_ != nullptr && page_ > 0 && !device_.newPage()) throw windowsError(errorDeviceInputOutput);
    ++page_;
    y_ = 0;
    if (out_ != nullptr) margins();
    y_ = captionRoom * unit();
    if (!plan_.headers.empty()) headerRow();
    freshY_ = y_;
  }

  void endPage() {
    if (out_ == nullptr) return;
    out_->finishPage();
    ++drawn_;
    report(drawn_);
  }

  void margins() {
    const QRectF above(0, 0, pageWidth(), captionRoom * unit());
    const QRectF below(0, bottom(), pageWidth(), footerRoom * unit());
    QFont caption = bodyFont(captionSize);
    caption.setBold(true);
    out_->text(above, Qt::AlignLeft | Qt::AlignTop, caption, plan_.caption);
    const QFont small = bodyFont(marginSize);
    out_->text(above, Qt::AlignRight | Qt::AlignTop, small, texts_.printedAt);
    out_->text(below, Qt::AlignLeft | Qt::AlignBottom, small, texts_.note);
    out_->text(below, Qt::AlignRight | Qt::AlignBottom, small, texts_.pageOf.arg(page_).arg(pages_));
  }

  static std::size_t mostLines(const std::vector<CellLines>& cells) {
    std::size_t lines = 1;
    for (const CellLines& cell : cells) lines = std::max(lines, cell.lines.size());
    return lines;
  }

  void headerRow() {
    // A header that left no room for rows would be worth nothing.
    const qreal half = (bottom() - y_) / 2;
    const auto most = static_cast<std::size_t>(std::max(qreal{1}, half / plan_.headerFace->lineHeight()));
    const std::size_t lines = std::min(mostLines(plan_.headers), most);
    const qreal height = static_cast<qreal>(lines) * plan_.headerFace->lineHeight() + 2 * rowPadding * unit();
    if (out_ != nullptr) {
      out_->fill({0, y_, tableWidth(), height});
      out_->line({0, y_}, {tableWidth(), y_});
      drawCells(plan_.headers, 0, lines, *plan_.headerFace, height);
    }
    y_ += height;
  }

  [[nodiscard]] qreal tableWidth() const {
    qreal width = 0;
    for (const qreal column : plan_.widths) width += column;
    return width;
  }

  void row(const std::vector<std::string_view>& cells) {
    row_.resize(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i)
      breakIntoLines(shownOnPaper(cells[i]), plan_.widths[i] - padding(), *plan_.bodyFace, device_, row_[i]);
    const qreal lineHeight = plan_.bodyFace->lineHeight();
    const qreal paddings = 2 * rowPadding * unit();
    const std::size_t lines = mostLines(row_);
    const auto linesIn = [&](qreal room) {
      return room < paddings + lineHeight ? std::size_t{0} : static_cast<std::size_t>((room - paddings) / lineHeight);
    };
    for (std::size_t first = 0; first < lines;) {
      std::size_t fit = linesIn(bottom() - y_);
      // A row that a page holds stays together; a longer one begins where a few of its lines fit.
      const bool stays = lines - first <= fit || (first == 0 && lines > linesOfAPage() && fit >= leastLinesOfAPart);
      if (!stays && !pageIsFresh()) {
        endPage();
        beginPage();
        fit = linesIn(bottom() - y_);
      }
      const std::size_t count = std::clamp<std::size_t>(fit, 1, lines - first);
      const qreal height = static_cast<qreal>(count) * lineHeight + paddings;
      if (out_ != nullptr) drawCells(row_, first, count, *plan_.bodyFace, height);
      y_ += height;
      first += count;
      if (first < lines) {
        endPage();
        beginPage();
      }
    }
  }

  [[nodiscard]] bool pageIsFresh() const { return y_ <= freshY_; }
  [[nodiscard]] std::size_t linesOfAPage() const {
    const qreal room = bottom() - freshY_ - 2 * rowPadding * unit();
    return static_cast<std::size_t>(std::max(qreal{1}, room / plan_.bodyFace->lineHeight()));
  }

  void drawCells(const std::vector<CellLines>& cells, std::size_t first, std::size_t count, GlyphFace& face,
                 qreal height) {
    qreal x = 0;
    const qreal inset = cellPadding * unit();
    const qreal top = y_ + rowPadding * unit();
    out_->line({0, y_}, {0, y_ + height});
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const CellLines& cell = cells[i];
      const qreal width = plan_.widths[i] - padding();
      // The rest of a row tells on every page whose rest it is.
      if (i == 0 && first >= cell.lines.size())
        out_->cell(cell, 0, 1, {x + inset, top}, width, face, PagePainter::Ink::faint);
      else if (first < cell.lines.size())
        out_->cell(cell, first, count, {x + inset, top}, width, face);
      x += plan_.widths[i];
      out_->line({x, y_}, {x, y_ + height});
    }
    out_->line({0, y_ + height}, {x, y_ + height});
  }

  static constexpr std::size_t measuredBytes = 8000;

  ReportSource& report_;
  QPagedPaintDevice& device_;
  const PageTexts& texts_;
  const PageProgress& progress_;
  std::vector<SectionMeasure> measures_;
  SectionPlan plan_;
  std::vector<CellLines> row_;
  PagePainter* out_ = nullptr;
  qreal y_ = 0;
  qreal freshY_ = 0;  ///< where the first row of a page begins
  int page_ = 0;
  int pages_ = 0;
  int drawn_ = 0;
  std::size_t rowsSeen_ = 0;
};

}  // namespace

PaintedPages paintReport(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts,
                         Orientation orientation, const PageProgress& progress) {
  return Flow(report, device, texts, progress).run(orientation);
}

}  // namespace korvel::output::pages
