#pragma once

#include <QAccessible>

class QWidget;

namespace korvel::ui {

/// Says to assistive technology what a widget is that draws itself: to be called before anything asks for its
/// interface.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

}  // namespace korvel::ui
