#pragma once

class QWidget;

namespace korvel::control {

/// Gives a new window the size that is remembered for its name, as far as the screen has room for it. From then on the
/// size at each closing is remembered, if it is another one than when the window was shown; that of a maximised window
/// is not, because nobody chose it.
void rememberSize(QWidget& window);

}  // namespace korvel::control
