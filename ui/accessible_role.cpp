#include "ui/accessible_role.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace korvel::ui {

namespace {

constexpr const char* roleProperty = "korvelAccessibleRole";

QAccessibleInterface* interfaceOfRole(const QString& /*className*/, QObject* object) {
  auto* const widget = qobject_cast<QWidget*>(object);
  if (widget == nullptr) return nullptr;
  const QVariant role = widget->property(roleProperty);
  if (!role.isValid()) return nullptr;
  return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
}

}  // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
  static const bool installed = (QAccessible::installFactory(&interfaceOfRole), true);
  Q_UNUSED(installed)
  widget.setProperty(roleProperty, static_cast<int>(role));
}

}  // namespace korvel::ui
