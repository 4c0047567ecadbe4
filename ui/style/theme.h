#pragma once

#include <QColor>
#include <QPalette>

class QFont;
class QWidget;

namespace korvel::ui {

/// The colours of the window, derived from a palette, so that the control fits its host, light or dark. Text colours
/// have a contrast of at least 4.5:1 to the backgrounds that they are used on; `disabled` and the marks that carry
/// information (tick, page marker, empty check box, focus) at least 3:1. While the system uses a high-contrast theme,
/// the colours are those of the palette, without tints.
struct Theme {
  bool dark = false;

  QColor window;        ///< background of the window, tool bar, status bar
  QColor surface;       ///< background of cards, pages, lists, fields
  QColor header;        ///< background of list headers
  QColor alternateRow;  ///< every second row of a list
  QColor hover;         ///< background of the button or menu item under the pointer
  QColor pressed;       ///< background of a button that is pressed or switched on
  QColor selection;     ///< selected row
  QColor found;         ///< behind a text that was searched for; `text` is read on it. Invalid where nothing is tinted
  QColor foundCurrent;  ///< the same, of the hit that the search stands on

  QColor border;   ///< weak lines: frames, separators
  QColor control;  ///< lines that carry information: an empty check box, the handle of a scroll bar

  QColor text;
  QColor onSelection;  ///< text on `selection`: `text`, unless the system inverts selected text
  QColor muted;        ///< captions, tabs of other pages, grey messages
  QColor disabled;     ///< disabled texts and icons

  QColor removed;      ///< ground of characters that an old value alone has
  QColor removedLine;  ///< under them, and as visible as a tick
  QColor added;        ///< the same of a new value
  QColor addedLine;

  QColor accent;    ///< ticks, page marker, sort arrow, focus
  QColor onAccent;  ///< text and marks on `accent`
  QColor fill;      ///< background of the primary button
  QColor fillHover;
  QColor fillPressed;
  QColor onFill;  ///< text on the three fills

  /// The theme of a palette. Cheap: the themes of the last palettes are kept.
  [[nodiscard]] static const Theme& of(const QPalette& palette);
  [[nodiscard]] static const Theme& of(const QWidget& widget);
};

/// Contrast ratio of two opaque colours as the Web Content Accessibility Guidelines define it: 1 (none) to 21 (black on
/// white).
[[nodiscard]] double contrastRatio(const QColor& one, const QColor& other);

/// A mixture of two colours: `from` for a share of 0, `to` for 1.
[[nodiscard]] QColor mixed(const QColor& from, const QColor& to, double share);

/// Lengths of the layout at 96 dpi, to be converted by px().
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

/// Converts pixels of a 96 dpi screen into pixels of the widget's screen; without a widget, of the first screen.
[[nodiscard]] int px(const QWidget* widget, int at96);

/// The font in semi-bold; small captions are also a little smaller than the text.
[[nodiscard]] QFont semiBold(QFont font);
[[nodiscard]] QFont caption(QFont font);

}  // namespace korvel::ui
