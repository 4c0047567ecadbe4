#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "output/page_head.h"
#include "output/pages/cell_lines.h"
#include "output/pages/glyph_face.h"

class QPagedPaintDevice;

namespace korvel::output::pages {

class PagePainter;
struct PageTexts;

/// What stands above and below the table of a page. The first page has the whole head; those that follow name its
/// source and repeat what a reader of any page must know. Texts are wrapped. A head takes a third of a page at most:
/// its letters become smaller, and then its longest texts end in an ellipsis.
class PageMargins {
 public:
  /// Both must outlive it. The pages have the size that the device has now.
  PageMargins(const PageTexts& texts, QPagedPaintDevice& device);

  /// For a page of that number, from 1, under that caption.
  void layOut(int page, const QString& caption);
  /// Where the table of this page begins.
  [[nodiscard]] qreal top() const { return head().height; }
  /// Where that of a page after the first one begins.
  [[nodiscard]] qreal laterTop() const { return later_->height; }
  /// Where a table must end.
  [[nodiscard]] qreal bottom() const { return bottom_; }
  void draw(PagePainter& out, int pages) const;

 private:
  struct Faces {
    Faces(const QPagedPaintDevice& device, qreal scale);
    GlyphFace caption;
    GlyphFace text;
    GlyphFace warning;
  };
  /// Lines of text and their place.
  struct Block {
    CellLines lines;
    GlyphFace* face = nullptr;
    qreal width = 0;
    QPointF at = {};
    bool isFaint = false;
    bool isRight = false;

    [[nodiscard]] qreal height() const { return static_cast<qreal>(lines.lines.size()) * face->lineHeight(); }
  };
  struct Head {
    std::vector<Block> blocks;
    std::optional<QRectF> frame;  ///< around the warning
    std::optional<qreal> rule;    ///< a line across the page
    qreal height = 0;
  };
  /// The texts of a head, and of how many lines each may be.
  struct Wanted;

  [[nodiscard]] const Head& head() const { return page_ == 1 ? *first_ : *later_; }
  [[nodiscard]] qreal unit() const;
  [[nodiscard]] Block block(const QString& text, qreal width, GlyphFace& face, std::size_t mostLines) const;
  void limitLines(Block& block, std::size_t most) const;
  [[nodiscard]] qreal lineWidth(const Block& block, std::size_t line) const;
  [[nodiscard]] Head fitting(bool isFirst, const QString& caption);
  [[nodiscard]] Head laidOut(bool isFirst, const Wanted& wanted, Faces& faces) const;
  void addFacts(Head& head, const Wanted& wanted, Faces& faces) const;
  void addWarning(Head& head, const Wanted& wanted, Faces& faces) const;
  void layOutFoot();

  const PageTexts& texts_;
  QPagedPaintDevice& device_;
  std::vector<std::unique_ptr<Faces>> faces_;  ///< from the largest on
  QString caption_;
  int page_ = 0;
  std::optional<Head> first_;
  std::optional<Head> later_;
  Block foot_;
  qreal bottom_ = 0;
};

}  // namespace korvel::output::pages
