#include "control/message_boxes.h"

#include <QAbstractButton>
#include <QPointer>
#include <exception>
#include <memory>
#include <utility>

#include "base/error.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {

QString messageTitle() {
  return QStringLiteral("KorvelAudit Viewer Message");
}

QString noRecordsTitle() {
  return QStringLiteral("velAudit Viewer Message");
}

void MessageBoxes::trapped(std::string_view operationName, const std::function<void()>& operation,
                           const QString& hint) const {
  const QPointer<AuditViewer> alive(&viewer_);
  std::int32_t number = 0;
  QString description;
  try {
    operation();
    return;
  } catch (const Error& error) {
    number = error.number();
    description = failureText(error);
  } catch (const std::exception& failure) {
    number = unspecifiedFailure;
    description = QString::fromLocal8Bit(failure.what());
  }
  // Dialogs may outlive the control, and fail afterwards.
  if (!alive) return;
  show(ui::MessageIcon::critical, QString(),
       QString::number(number) + QStringLiteral(":Error in ") + fromUtf8(operationName) +
           QStringLiteral(".  Error Message: ") + description +
           (hint.isEmpty() ? hint : QStringLiteral("\r\n") + hint));
}

void MessageBoxes::onClick(QAbstractButton* button, const char* handlerName,
                           const std::function<void()>& handler) const {
  QObject::connect(button, &QAbstractButton::clicked, &viewer_,
                   [this, handler, handlerName] { trapped(handlerName, handler); });
}

void MessageBoxes::inform(const QString& title, const QString& text) const {
  show(ui::MessageIcon::information, title, text);
}

void MessageBoxes::show(ui::MessageIcon icon, const QString& title, const QString& text) const {
  const std::shared_ptr<ControlServices> services = platform().services;
  services->messageBox(&viewer_, icon, title, text);
}

}  // namespace korvel::control
