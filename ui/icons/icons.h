#pragma once

#include <QIcon>
#include <span>

class QPalette;

namespace korvel::ui {

/// One drawing per command, the same on menu, tool bar and side button.
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
  More,
};

/// Every name with its file. For tests, which draw them all.
struct IconFile {
  IconName name;
  const char* file;
};
[[nodiscard]] std::span<const IconFile> iconFiles();

/// What an icon is drawn in: the text colour of what it stands on, the accent, or the colour that is read on a filled
/// button. Disabled icons are drawn in the disabled text colour whatever the tone, and all others in that of the text
/// while the system has a scheme of strong contrast on.
enum class IconTone { Text, Accent, OnFill };

/// The icon of a command. It is drawn when it is painted, in the colours of that moment's palette: of the widget in
/// whose style it is painted, else of the application. One QIcon therefore serves light, dark and every pixel ratio.
[[nodiscard]] QIcon icon(IconName name, IconTone tone = IconTone::Text);

/// While it lives, icons painted outside of a ViewerStyle take this palette's colours. For paint events of our own.
class IconPalette {
 public:
  explicit IconPalette(const QPalette& palette);
  ~IconPalette();
  IconPalette(const IconPalette&) = delete;
  IconPalette& operator=(const IconPalette&) = delete;

  /// The innermost palette that is set, null if none is.
  [[nodiscard]] static const QPalette* current();

 private:
  const QPalette* outer_;
};

}  // namespace korvel::ui
