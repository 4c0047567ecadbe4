#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QWidget>
#include <memory>

#include "korvel/Export.h"

namespace korvel {

/// The audit trail viewer: one control that carries filter tree, result lists and status bar. Place it on a form, give
/// it its stored properties (or InitProperties for a new one) and show it. Used from the user-interface thread only.
///
/// No member throws. Failures that a person must know of are shown in message boxes owned by the control.
/// All instances of one process share the selected database, the date range, the language and the print font.
class KORVEL_AUDIT_VIEWER_EXPORT AuditViewer final : public QWidget {
  Q_OBJECT
  // The descriptions of properties, as tools of a host show them: class information of the property's name.
  Q_CLASSINFO("ViewSideTools", "Returns/sets a value that determines whether the side tools are visible")
  Q_CLASSINFO("ViewToolBar", "Returns/sets a value that determines whether the toolbar is visible")

  /// Which audit database the host wants: one of DatabaseTypeEnum; every value but 0 selects the MU database.
  Q_PROPERTY(int DatabaseType READ DatabaseType WRITE setDatabaseType)
  /// Returns/sets a value that determines whether the side tools are visible
  Q_PROPERTY(bool ViewSideTools READ ViewSideTools WRITE setViewSideTools)
  /// Returns/sets a value that determines whether the toolbar is visible
  Q_PROPERTY(bool ViewToolBar READ ViewToolBar WRITE setViewToolBar)
  /// The server to connect to when the control is shown; "(None)" or "" for none. Setting it connects to nothing.
  Q_PROPERTY(QString DefaultSQLServer READ DefaultSQLServer WRITE setDefaultSQLServer)

  // Not among the stored properties: why the last query failed, a custom one too. Standard queries that fail show no
  // message box; their lists say it where the records would be.
  /// The number of the failure, 0 while there is none.
  Q_PROPERTY(int LastFailureNumber READ LastFailureNumber NOTIFY LastFailureChanged STORED false)
  /// What went wrong, in the user's language or the server's words; empty while there is none.
  Q_PROPERTY(QString LastFailureText READ LastFailureText NOTIFY LastFailureChanged STORED false)
  /// When, in local time; not valid while there is none.
  Q_PROPERTY(QDateTime LastFailureTime READ LastFailureTime NOTIFY LastFailureChanged STORED false)
  /// What the selected database is a snapshot of and when it was taken, a sentence in the user's language; empty while
  /// it is none.
  Q_PROPERTY(QString SnapshotText READ SnapshotText NOTIFY SnapshotTextChanged STORED false)

 public:
  enum DatabaseTypeEnum { Korvel_Audit = 0, Korvel_AuditMU = 1 };
  Q_ENUM(DatabaseTypeEnum)

  /// Builds the control. Reads one setting (the language) and opens no database.
  explicit AuditViewer(QWidget* parent = nullptr);
  ~AuditViewer() override;

  [[nodiscard]] int DatabaseType() const;
  void setDatabaseType(int value);
  [[nodiscard]] bool ViewSideTools() const;
  void setViewSideTools(bool value);
  [[nodiscard]] bool ViewToolBar() const;
  void setViewToolBar(bool value);
  [[nodiscard]] QString DefaultSQLServer() const;
  void setDefaultSQLServer(const QString& value);

  /// Gives the four stored properties the values of a new instance. Nothing is shown, hidden or announced.
  void InitProperties();
  /// Takes the stored properties from `bag`, a map of names to values as WriteProperties returns it; an absent name has
  /// its default, and so has every name where `bag` is not valid. Takes effect at the next show. Returns what is wrong
  /// with the first value that cannot be read (its predecessors have been taken then) or with a bag that is no map, or
  /// an empty text.
  [[nodiscard]] QString ReadProperties(const QVariant& bag);
  /// The stored properties as a map of names to values. DefaultSQLServer and DatabaseType are left out where they equal
  /// their default; the two booleans are always there.
  [[nodiscard]] QVariant WriteProperties() const;

  [[nodiscard]] int LastFailureNumber() const;
  [[nodiscard]] QString LastFailureText() const;
  [[nodiscard]] QDateTime LastFailureTime() const;
  [[nodiscard]] QString SnapshotText() const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

  // The members below are in the order of the control's type library; whoever calls by name or number relies on it.
 public Q_SLOTS:
  /// Checks every node of the filter tree.
  void SelectALL();
  /// Unchecks every node of the filter tree.
  void UnselectALL();
  /// Writes the current list as text, separated by commas, and opens it in the text editor.
  void ExportNotepad();
  /// Writes the current list as the exchange file of the spreadsheet export into a folder that the user picks.
  void ExportExcel();
  /// Lets the user choose a folder in a dialog under the title `dialogtext`; above 0, `files` shows files beside the
  /// folders. Returns the folder with a separator at its end, or an empty text where the user cancelled.
  QString GetExportPath(const QString& dialogtext, int files);
  /// Lets the user pick the font of the result lists.
  void ChangeFont();
  /// Shows the row count of the current list in the status bar. A host must call it after TriggerQuery, which leaves
  /// the count as it was. Everything else brings the count up to date itself: the query and clear commands, another
  /// page, another database, TriggerAdvancedQuery.
  void DisplayNoOfRecords();
  /// Runs the standard query of the filter tree. Call DisplayNoOfRecords afterwards.
  void TriggerQuery();
  /// Expands every node of the filter tree.
  void ExpandAll();
  /// Lets the user choose a server and an audit database. DatabaseSelected follows whenever a database is selected
  /// afterwards, also an earlier one.
  void SelectDatabase();
  /// Enables what needs a database.
  void UnlockControls();
  /// Disables what needs a database.
  void LockControls();
  /// Shows or hides the side tools, whatever the property says.
  void ViewTools(bool visable);
  /// Builds the menu anew in the current language; every command in it is enabled then, both check marks are set.
  void BuildMenu();
  /// Builds the toolbar anew in the current language; every command on it is enabled then.
  void BuildToolbar();
  /// Shows the key column of the standard lists (1000 twips wide) or hides it.
  void ShowKeyField(bool vis);
  /// Builds the columns of the five standard result lists.
  void ListViewColSetup();
  /// Builds the context menu: "Font" or "Column"; any other text changes nothing.
  void BuildPopup(const QString& PopupItem);
  /// Runs any SQL text on the selected database and shows its rows on the custom page. While they load, windows are
  /// painted and Esc stops the query; nothing else that a person or a timer does arrives. Calls that are queued do: a
  /// query of this control that is among them does nothing.
  void TriggerAdvancedQuery(const QString& QueryString);
  /// Applies the current language to menu, toolbar and side controls.
  void SwitchLanguage();
  /// Sets the captions and tooltips of the side controls in the current language.
  void BuildMisc();
  /// Selects the database that the properties name, without trying the connection.
  void OpenDefaultSQLServer();

  // Beside the type library's members: what a host may want to put on keys or into menus of its own.

  /// Opens the help file in the current language on its table of contents; shows nothing where no help file is known.
  void HelpContents();
  /// Opens the help file on its index.
  void HelpSearch();
  /// Opens the help at the topic of what has the keyboard: the highlighted entry of an open menu, or the element with
  /// the focus; without a topic on the contents. F1 does so in the control and in its dialogs; a host that puts F1 on a
  /// shortcut of its own calls this.
  void HelpOnFocus();
  /// Shows the about box.
  void ShowAbout();
  /// Prints the current list after the print dialog, as the print command does; nothing while that is locked.
  void PrintReport();
  /// Shows the report of the current list as it would be printed; nothing while the print command is locked.
  void PreviewReport();
  /// Offers to copy the selected audit trail into a snapshot; says so where no database is selected.
  void TakeSnapshot();
  /// Offers to compare a snapshot with the selected database, or with the one that it was taken of.
  void CompareWithSnapshot();
  /// Brings the custom page to the front with the text of a query file in it; nothing is connected or run. Says what is
  /// wrong with a file that cannot be read; page and text stay as they were then.
  void OpenQueryFile(const QString& path);
  /// Selects a database by its names, without trying the connection, whatever the properties name; they stay as they
  /// are. DatabaseSelected follows.
  void OpenDatabase(const QString& server, const QString& database);

 Q_SIGNALS:
  /// A database has been selected: server, " - [", database, "]".
  void DatabaseSelected(const QString& Database);
  /// The user chose to leave; the host decides what that means.
  void ExitApp();
  /// A property has been set: its name. A form that stores the control's properties has something to store.
  void PropertyChanged(const QString& PropertyName);
  /// A query has failed, or the next one has begun and there is no failure any more.
  void LastFailureChanged();
  /// The language has been switched; all captions of the control follow it already.
  void LanguageChanged();
  /// The selected database turned out to be a snapshot, or another one is selected; see SnapshotText.
  void SnapshotTextChanged();

 protected:
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  class Q_DECL_HIDDEN Members;
  std::unique_ptr<Members> members_;
};

}  // namespace korvel
