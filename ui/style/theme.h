#pragma once

#include <QColor>
#include <QPalette>

class QFont;
class QWidget;

namespace korvel::ui {

/// The colours of the window. All of them are derived from a palette, so that the control fits its host, light or dark.
/// Every text colour keeps a contrast of at least 4.5:1 to the grounds it is used on, `disabled` at least 3:1; so do
/// the marks that tell something (tick, page marker, an empty check box, focus). While the system has a scheme of
/// strong contrast on, they are the palette's own colours, none of them a tint.
struct Theme {
  bool dark = false;

  QColor window;        ///< ground of the window, tool bar, status bar
  QColor surface;       ///< ground of cards, pages, lists, fields
  QColor header;        ///< ground of list headers
  QColor alternateRow;  ///< every second row of a list
  QColor hover;         ///< under the pointer: buttons, tool bar, menu
  QColor pressed;       ///< while held down, and what is switched on
  QColor selection;     ///< selected row

  QColor border;   ///< quiet lines: frames, separators
  QColor control;  ///< lines that must be seen: an empty check box, the handle of a scroll bar

  QColor text;
  QColor onSelection;  ///< on `selection`: `text`, unless the system inverts what is selected
  QColor muted;        ///< captions, other pages' tabs, messages in grey
  QColor disabled;     ///< texts and icons that cannot be used now

  QColor removed;      ///< ground of characters that an old value alone has
  QColor removedLine;  ///< under them, and as visible as a tick
  QColor added;        ///< the same of a new value
  QColor addedLine;

  QColor accent;    ///< ticks, page marker, sort arrow, focus
  QColor onAccent;  ///< drawn on `accent`
  QColor fill;      ///< ground of the primary button
  QColor fillHover;
  QColor fillPressed;
  QColor onFill;  ///< drawn on the three above

  /// The theme of a palette. Cheap: the last few palettes are remembered.
  [[nodiscard]] static const Theme& of(const QPalette& palette);
  [[nodiscard]] static const Theme& of(const QWidget& widget);
};

/// Contrast of two opaque colours, 1 (none) to 21 (black on white), as accessibility guidelines compute it.
[[nodiscard]] double contrastRatio(const QColor& one, const QColor& other);

/// `from` moved towards `to`: 0 is `from`, 1 is `to`.
[[nodiscard]] QColor mixed(const QColor& from, const QColor& to, double share);

/// Lengths of the layout at 96 dpi; hand them to px().
namespace space {
inline constexpr int inGroup = 4;  ///< between the members of a group
inline constexpr int inside = 8;   ///< between a frame and what is in it
inline constexpr int between = 8;  ///< between frames
inline constexpr int dialog = 12;  ///< around the content of a dialog
inline constexpr int radius = 4;
inline constexpr int cardRadius = 6;
inline constexpr int icon = 16;
inline constexpr int button = 30;  ///< height of a button
inline constexpr int field = 28;   ///< height of a line of input
inline constexpr int toolBar = 40;
inline constexpr int tab = 28;
inline constexpr int listRow = 25;
inline constexpr int listHeader = 29;
inline constexpr int treeRow = 24;
inline constexpr int check = 14;  ///< a check box
}  // namespace space

/// `at96` pixels of a 96 dpi screen in the pixels of the widget's screen (of the first screen without a widget).
[[nodiscard]] int px(const QWidget* widget, int at96);

/// The font in semi-bold; small captions are also a little smaller than the text.
[[nodiscard]] QFont semiBold(QFont font);
[[nodiscard]] QFont caption(QFont font);

}  // namespace korvel::ui
