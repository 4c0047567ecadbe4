#include "ui/card_frame.h"

#include <QEvent>
#include <QLayout>
#include <QStyleOptionGroupBox>

#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {

CardFrame::CardFrame(QWidget* parent) : CardFrame(QString(), parent) {}
CardFrame::CardFrame(const QString& title, QWidget* parent) : QGroupBox(title, parent) {}

void CardFrame::setSideInset(int pixels) {
  if (pixels == sideInset_) return;
  sideInset_ = pixels;
  setDistances();
  update();
}

void CardFrame::setDistances() {
  if (layout() == nullptr) return;
  const int distance = qobject_cast<const ViewerStyle*>(style()) != nullptr ? 0 : px(this, space::inside);
  layout()->setContentsMargins(distance + sideInset_, distance, distance + sideInset_, distance);
}

void CardFrame::initStyleOption(QStyleOptionGroupBox* option) const {
  QGroupBox::initStyleOption(option);
  if (option != nullptr) option->rect.adjust(sideInset_, 0, -sideInset_, 0);
}

bool CardFrame::event(QEvent* event) {
  if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange) setDistances();
  return QGroupBox::event(event);
}

}  // namespace korvel::ui
