#include "control/elided_label.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

#include "ui/shown_text.h"

namespace korvel::control {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
}

void ElidedLabel::setContent(const QString& content) {
  setText(content);
  updateToolTip();
}

QString ElidedLabel::shownText() const {
  return fontMetrics().elidedText(ui::visibleFormats(text()), Qt::ElideRight, contentsRect().width());
}

void ElidedLabel::updateToolTip() {
  setToolTip(shownText() == text() ? QString() : ui::plainToolTip(text()));
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  style()->drawItemText(&painter, contentsRect(), int(QStyle::visualAlignment(layoutDirection(), alignment())),
                        palette(), isEnabled(), shownText(), foregroundRole());
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  updateToolTip();
}

void ElidedLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::FontChange) updateToolTip();
}

}  // namespace korvel::control
