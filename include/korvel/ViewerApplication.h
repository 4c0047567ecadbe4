#pragma once

#include <QIcon>
#include <QList>
#include <QString>
#include <string_view>
#include <utility>

#include "korvel/Export.h"

class QApplication;
class QWidget;

/// What a program around the control can share with it: language, texts, appearance, and where the viewer is installed.
/// All of it is for the user-interface thread. Nothing here throws.
namespace korvel {

/// One of the five languages, as the offset that the settings hold: "0" English, "10000" German, "20000" French,
/// "30000" Spanish, "40000" Italian.
class KORVEL_AUDIT_VIEWER_EXPORT ViewerLanguage {
 public:
  /// English.
  ViewerLanguage() = default;
  /// English for every text that is none of the five offsets.
  explicit ViewerLanguage(QString offset) : offset_(std::move(offset)) {}

  /// The language that the viewer is set to; English where the settings cannot be read: the control itself says then
  /// what is wrong with them.
  [[nodiscard]] static ViewerLanguage current();

  [[nodiscard]] const QString& offset() const noexcept { return offset_; }

  /// A text of the viewer by its key, with "%1" and "%2" filled; empty for a key that there is not.
  [[nodiscard]] QString text(std::string_view key, const QString& first = {}, const QString& second = {}) const;

 private:
  QString offset_ = QStringLiteral("0");
};

/// Gives `root` and everything below it, now and later, the style that the control has by itself. Call it once, first
/// in the constructor of a window or a dialog without a parent.
KORVEL_AUDIT_VIEWER_EXPORT void applyViewerStyle(QWidget& root);

/// For a stand-alone viewer: sets the light or the dark palette, as the environment variable KORVEL_THEME ("light",
/// "dark", "native") or else the system requires, and follows changes of the system. While the system uses a
/// high-contrast theme, its colours are kept.
KORVEL_AUDIT_VIEWER_EXPORT void applyPreferredPalette(QApplication& application);

/// The viewer's own icon, in all sizes that systems ask for.
[[nodiscard]] KORVEL_AUDIT_VIEWER_EXPORT QIcon viewerIcon();

/// Shows a warning with an OK button in the viewer's style and returns when it has been answered. Ctrl+C copies title
/// and text; the text is shown as it is, never as markup.
KORVEL_AUDIT_VIEWER_EXPORT void showWarning(QWidget* owner, const QString& title, const QString& text);

/// Writes the demo databases for the server "(embedded)" where it has none of their names; those that are there stay.
/// Windows are painted meanwhile, and Esc stops waiting. Returns what went wrong, or an empty text.
[[nodiscard]] KORVEL_AUDIT_VIEWER_EXPORT QString provideDemoTrail();

/// Tells the control where the viewer is installed, which is where it looks for the help files: stores "ViewerAppPath"
/// as the viewer in `folder`. A path that is stored already stays for as long as its folder exists; afterwards the
/// viewer has moved. Where the settings cannot be read or written there is no help, and the control says what is wrong
/// with the settings.
KORVEL_AUDIT_VIEWER_EXPORT void provideViewerPath(const QString& folder);

/// From now on the controls of the process remember in this file, from one start of the program to the next: databases
/// that were selected, columns that a person arranged, texts that were searched for, queries, folders, sizes of
/// windows. Without this call nothing is remembered. The file belongs to the program: it is made when there is
/// something to remember, several programs may use one, and nothing is said where it cannot be written. The environment
/// variable KORVEL_REMEMBER limits it: "layout" to columns and sizes, "nothing" to nothing. To be called before the
/// first control is made.
KORVEL_AUDIT_VIEWER_EXPORT void rememberIn(const QString& file);

/// A server and one of its databases.
struct RecentDatabase {
  QString server;
  QString database;
  friend bool operator==(const RecentDatabase& one, const RecentDatabase& other) {
    return one.server == other.server && one.database == other.database;
  }
};

/// The databases that were selected last, the newest first; none while nothing is remembered. AuditViewer::OpenDatabase
/// selects one.
[[nodiscard]] KORVEL_AUDIT_VIEWER_EXPORT QList<RecentDatabase> recentDatabases();

/// For a program in which forms are drawn, such as Qt Designer: from now on the controls of the process select no
/// database, read and write no settings (their language is English), and open no dialog, file or program. To be called
/// before the first control is made; there is no way back.
KORVEL_AUDIT_VIEWER_EXPORT void useDesignMode();

}  // namespace korvel
