#pragma once

#include <QString>
#include <functional>
#include <string_view>

#include "ui/dialog_services.h"

class QAbstractButton;

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

/// Title of the control's information messages.
[[nodiscard]] QString messageTitle();
/// Title of the messages that a query has found nothing. Deliberately not that of the others.
[[nodiscard]] QString noRecordsTitle();

/// The message boxes of one control, above all those of its error traps. A box may outlive the control.
class MessageBoxes {
 public:
  /// Boxes belong to `viewer`.
  explicit MessageBoxes(AuditViewer& viewer) : viewer_(viewer) {}

  void inform(const QString& title, const QString& text) const;
  /// Runs `operation`. A failure shows the box of that operation's error trap, with the hint on a line of its own;
  /// nothing is shown where the control is gone by then.
  void trapped(std::string_view operationName, const std::function<void()>& operation, const QString& hint = {}) const;
  /// A click of the button runs the handler; its failures are shown under its name.
  void onClick(QAbstractButton* button, const char* handlerName, const std::function<void()>& handler) const;

 private:
  void show(ui::MessageIcon icon, const QString& title, const QString& text) const;

  AuditViewer& viewer_;
};

}  // namespace korvel::control
