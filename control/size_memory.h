#pragma once

class QWidget;

namespace korvel::control {

/// Gives a new window the size that is remembered for its name, as far as the screen has room for it, and remembers the
/// size that it has whenever it is closed. A maximised window's size is none that a person chose.
void rememberSize(QWidget& window);

}  // namespace korvel::control
