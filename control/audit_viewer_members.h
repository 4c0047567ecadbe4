#pragma once

#include <QDateTime>
#include <QPointer>
#include <chrono>
#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "control/commands/command_item.h"
#include "control/forms/record_view.h"
#include "control/library_state.h"
#include "control/shown_answer.h"
#include "control/stored_properties.h"
#include "control/surface.h"
#include "korvel/AuditViewer.h"
#include "output/row_progress.h"
#include "query/custom_query.h"

namespace korvel {

/// What one instance of the control is made of: its four stored properties, its surface, and the handlers of its
/// buttons. Members may throw; the public face traps.
class Q_DECL_HIDDEN AuditViewer::Members {
 public:
  explicit Members(AuditViewer& viewer);
  ~Members();
  Members(const Members&) = delete;
  Members& operator=(const Members&) = delete;

  /// Runs `operation`. A failure shows the box of that operation's error trap, with the hint on a line of its own.
  void trapped(std::string_view operationName, const std::function<void()>& operation, const QString& hint = {});

  void Initialize();
  void Show();
  /// Places the elements for the control's present size.
  void arrange() { surface.arrange(appliedSideTools); }

  void ChangeFont();
  void DisplayNoOfRecords();
  void TriggerQuery();
  /// Nothing while an earlier one of this control still loads.
  void TriggerAdvancedQuery(const QString& QueryString);
  void ExportNotepad();
  void ExportExcel();
  /// The report as btPrint_Click has it, in the preview instead of on paper.
  void PreviewReport();
  [[nodiscard]] QString GetExportPath(const QString& dialogtext, int files);
  /// Disable and enable what needs a database. Throw where a command that they reach has not been built.
  void LockControls() { setLocked(true); }
  void UnlockControls() { setLocked(false); }
  void ViewTools(bool visable);
  void BuildMenu();
  void BuildToolbar();
  void ShowKeyField(bool vis);
  void BuildPopup(const QString& PopupItem);
  void SwitchLanguage();
  /// Sizes one column, or all of them, to their contents; the key columns then are as the menu has them.
  void AutoSizeColumns(control::ResultListView& list, std::optional<int> column = {});
  void ListViewColSetup();
  void BuildMisc();
  void OpenDefaultSQLServer();
  void SelectDatabase();
  void HelpContents();
  void HelpSearch();
  void ShowAbout();

  void btQuery_Click();
  void btClear_Click();
  void btSelectDB_Click();
  void btSelectALL_Click();
  void btUnselectALL_Click();
  void btDBInfo_Click();
  void btDateRangeFilter_Click();
  void btClearDateRange_Click();
  void btOpen_Click();
  void btSave_Click();
  void btClearAdvQuery_Click();
  void btEmunFields_Click();
  void btExcel_Click();
  void btPrint_Click();
  void SSTab1_Click();
  void lvListView_DblClick(control::ResultListView& list, int row);
  void mnupopupitem_Click(int index);

  control::StoredProperties properties;
  /// ViewSideTools as the elements are placed by it: a value that was read takes effect at the next show only.
  bool appliedSideTools = true;

  /// Why the last query failed; empty where it did not.
  struct LastFailure {
    int number = 0;
    QString text;
    QDateTime time;
  };
  LastFailure lastFailure;

  query::ResultLists lists;
  query::FilterTree filterTree;
  control::Surface surface;

 private:
  /// An element that needs a database, and what else it needs.
  struct LockedElement {
    QWidget* element;
    std::function<bool()> available;
  };

  /// The instances that live. Used from the user-interface thread only.
  static std::vector<Members*>& instances() {
    static std::vector<Members*> all;
    return all;
  }

  /// A command as it was clicked. Its item may be gone before its action has ended.
  struct ClickedCommand {
    std::string key;
    bool checked = false;
  };
  /// What a key does. A command without an action is there, and disabled, until the part that it needs exists.
  struct CommandAction {
    std::string_view key;
    void (*run)(Members& members, const ClickedCommand& command) = nullptr;
    /// What else has to be so; empty for nothing.
    bool (*available)(const Members& members) = nullptr;
  };
  /// In the order in which keys are compared; the first that is the same to the letter acts.
  [[nodiscard]] static std::span<const CommandAction> menuActions() noexcept;
  [[nodiscard]] static std::span<const CommandAction> toolbarActions() noexcept;
  [[nodiscard]] static const CommandAction* actionOf(std::span<const CommandAction> actions, std::string_view key);
  [[nodiscard]] bool isAvailable(std::span<const CommandAction> actions, const control::CommandItem& item) const;

  void connectCommands();
  /// Puts a query file into the query text. Throws Error where it cannot be read.
  void openQueryFile(const std::string& path);
  /// The query of the page in front, as its button runs it; nothing while the button is disabled.
  void runQueryByKey();
  void connectContextMenus();
  void SmartMenu_Click(const control::CommandItem& item);
  void SmartMenu_Highlight(const control::CommandItem& item);
  void SmartToolbar_Click(const control::CommandItem& item);
  void SmartPopup_Click(const control::CommandItem& item);
  void chooseLanguage(std::string_view offset);
  void adjustColumns();
  void showFontMenu(const QPoint& place);
  void showColumnMenu(control::ResultListView& list, const QPoint& place);
  void showColumns(control::ResultListView& list, const QString& caption, bool shown);

  void setLocked(bool locked);
  /// A click runs the handler; its failures are shown under its name.
  void onClick(QAbstractButton* button, void (Members::*handler)(), const char* handlerName);
  void connectHandlers();
  void connectCustomPage();
  /// Texts and names of the custom page in the current language.
  void nameCustomPage();
  /// An empty query text on the page that is shown becomes the query for everything.
  void offerCustomQuery();
  /// What may be done with an answer.
  enum class AnswerUse {
    controlIsGone,  ///< nothing of the control may be used any more
    nobodys,        ///< another database was selected meanwhile
    shown
  };
  /// Runs what asks a database; windows are painted meanwhile, Esc stops it, and nothing else happens. The control may
  /// be gone afterwards.
  [[nodiscard]] AnswerUse runWatched(const std::function<void(const db::Attendance& goOn)>& ask);
  void connectOutput();
  /// Whether the current list has rows; says so where it has none.
  bool hasSomethingToExport();
  /// A file that was written, and how many characters it does not hold.
  struct Exported {
    QString file;
    std::size_t replaced;
  };
  /// The steps that both exports share; `open` comes when the file is there and the status panel says so.
  void exportCurrentList(
      const std::function<Exported(const results::ResultList& list, const output::RowProgress& progress)>& write,
      const std::function<void(const QString& file)>& open = {});
  void writeReport();
  void WebBrowser1_DocumentComplete();
  void fillLockTable();
  void enableElements();
  void nameForAssistance();
  void chooseHelpFile();
  void openHelp(control::HelpCommand command);
  void showDateRange();
  /// The last day of which one of the standard lists shows a row.
  [[nodiscard]] std::optional<std::chrono::year_month_day> newestDayShown() const;
  /// The range is everybody's: no instance may go on showing another one than its next query sends.
  static void showDateRangeEverywhere();
  void clearAllLists();
  void announceSelection();
  void setLastFailure(LastFailure failure);
  /// Tells the host of a query that failed; the control may be gone afterwards.
  void queryFailed(const Error& failure);
  /// What the status panel says while nothing goes on and no command is highlighted.
  [[nodiscard]] QString restingText() const;
  void showRestingText();
  /// Brings the resting text up to date where the panel shows it.
  void followRestingText();
  /// The selected database is everybody's.
  static void followSelectionEverywhere();
  /// Whether a database has been selected that this instance can query.
  [[nodiscard]] bool hasDatabase() const;
  /// What the standard query would ask at present.
  [[nodiscard]] std::string standardQuestion() const;
  /// Whether the current page shows the answer to another question than would be asked at present.
  [[nodiscard]] bool isOutOfDate() const;
  /// Says of the current page that it shows alarm rows of all dates; empty where it does not.
  [[nodiscard]] QString alarmRemark() const;
  [[nodiscard]] QString emptyText(const control::ShownAnswer& answer, bool custom) const;
  /// What empty lists say in the place of records.
  void showEmptyTexts();
  /// From now on these lists show `answer`.
  void answered(control::ShownAnswer& shown, control::ShownAnswer answer);
  /// The query is over, also where a failure of the control itself kept its end from being noted.
  void endAnswer(control::ShownAnswer& shown);
  [[nodiscard]] control::ResultListView& currentList();
  void message(ui::MessageIcon icon, const QString& title, const QString& text);

  AuditViewer& viewer_;
  /// Made when a record is looked at for the first time; keeps its size from then on.
  QPointer<control::RecordView> recordView_;
  control::CommandItems menuItems_;
  control::CommandItems toolbarItems_;
  control::CommandItems popupItems_;
  /// The list whose columns the context menu is about.
  QPointer<control::ResultListView> popupList_;
  std::vector<LockedElement> lockTable_;
  bool locked_ = false;
  /// What the lists of the five standard pages show, and that of the custom page.
  control::ShownAnswer standardAnswer_;
  control::ShownAnswer customAnswer_;
  QString shownRestingText_;
  /// How often a database was selected: an answer that was asked for before the last time is not shown.
  int selections_ = 0;
  /// What a list told last; until the next query, a change of the page or the end of the rows that it is about.
  QString notice_;
};

}  // namespace korvel
