#include "control/forms/value_field.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>

#include "ui/icons/icons.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

/// Spans of `value` as positions in a document that shows its first `shown` characters and takes CR LF for one.
std::vector<MarkSpan> inDocument(const QString& value, qsizetype shown, const std::vector<MarkSpan>& spans) {
  std::vector<MarkSpan> positions;
  qsizetype at = 0;
  qsizetype pairs = 0;
  const auto position = [&](qsizetype to) {
    for (at = std::max<qsizetype>(at, 1); at < to; ++at)
      pairs += static_cast<qsizetype>(value[at] == QLatin1Char('\n') && value[at - 1] == QLatin1Char('\r'));
    return to - pairs;
  };
  for (const MarkSpan& span : spans) {
    if (span.begin >= shown) break;
    const qsizetype begin = position(span.begin);
    positions.push_back({begin, position(std::min(span.end, shown))});
  }
  return positions;
}

/// How many characters of `value` are shown.
qsizetype shownOf(const QString& value) {
  const qsizetype most = std::min(value.size(), ValueField::mostCharacters);
  qsizetype lineBreaks = 0;
  qsizetype shown = 0;
  while (shown < most && lineBreaks < ValueField::mostLineBreaks)
    lineBreaks += static_cast<qsizetype>(value[shown++] == QLatin1Char('\n'));
  const bool inPair = shown > 0 && shown < value.size() &&
                      (value[shown - 1].isHighSurrogate() ||
                       (value[shown - 1] == QLatin1Char('\r') && value[shown] == QLatin1Char('\n')));
  return inPair ? shown - 1 : shown;
}

bool writesToTheLeft(QChar c) {
  switch (c.direction()) {
    case QChar::DirR:
    case QChar::DirAL:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirRLI:
      return true;
    default:
      return c.isSurrogate();  // some scripts beyond
  }
}

/// In a word, the toolkit looks for a place to break at from each line to the end of the word: 0.8 s for 100,000
/// characters, where breaking anywhere takes 0.02 s.
QTextOption::WrapMode wrapModeOf(const QString& value) {
  constexpr qsizetype longWord = 1000;
  qsizetype word = 0;
  for (const QChar c : value) {
    word = c.isSpace() ? 0 : word + 1;
    if (word > longWord) return QTextOption::WrapAnywhere;
  }
  return QTextOption::WrapAtWordBoundaryOrAnywhere;
}

}  // namespace

ValueField::ValueField(Frame frame, int minLines, int maxLines, QWidget* parent)
    : QPlainTextEdit(parent), minLines_(minLines), maxLines_(maxLines) {
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setTabChangesFocus(true);
  setUndoRedoEnabled(false);
  setWordWrapMode(wrapModeOf({}));
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  if (frame == Frame::none) setFrameShape(QFrame::NoFrame);
  fitHeight();
}

void ValueField::setValue(const QString& value, const QString& placeholder) {
  value_ = value;
  shown_ = shownOf(value);
  marks_.clear();
  setPlaceholderText(value.isEmpty() ? placeholder : QString());
  setAccessibleDescription(placeholderText());
  const QString shown = isCut() ? value.left(shown_) + QChar(0x2026) : value;
  QTextOption option = document()->defaultTextOption();
  option.setWrapMode(wrapModeOf(shown));
  // Where it is left open, the toolkit looks for a letter that tells, for each place that it is asked about, and in a
  // text of digits to the end.
  option.setTextDirection(std::any_of(shown.begin(), shown.end(), writesToTheLeft) ? Qt::LayoutDirectionAuto
                                                                                   : Qt::LeftToRight);
  setPlainText({});  // the other value is not laid out once more
  setWordWrapMode(option.wrapMode());
  document()->setDefaultTextOption(option);
  setPlainText(shown);
  fitHeight();
}

void ValueField::setMarks(MarkKind kind, const std::vector<MarkSpan>& marks) {
  markKind_ = kind;
  marks_ = inDocument(value_, shown_, marks);
  showFirstMark();
  viewport()->update();
}

void ValueField::showFirstMark() {
  if (marks_.empty()) return;
  QTextCursor first(document());
  first.setPosition(static_cast<int>(marks_.front().begin));
  setTextCursor(first);
  const QRect caret = cursorRect(first);
  if (!viewport()->rect().contains(caret)) centerCursor();
}

int ValueField::firstLineShown() const {
  return firstVisibleBlock().blockNumber();
}

void ValueField::setMenuTexts(const QString& copy, const QString& selectAll) {
  copyText_ = copy;
  selectAllText_ = selectAll;
}

QSize ValueField::sizeHint() const {
  return {ui::px(this, 160), height()};
}

QSize ValueField::minimumSizeHint() const {
  return {ui::px(this, 80), height()};
}

/// Lines that the text takes at this width; counted only as far as they matter.
int ValueField::lines() const {
  int count = 0;
  for (QTextBlock block = document()->begin(); block.isValid() && count <= maxLines_; block = block.next()) {
    document()->documentLayout()->blockBoundingRect(block);  // lays the block out
    count += std::max(1, block.layout()->lineCount());
  }
  return count;
}

int ValueField::heightOf(int lines) const {
  const int margins = static_cast<int>(2 * document()->documentMargin()) + 2 * frameWidth();
  return lines * fontMetrics().lineSpacing() + margins;
}

void ValueField::fitHeight() {
  const int needed = lines();
  setVerticalScrollBarPolicy(needed > maxLines_ ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
  setFixedHeight(heightOf(std::clamp(needed, minLines_, maxLines_)));
}

void ValueField::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  if (event->size().width() != event->oldSize().width()) fitHeight();
}

void ValueField::changeEvent(QEvent* event) {
  QPlainTextEdit::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) fitHeight();
}

void ValueField::focusInEvent(QFocusEvent* event) {
  QPlainTextEdit::focusInEvent(event);
  viewport()->update();
}

void ValueField::focusOutEvent(QFocusEvent* event) {
  QPlainTextEdit::focusOutEvent(event);
  viewport()->update();
}

void ValueField::paintMarksIn(const QRect& part) {
  QPainter painter(viewport());
  const MarkLook look = MarkLook::of(*this, markKind_);
  QPointF origin = contentOffset();
  for (QTextBlock block = firstVisibleBlock(); block.isValid() && origin.y() <= part.bottom(); block = block.next()) {
    paintMarks(painter, block, origin, part, marks_, look);
    origin.ry() += blockBoundingRect(block).height();
  }
}

void ValueField::paintEvent(QPaintEvent* event) {
  if (!marks_.empty()) paintMarksIn(event->rect());
  QPlainTextEdit::paintEvent(event);
  if (frameShape() != QFrame::NoFrame || !hasFocus()) return;
  QPainter painter(viewport());
  painter.setRenderHint(QPainter::Antialiasing);
  const qreal width = ui::px(this, 1);
  painter.setPen(QPen(ui::Theme::of(*this).accent, width));
  const qreal half = width / 2;
  painter.drawRoundedRect(QRectF(viewport()->rect()).adjusted(half, half, -half, -half), ui::px(this, 3),
                          ui::px(this, 3));
}

void ValueField::contextMenuEvent(QContextMenuEvent* event) {
  // The toolkit's own menu is in the system's language, not the viewer's.
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  QAction* const copySelected = menu->addAction(ui::icon(ui::IconName::Copy), copyText_, this, [this] { copy(); });
  copySelected->setShortcut(QKeySequence::Copy);
  copySelected->setEnabled(textCursor().hasSelection());
  QAction* const all = menu->addAction(selectAllText_, this, [this] { selectAll(); });
  all->setShortcut(QKeySequence::SelectAll);
  all->setEnabled(!toPlainText().isEmpty());
  menu->popup(event->globalPos());
}

}  // namespace korvel::control
