#include "control/look/card_frame.h"

namespace korvel::look {

CardFrame::CardFrame(QWidget* parent) : CardFrame(QString(), parent) {}
CardFrame::CardFrame(const QString& title, QWidget* parent) : QGroupBox(title, parent) {}

}  // namespace korvel::look
