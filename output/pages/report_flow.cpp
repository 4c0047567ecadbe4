#include "output/pages/report_flow.h"

#include <QFont>
#include <QFontMetricsF>
#include <QMarginsF>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QScopeGuard>
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "base/system_errors.h"
#include "output/pages/cell_lines.h"
#include "output/pages/column_widths.h"
#include "output/pages/page_fonts.h"
#include "output/pages/page_painter.h"

namespace korvel::output::pages {

namespace {

// In points.
constexpr qreal bodySize = 8;
constexpr qreal leastSize = 6;
constexpr qreal cellPadding = 2.5;
constexpr qreal rowPadding = 1.5;
constexpr qreal leastColumnSize = 20;
constexpr qreal pointsPerInch = 72;
constexpr qreal pageMarginMillimetres = 12;

constexpr std::size_t leastLinesOfAPart = 3;
constexpr std::size_t rowsBetweenReports = 1000;
constexpr std::size_t measuredBytes = 8000;

struct Cancelled {};
/// The pages that were asked for are drawn.
struct PageDone {};

std::size_t mostLines(const std::vector<CellLines>& cells) {
  std::size_t lines = 1;
  for (const CellLines& cell : cells) lines = std::max(lines, cell.lines.size());
  return lines;
}

}  // namespace

ReportFlow::ReportFlow(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts,
                       const PageProgress& progress)
    : report_(report), device_(device), texts_(texts), progress_(progress) {}

ReportFlow::~ReportFlow() = default;

bool ReportFlow::count(Orientation orientation) {
  try {
    device_.setPageMargins({pageMarginMillimetres, pageMarginMillimetres, pageMarginMillimetres, pageMarginMillimetres},
                           QPageLayout::Millimeter);
    measureSections(orientation);
    margins_ = std::make_unique<PageMargins>(texts_, device_);
    layOut({});
    pages_ = page_;
    return true;
  } catch (const Cancelled&) {
    return false;
  }
}

bool ReportFlow::draw(const PageSelection& selection) {
  std::vector<QPageRanges::Range> spans;
  for (const QPageRanges::Range& range : selection.ranges.toRangeList())
    if (range.from <= pages_) spans.push_back({std::max(1, range.from), std::min(range.to, pages_)});
  if (selection.ranges.isEmpty()) spans.push_back({1, pages_});
  if (spans.empty()) return true;
  const int copies = std::max(1, selection.copies);
  pageCopies_ = selection.collated ? 1 : copies;
  toDraw_ = 0;
  for (const QPageRanges::Range& span : spans) toDraw_ += (span.to - span.from + 1) * copies;

  QPainter painter;
  if (!painter.begin(&device_)) throw fileError(FileError::deviceUnavailable);
  PagePainter out(painter);
  out_ = &out;
  painted_ = 0;
  const auto forgetPainter = qScopeGuard([this] { out_ = nullptr; });
  try {
    for (int copy = 0; copy < (selection.collated ? copies : 1); ++copy)
      for (const QPageRanges::Range& span : spans) drawPages(span.from, span.to);
  } catch (const Cancelled&) {
    return false;
  }
  if (!painter.end()) throw fileError(FileError::deviceInputOutput);
  return true;
}

void ReportFlow::drawPage(int page, QPainter& painter) {
  PagePainter out(painter);
  out_ = &out;
  painted_ = 0;
  const auto forgetPainter = qScopeGuard([this] { out_ = nullptr; });
  drawPages(page, page);
}

/// Draws consecutive pages. Earlier ones are skipped, not laid out again.
void ReportFlow::drawPages(int first, int last) {
  const PageStart start = starts_.at(static_cast<std::size_t>(first) - 1);
  page_ = first - 1;
  lastPage_ = last;
  out_->clear();
  try {
    layOut(start);
  } catch (const PageDone&) {
    // The last page is full.
  }
}

qreal ReportFlow::unit() const {
  return device_.logicalDpiX() / pointsPerInch;
}
qreal ReportFlow::pageWidth() const {
  return device_.width();
}
qreal ReportFlow::padding() const {
  return 2 * cellPadding * unit();
}

void ReportFlow::report(int page) {
  if (progress_ && !progress_(page, toDraw_)) throw Cancelled{};
}
void ReportFlow::countRow() {
  if (++rowsSeen_ % rowsBetweenReports == 0 && pages_ == 0) report(0);
}

void ReportFlow::measureSections(Orientation orientation) {
  GlyphFace body(bodyFont(bodySize), device_);
  SectionHead head;
  std::vector<std::string_view> cells;
  report_.rewind();
  while (report_.nextSection(head)) {
    GlyphFace header(headerFont(head.font, 1), device_);
    std::vector<ColumnWish>& section = measures_.emplace_back();
    section.resize(head.headers.size());
    for (std::size_t i = 0; i < head.headers.size(); ++i)
      measure(shownOnPaper(head.headers[i]), header, device_, section[i].header);
    while (report_.nextRow(cells)) {
      for (std::size_t i = 0; i < cells.size(); ++i)
        if (!cells[i].empty()) measure(shownOnPaper(cells[i].substr(0, measuredBytes)), body, device_, section[i].body);
      countRow();
    }
  }
  if (orientation == Orientation::asGiven) return;
  device_.setPageOrientation(QPageLayout::Portrait);
  for (const std::vector<ColumnWish>& section : measures_)
    if (!fitsUnbroken(section, pageWidth(), padding())) {
      device_.setPageOrientation(QPageLayout::Landscape);
      break;
    }
}

bool ReportFlow::openSection(std::size_t section, SectionHead& head) {
  report_.rewind();
  for (std::size_t passed = 0; passed <= section; ++passed)
    if (!report_.nextSection(head)) return false;
  return true;
}

ReportFlow::SectionPlan ReportFlow::planOf(const SectionHead& head, std::size_t section, std::size_t strip) {
  const std::vector<ColumnWish>& measured = measures_.at(section);
  const qreal leastHeaderScale = std::min(qreal{1}, leastSize / headerFont(head.font, 1).pointSizeF());
  // Possible as soon as the width of the pages is known.
  if (strips_.size() == section)
    strips_.push_back(shareColumns(measured, pageWidth(), padding(),
                                   {leastColumnSize * unit(), leastSize / bodySize, leastHeaderScale}));
  const std::vector<ColumnStrip>& strips = strips_.at(section);

  SectionPlan plan;
  plan.columns = strips.at(strip);
  // As in the report's file: also behind a caption that ends so itself.
  const std::string& title = texts_.head.title;
  plan.caption = title.empty() ? shownOnPaper(head.caption) + QStringLiteral(" Audits") : shownOnPaper(title);
  std::vector<ColumnWish> wishes;
  std::vector<qreal> proportions;
  for (const std::size_t column : plan.columns) {
    wishes.push_back(measured[column]);
    if (!head.widths.empty()) proportions.push_back(std::max(qreal{1}, head.widths[column]));
  }
  if (strips.size() > 1) {
    // The first column stands in front of every further strip, too.
    const std::size_t first = plan.columns[strip > 0 && plan.columns.front() == 0 ? 1 : 0];
    plan.caption +=
        QStringLiteral(": ") + texts_.columnsOf.arg(first + 1).arg(plan.columns.back() + 1).arg(measured.size());
  }
  const ColumnPlan columns =
      planColumns(wishes, pageWidth(), padding(), leastSize / bodySize, leastHeaderScale, proportions);
  plan.widths = columns.widths;
  plan.headerFace = std::make_unique<GlyphFace>(headerFont(head.font, columns.headerScale), device_);
  plan.bodyFace = std::make_unique<GlyphFace>(bodyFont(bodySize * columns.bodyScale), device_);
  plan.headers.resize(plan.columns.size());
  for (std::size_t i = 0; i < plan.headers.size(); ++i)
    breakIntoLines(shownOnPaper(head.headers[plan.columns[i]]), plan.widths[i] - padding(), *plan.headerFace, device_,
                   plan.headers[i]);
  return plan;
}

/// Goes through the report from the beginning of a page on, with or without a page to draw on.
void ReportFlow::layOut(const PageStart& start) {
  here_ = start;
  if (out_ == nullptr) starts_.clear();
  SectionHead head;
  if (!openSection(start.section, head)) {  // a report without sections is one empty page
    plan_ = {};
    beginPage();
    endPage();
    return;
  }
  std::size_t passedRows = start.row;
  do {
    plan_ = planOf(head, here_.section, here_.strip);
    for (;;) {
      layOutStrip(std::exchange(passedRows, 0));
      if (here_.strip + 1 == strips_.at(here_.section).size()) break;
      here_ = {here_.section, here_.strip + 1, 0, 0};
      openSection(here_.section, head);
      plan_ = planOf(head, here_.section, here_.strip);
    }
    here_ = {here_.section + 1, 0, 0, 0};
  } while (report_.nextSection(head));
}

/// Lays out the columns of one strip, behind rows that stand on earlier pages.
void ReportFlow::layOutStrip(std::size_t passedRows) {
  std::vector<std::string_view> cells;
  for (std::size_t passed = 0; passed < passedRows && report_.nextRow(cells); ++passed) continue;
  std::size_t line = here_.line;
  beginPage();
  while (report_.nextRow(cells)) {
    row(cells, std::exchange(line, 0));
    ++here_.row;
    here_.line = 0;
    countRow();
  }
  endPage();
}

void ReportFlow::beginPage() {
  if (out_ == nullptr) starts_.push_back(here_);
  ++page_;
  margins_->layOut(page_, plan_.caption);
  if (out_ != nullptr) margins_->draw(*out_, pages_);
  y_ = margins_->top();
  if (!plan_.headers.empty()) headerRow();
  freshY_ = y_;
}

void ReportFlow::endPage() {
  if (out_ == nullptr) return;
  for (int copy = 0; copy < pageCopies_; ++copy) {
    if (painted_++ > 0 && !device_.newPage()) throw fileError(FileError::deviceInputOutput);
    out_->paint();
    ++drawn_;
    report(drawn_);
  }
  out_->clear();
  // The source knows only after its last section whether the report was complete.
  if (page_ == lastPage_ && page_ < pages_) throw PageDone{};
}

void ReportFlow::headerRow() {
  // A header takes at most half of the page, so that rows have room.
  const qreal half = (margins_->bottom() - y_) / 2;
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

qreal ReportFlow::tableWidth() const {
  qreal width = 0;
  for (const qreal column : plan_.widths) width += column;
  return width;
}

void ReportFlow::row(const std::vector<std::string_view>& cells, std::size_t first) {
  row_.resize(plan_.columns.size());
  for (std::size_t i = 0; i < row_.size(); ++i)
    breakIntoLines(shownOnPaper(cells[plan_.columns[i]]), plan_.widths[i] - padding(), *plan_.bodyFace, device_,
                   row_[i]);
  const qreal lineHeight = plan_.bodyFace->lineHeight();
  const qreal paddings = 2 * rowPadding * unit();
  const std::size_t lines = mostLines(row_);
  const auto linesIn = [&](qreal room) {
    return room < paddings + lineHeight ? std::size_t{0} : static_cast<std::size_t>((room - paddings) / lineHeight);
  };
  while (first < lines) {
    here_.line = first;
    std::size_t fit = linesIn(margins_->bottom() - y_);
    // A row that a page holds stays together; a longer one begins where a few of its lines fit.
    const bool stays = lines - first <= fit || (first == 0 && lines > linesOfAPage() && fit >= leastLinesOfAPart);
    if (!stays && !pageIsFresh()) {
      endPage();
      beginPage();
      fit = linesIn(margins_->bottom() - y_);
    }
    const std::size_t count = std::clamp<std::size_t>(fit, 1, lines - first);
    const qreal height = static_cast<qreal>(count) * lineHeight + paddings;
    if (out_ != nullptr) drawCells(row_, first, count, *plan_.bodyFace, height);
    y_ += height;
    first += count;
    here_.line = first;
    if (first < lines) {
      endPage();
      beginPage();
    }
  }
}

std::size_t ReportFlow::linesOfAPage() const {
  // The first page has less room than those that follow.
  const qreal header = freshY_ - margins_->top();
  const qreal room = margins_->bottom() - margins_->laterTop() - header - 2 * rowPadding * unit();
  return static_cast<std::size_t>(std::max(qreal{1}, room / plan_.bodyFace->lineHeight()));
}

void ReportFlow::drawCells(const std::vector<CellLines>& cells, std::size_t first, std::size_t count, GlyphFace& face,
                           qreal height) {
  qreal x = 0;
  const qreal inset = cellPadding * unit();
  const qreal top = y_ + rowPadding * unit();
  out_->line({0, y_}, {0, y_ + height});
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const CellLines& cell = cells[i];
    const qreal width = plan_.widths[i] - padding();
    // The rest of a row repeats the row's key on every page.
    if (i == 0 && first >= cell.lines.size())
      out_->cell(cell, 0, 1, {x + inset, top}, width, face, PagePainter::Ink::faint);
    else if (first < cell.lines.size())
      out_->cell(cell, first, count, {x + inset, top}, width, face);
    x += plan_.widths[i];
    out_->line({x, y_}, {x, y_ + height});
  }
  out_->line({0, y_ + height}, {x, y_ + height});
}

PaintedPages paintReport(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts,
                         Orientation orientation, const PageProgress& progress, const PageSelection& selection) {
  ReportFlow flow(report, device, texts, progress);
  const bool whole = flow.count(orientation) && flow.draw(selection);
  return {flow.drawn(), !whole, flow.pages()};
}

}  // namespace korvel::output::pages
