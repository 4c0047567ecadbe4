#pragma once

#include <QColor>

namespace korvel::ui {
struct Theme;
}

namespace korvel::query {

/// What SQL is written in. All of it keeps a contrast of at least 4.5:1 to the editor's ground, to the ground of the
/// line that an error was found in, and to a pair of parentheses.
struct SqlColours {
  QColor keyword;
  QColor literal;  ///< texts and numbers
  QColor comment;
  QColor errorLine;  ///< ground
  QColor pair;       ///< ground of two parentheses that belong together

  [[nodiscard]] static SqlColours of(const ui::Theme& theme);
};

}  // namespace korvel::query
