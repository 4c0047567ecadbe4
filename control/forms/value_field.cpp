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

ValueField::ValueField(Frame frame, int minLines, int maxLines, QWidget* parent)
    : QPlainTextEdit(parent), minLines_(minLines), maxLines_(maxLines) {
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setTabChangesFocus(true);
  setUndoRedoEnabled(false);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  if (frame == Frame::none) setFrameShape(QFrame::NoFrame);
  fitHeight();
}

void ValueField::setValue(const QString& value, const QString& placeholder) {
  value_ = value;
  setPlaceholderText(value.isEmpty() ? placeholder : QString());
  setAccessibleDescription(placeholderText());
  setPlainText(isCut() ? value.left(shownCharacters) + QChar(0x2026) : value);
  fitHeight();
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

void ValueField::paintEvent(QPaintEvent* event) {
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
