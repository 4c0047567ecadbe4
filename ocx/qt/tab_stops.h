#pragma once

class QWidget;

/// The Tab key in a control that is one of many in a container: it moves inside, and leaves at the ends.
namespace korvel::ocx {

/// Whether Tab, or Shift and Tab for `backwards`, would leave `viewer` from the element that has the focus. Elements
/// that write a tab themselves keep the key.
[[nodiscard]] bool tabLeaves(const QWidget& viewer, bool backwards);

/// Gives the focus to the first element that Tab reaches, or to the last.
void focusEnd(QWidget& viewer, bool last);

}  // namespace korvel::ocx
