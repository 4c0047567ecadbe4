#include "control/look/card_frame.h"

#include <QEvent>
#include <QLayout>

#include "control/look/look_style.h"
#include "control/look/theme.h"

namespace korvel::look {

CardFrame::CardFrame(QWidget* parent) : CardFrame(QString(), parent) {}
CardFrame::CardFrame(const QString& title, QWidget* parent) : QGroupBox(title, parent) {}

bool CardFrame::event(QEvent* event) {
  if ((event->type() == QEvent::Polish || event->type() == QEvent::StyleChange) && layout() != nullptr) {
    const int distance = qobject_cast<const LookStyle*>(style()) != nullptr ? 0 : px(this, space::inside);
    layout()->setContentsMargins(distance, distance, distance, distance);
  }
  return QGroupBox::event(event);
}

}  // namespace korvel::look
