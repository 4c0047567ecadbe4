#pragma once

#include <QIcon>
#include <span>

class QPalette;

namespace korvel::ui {

/// The icons of commands. A command has the same one in menus, on the tool bar and on buttons.
enum class IconName {
  Select,
  Info,
  Query,
  Clear,
  SelectAll,
  UnselectAll,
  Export,
  Columns,
  SideTools,
  Print,
  PageSetup,
  DateRange,
  ClearDate,
  Font,
  Language,
  About,
  Exit,
  Open,
  Save,
  Fields,
  Copy,
  Server,
  ZoomIn,
  ZoomOut,
  FitWidth,
  FitPage,
  FirstPage,
  PreviousPage,
  NextPage,
  LastPage,
  PreviousYear,
  NextYear,
  PageMark,
  SortAscending,
  SortDescending,
  Viewer,
  PreviousHit,
  NextHit,
  Close,
  FilterRows,
  More,
};

/// An icon and the file that it is drawn from. For tests, which draw all of them.
struct IconFile {
  IconName name;
  const char* file;
};
[[nodiscard]] std::span<const IconFile> iconFiles();

/// The colour of an icon: that of the surrounding text, the accent, or that of text on a filled button. Disabled icons
/// have the colour of disabled text, whatever the tone. While the system uses a high-contrast theme, all others have
/// the colour of text.
enum class IconTone { Text, Accent, OnFill };

/// The icon of a command. It is drawn anew whenever it is painted, in the palette of the widget whose style paints it,
/// else of the application. One QIcon therefore serves light and dark windows and every pixel ratio.
[[nodiscard]] QIcon icon(IconName name, IconTone tone = IconTone::Text);

/// While it exists, icons that are painted outside ViewerStyle take this palette's colours. For paintEvent functions.
class IconPalette {
 public:
  explicit IconPalette(const QPalette& palette);
  ~IconPalette();
  IconPalette(const IconPalette&) = delete;
  IconPalette& operator=(const IconPalette&) = delete;

  /// The palette of the innermost object; null where there is none.
  [[nodiscard]] static const QPalette* current();

 private:
  const QPalette* outer_;
};

}  // namespace korvel::ui
