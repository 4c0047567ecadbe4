#include "output/pages/page_margins.h"

#include <QFontMetricsF>
#include <QPagedPaintDevice>
#include <algorithm>
#include <utility>

#include "output/pages/page_fonts.h"
#include "output/pages/page_painter.h"
#include "output/pages/report_pages.h"

namespace korvel::output::pages {

namespace {

// In points.
constexpr qreal captionSize = 11;
constexpr qreal textSize = 8;
constexpr qreal warningSize = 9;
constexpr qreal belowCaption = 3;
constexpr qreal belowRule = 4;
constexpr qreal betweenFacts = 1;
constexpr qreal betweenColumns = 8;
constexpr qreal betweenParts = 4;
constexpr qreal framePadding = 3;
constexpr qreal aboveTable = 5;
constexpr qreal aboveFoot = 5;
constexpr qreal pointsPerInch = 72;

constexpr std::array scales{1.0, 0.875, 0.75};
constexpr qreal greatestPart = 1.0 / 3;
constexpr qreal captionPart = 0.6;  ///< of the page's width; the rest is for the source
constexpr qreal namesPart = 0.35;   ///< of the page's width at most
constexpr std::size_t footLines = 3;
constexpr QChar ellipsis{0x2026};

QFont bold(qreal size) {
  QFont font = bodyFont(size);
  font.setBold(true);
  return font;
}

}  // namespace

struct PageMargins::Wanted {
  struct Fact {
    QString name;
    QString text;
    std::size_t mostLines;
  };
  /// More than any text has.
  static constexpr std::size_t any = static_cast<std::size_t>(-1);

  QString caption;
  QString source;
  std::vector<Fact> facts;
  QString warning;
  QString remark;
  std::size_t captionLines = any;
  std::size_t sourceLines = any;
  std::size_t warningLines = any;
  std::size_t remarkLines = any;
};

PageMargins::Faces::Faces(const QPagedPaintDevice& device, qreal scale)
    : caption(bold(captionSize * scale), device),
      text(bodyFont(textSize * scale), device),
      warning(bold(warningSize * scale), device) {}

PageMargins::PageMargins(const PageTexts& texts, QPagedPaintDevice& device) : texts_(texts), device_(device) {
  for (const qreal scale : scales) faces_.push_back(std::make_unique<Faces>(device, scale));
  layOutFoot();
}

qreal PageMargins::unit() const {
  return device_.logicalDpiX() / pointsPerInch;
}

void PageMargins::layOut(int page, const QString& caption) {
  page_ = page;
  if (!later_ || caption != caption_) {
    caption_ = caption;
    first_.reset();
    later_ = fitting(false, caption);
  }
  if (page == 1 && !first_) first_ = fitting(true, caption);
}

PageMargins::Block PageMargins::block(const QString& text, qreal width, GlyphFace& face, std::size_t mostLines) const {
  Block block;
  block.face = &face;
  block.width = width;
  breakIntoLines(text, width, face, device_, block.lines);
  limitLines(block, mostLines);
  return block;
}

qreal PageMargins::lineWidth(const Block& block, std::size_t line) const {
  const QStringView text = block.lines.line(line);
  return block.lines.plain ? block.face->width(text)
                           : QFontMetricsF(block.face->font(), &device_).horizontalAdvance(text.toString());
}

/// Cuts lines that are too many; the last one then ends in an ellipsis.
void PageMargins::limitLines(Block& block, std::size_t most) const {
  CellLines& cell = block.lines;
  if (cell.lines.size() <= most) return;
  cell.lines.resize(most);
  CellLines::Line& last = cell.lines.back();
  const auto atEnd = [&] { return last.start + last.length; };
  cell.text.truncate(atEnd());
  cell.text += ellipsis;
  ++last.length;
  cell.plain = block.face->draws(cell.text);
  while (last.length > 1 && (lineWidth(block, most - 1) > block.width || cell.text[atEnd() - 2].isSpace() ||
                             cell.text[atEnd() - 2].isHighSurrogate())) {
    cell.text.remove(atEnd() - 2, 1);
    --last.length;
  }
}

PageMargins::Head PageMargins::fitting(bool isFirst, const QString& caption) {
  const PageHead& told = texts_.head;
  Wanted wanted{caption, {}, {}, shownOnPaper(told.warning), shownOnPaper(told.remark)};
  if (!isFirst) wanted.source = shownOnPaper(told.source);
  if (isFirst)
    for (const PageHead::Fact& fact : told.facts)
      wanted.facts.push_back(
          {shownOnPaper(fact.name), shownOnPaper(fact.text), fact.mostLines == 0 ? Wanted::any : fact.mostLines});
  const qreal most = bottom_ * greatestPart;
  Head head;
  for (const std::unique_ptr<Faces>& faces : faces_) {
    head = laidOut(isFirst, wanted, *faces);
    if (head.height <= most) return head;
  }
  // Texts lose their last lines, the longest ones first; what is missing in the rows is said to the end.
  while (head.height > most) {
    std::size_t* longest = nullptr;
    std::size_t lines = 1;
    const auto consider = [&](std::size_t& limit, const QString& text, qreal width, GlyphFace& face) {
      const std::size_t now = block(text, width, face, limit).lines.lines.size();
      if (now > lines) {
        longest = &limit;
        lines = now;
      }
    };
    Faces& least = *faces_.back();
    const qreal width = device_.width();
    for (Wanted::Fact& fact : wanted.facts) consider(fact.mostLines, fact.text, width * (1 - namesPart), least.text);
    consider(wanted.remarkLines, wanted.remark, width, least.text);
    consider(wanted.captionLines, wanted.caption, width, least.caption);
    consider(wanted.sourceLines, wanted.source, width * (1 - captionPart), least.text);
    if (longest == nullptr) consider(wanted.warningLines, wanted.warning, width, least.warning);
    if (longest == nullptr) break;
    *longest = lines - 1;
    head = laidOut(isFirst, wanted, least);
  }
  return head;
}

PageMargins::Head PageMargins::laidOut(bool isFirst, const Wanted& wanted, Faces& faces) const {
  Head head;
  const qreal width = device_.width();
  const qreal gap = betweenColumns * unit();
  const bool hasSource = !wanted.source.isEmpty();
  Block caption =
      block(wanted.caption, hasSource ? width * captionPart - gap : width, faces.caption, wanted.captionLines);
  head.height = caption.height();
  if (hasSource) {
    Block source = block(wanted.source, width * (1 - captionPart), faces.text, wanted.sourceLines);
    source.isRight = true;
    // On the line of the caption.
    source.at = {width * captionPart, faces.caption.ascent() - faces.text.ascent()};
    head.height = std::max(head.height, source.at.y() + source.height());
    head.blocks.push_back(std::move(source));
  }
  head.blocks.push_back(std::move(caption));
  if (isFirst && !wanted.facts.empty()) {
    head.height += belowCaption * unit();
    head.rule = head.height;
    head.height += belowRule * unit();
    addFacts(head, wanted, faces);
  }
  if (!wanted.warning.isEmpty()) addWarning(head, wanted, faces);
  if (!wanted.remark.isEmpty()) {
    if (head.rule || head.frame) head.height += betweenParts * unit();
    Block remark = block(wanted.remark, width, faces.text, wanted.remarkLines);
    remark.at = {0, head.height};
    head.height += remark.height();
    head.blocks.push_back(std::move(remark));
  }
  head.height += aboveTable * unit();
  return head;
}

void PageMargins::addFacts(Head& head, const Wanted& wanted, Faces& faces) const {
  const qreal width = device_.width();
  std::vector<Block> names;
  qreal widest = 0;
  for (const Wanted::Fact& fact : wanted.facts) {
    Block name = block(fact.name, width * namesPart, faces.text, Wanted::any);
    name.isFaint = true;
    for (std::size_t line = 0; line < name.lines.lines.size(); ++line) widest = std::max(widest, lineWidth(name, line));
    names.push_back(std::move(name));
  }
  const qreal textAt = widest + betweenColumns * unit();
  for (std::size_t i = 0; i < names.size(); ++i) {
    const Wanted::Fact& fact = wanted.facts[i];
    Block text = block(fact.text, width - textAt, faces.text, fact.mostLines);
    names[i].at = {0, head.height};
    text.at = {textAt, head.height};
    head.height += std::max(names[i].height(), text.height()) + betweenFacts * unit();
    head.blocks.push_back(std::move(names[i]));
    head.blocks.push_back(std::move(text));
  }
}

void PageMargins::addWarning(Head& head, const Wanted& wanted, Faces& faces) const {
  const qreal padding = framePadding * unit();
  head.height += betweenParts * unit();
  Block warning = block(wanted.warning, device_.width() - 4 * padding, faces.warning, wanted.warningLines);
  warning.at = {2 * padding, head.height + padding};
  const qreal height = warning.height() + 2 * padding;
  head.frame = QRectF(0, head.height, device_.width(), height);
  head.height += height;
  head.blocks.push_back(std::move(warning));
}

void PageMargins::layOutFoot() {
  GlyphFace& face = faces_.front()->text;
  // The widest number that a report may end with.
  constexpr int manyPages = 99999;
  const qreal number =
      QFontMetricsF(face.font(), &device_).horizontalAdvance(texts_.pageOf.arg(manyPages).arg(manyPages));
  foot_ = block(shownOnPaper(texts_.head.origin), device_.width() - number - betweenColumns * unit(), face, footLines);
  const qreal height = device_.height();
  foot_.at = {0, height - foot_.height()};
  bottom_ = foot_.at.y() - aboveFoot * unit();
}

void PageMargins::draw(PagePainter& out, int pages) const {
  const auto drawBlock = [&](const Block& block) {
    const PagePainter::Ink ink = block.isFaint ? PagePainter::Ink::faint : PagePainter::Ink::normal;
    for (std::size_t line = 0; line < block.lines.lines.size(); ++line) {
      const qreal indent = block.isRight ? std::max(qreal{0}, block.width - lineWidth(block, line)) : 0;
      const QPointF at = block.at + QPointF(indent, static_cast<qreal>(line) * block.face->lineHeight());
      out.cell(block.lines, line, 1, at, block.width - indent, *block.face, ink);
    }
  };
  for (const Block& block : head().blocks) drawBlock(block);
  if (head().rule) out.line({0, *head().rule}, {static_cast<qreal>(device_.width()), *head().rule});
  if (head().frame) out.frame(*head().frame);
  drawBlock(foot_);
  Block number = block(texts_.pageOf.arg(page_).arg(pages), device_.width(), *foot_.face, 1);
  number.isRight = true;
  number.at = {0, device_.height() - number.height()};
  drawBlock(number);
}

}  // namespace korvel::output::pages
