#pragma once

class QPrinter;
class QWidget;

namespace korvel::control {

/// The toolkit's dialog for a printer and its options; false for a cancelled one.
[[nodiscard]] bool showPrintDialog(QWidget* owner, QPrinter& printer);

}  // namespace korvel::control
