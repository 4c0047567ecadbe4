#pragma once

#include <QString>

namespace korvel::control {

/// Title of the control's information messages.
inline QString messageTitle() {
  return QStringLiteral("KorvelAudit Viewer Message");
}

/// Title of the messages that a query has found nothing. Deliberately not that of the others.
inline QString noRecordsTitle() {
  return QStringLiteral("velAudit Viewer Message");
}

}  // namespace korvel::control
