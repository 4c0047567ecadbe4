#include "control/audit_viewer_members.h"

#include <QScopeGuard>
#include <algorithm>
#include <optional>
#include <utility>

#include "base/error.h"
#include "control/commands/command_tables.h"
#include "control/message_titles.h"
#include "control/skip_failing.h"
#include "control/texts.h"
#include "db/connection_state.h"
#include "query/alarm_dates.h"
#include "query/newest_day.h"
#include "settings/stored_language.h"
#include "ui/query_watch.h"

namespace korvel {

using control::AnswerState;
using control::failureText;
using control::libraryState;
using control::loadText;
using control::messageTitle;
using control::noRecordsTitle;
using control::skipFailing;
using control::surroundings;
using ui::fromUtf8;
using ui::MessageIcon;

namespace {

const QString browserForm = QStringLiteral("frmSQLServerBrowser");
const QString dateRangeForm = QStringLiteral("frmAdvancedFilters");
const QString queryingText = QStringLiteral("Querying Database Please Wait....");

/// ListViewColSetup gives the lists their columns, not before: an Initialize that fails earlier leaves them bare.
query::ResultLists listsWithoutColumns() {
  query::ResultLists lists = query::makeResultLists();
  for (results::ResultList& list : lists) list.setColumns({});
  return lists;
}

/// Text of the status panel while the object lives.
class StatusText {
 public:
  StatusText(control::StatusPanels& panels, const QString& text) : panels_(&panels) {
    panels_->setStatus(text);
    // The query blocks: what is not painted now is not seen before it has ended.
    panels_->repaint();
  }
  ~StatusText() {
    if (panels_) panels_->setStatus({});
  }
  StatusText(const StatusText&) = delete;
  StatusText& operator=(const StatusText&) = delete;

 private:
  QPointer<control::StatusPanels> panels_;
};

}  // namespace

AuditViewer::Members::Members(AuditViewer& viewer)
    : lists(listsWithoutColumns()), surface(viewer, lists, filterTree), viewer_(viewer) {
  fillLockTable();
  connectHandlers();
  connectCommands();
  connectContextMenus();
  connectCustomPage();
  connectOutput();
  instances().push_back(this);
}

AuditViewer::Members::~Members() {
  std::erase(instances(), this);
}

void AuditViewer::Members::trapped(std::string_view operationName, const std::function<void()>& operation,
                                   const QString& hint) {
  const QPointer<AuditViewer> alive(&viewer_);
  std::int32_t number = 0;
  QString description;
  try {
    operation();
    return;
  } catch (const Error& error) {
    number = error.number();
    description = failureText(error);
  } catch (const std::exception& failure) {
    number = unspecifiedFailure;
    description = QString::fromLocal8Bit(failure.what());
  }
  // Dialogs may outlive the control, and fail afterwards.
  if (!alive) return;
  message(MessageIcon::critical, QString(),
          QString::number(number) + QStringLiteral(":Error in ") + fromUtf8(operationName) +
              QStringLiteral(".  Error Message: ") + description +
              (hint.isEmpty() ? hint : QStringLiteral("\r\n") + hint));
}

void AuditViewer::Members::message(MessageIcon icon, const QString& title, const QString& text) {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  services->messageBox(&viewer_, icon, title, text);
}

void AuditViewer::Members::Initialize() {
  const auto backend = surroundings().openSettings();
  libraryState().language = settings::storedLanguage(*backend);

  ListViewColSetup();
  BuildMenu();
  BuildToolbar();
  BuildMisc();
  // Nothing can be queried until a database is selected, also where another instance has selected one.
  LockControls();
  surface.tvTreeView->fill();
  surface.tvTreeView->expandNodes();
  surface.tvTreeView->checkAll();
  surface.SSTab1->setCurrentIndex(0);
  libraryState().printFont.name = "Courier";
  libraryState().printFont.size = 9;
}

void AuditViewer::Members::Show() {
  showDateRange();
  surface.SmartToolbar->setVisible(properties.ViewToolBar);
  appliedSideTools = properties.ViewSideTools;
  ViewTools(appliedSideTools);
  if (db::namesAServer(properties.DefaultSQLServer.toStdString())) OpenDefaultSQLServer();
}

void AuditViewer::Members::onClick(QAbstractButton* button, void (Members::*handler)(), const char* handlerName) {
  QObject::connect(button, &QAbstractButton::clicked, &viewer_,
                   [this, handler, handlerName] { trapped(handlerName, [&] { (this->*handler)(); }); });
}

void AuditViewer::Members::connectHandlers() {
  onClick(surface.btQuery, &Members::btQuery_Click, "btQuery_Click");
  onClick(surface.btClear, &Members::btClear_Click, "btClear_Click");
  onClick(surface.btSelectDB, &Members::btSelectDB_Click, "btSelectDB_Click");
  onClick(surface.btDBInfo, &Members::btDBInfo_Click, "btDBInfo_Click");
  onClick(surface.btDateRangeFilter, &Members::btDateRangeFilter_Click, "btDateRangeFilter_Click");
  onClick(surface.btClearDateRange, &Members::btClearDateRange_Click, "btClearDateRange_Click");
  onClick(surface.btSelectALL, &Members::btSelectALL_Click, "btSelectALL_Click");
  onClick(surface.btUnselectALL, &Members::btUnselectALL_Click, "btUnselectALL_Click");
  for (control::ResultListView* list : surface.lvListView) {
    const auto columnClick = [this, list](int column) {
      trapped("lvListView_ColumnClick", [&] { list->clickHeader(column); });
    };
    QObject::connect(list->header(), &QHeaderView::sectionClicked, &viewer_, columnClick);
    QObject::connect(list, &control::ResultListView::sortRequested, &viewer_, columnClick);
    QObject::connect(list, &control::ResultListView::fitRequested, &viewer_,
                     [this, list](int column) { trapped("AutoSizeColumns", [&] { AutoSizeColumns(*list, column); }); });
    QObject::connect(list, &control::ResultListView::recordRequested, &viewer_, [this, list](int row) {
      trapped("lvListView_DblClick", [&] { lvListView_DblClick(*list, row); });
    });
    QObject::connect(list, &control::ResultListView::refused, &viewer_,
                     [this](const QString& text) { message(MessageIcon::information, messageTitle(), text); });
    QObject::connect(list, &control::ResultListView::noticed, &viewer_, [this](const QString& text) {
      notice_ = text;
      showRestingText();
    });
  }
  QObject::connect(surface.tvTreeView, &control::FilterTreeView::checksChanged, &viewer_,
                   [this] { followRestingText(); });
  QObject::connect(surface.SSTab1, &QTabWidget::currentChanged, &viewer_,
                   [this] { trapped("SSTab1_Click", [this] { SSTab1_Click(); }); });
}

void AuditViewer::Members::fillLockTable() {
  const auto always = [] { return true; };
  const auto dateRangeFormExists = [] { return surroundings().services->hasForm(dateRangeForm); };
  lockTable_ = {
      {surface.frameFilter, always},
      {surface.btQuery, always},
      {surface.btClear, always},
      {surface.btSelectALL, always},
      {surface.btUnselectALL, always},
      {surface.btExcel, always},
      {surface.btPrint, always},
      {surface.tvTreeView, always},
      {surface.btDateRangeFilter, dateRangeFormExists},
      {surface.btClearDateRange, always},
  };
  for (control::ResultListView* list : surface.lvListView) lockTable_.push_back({list, always});
}

void AuditViewer::Members::setLocked(bool locked) {
  locked_ = locked;
  enableElements();
  control::enableToolbarCommands(toolbarItems_, !locked);
  control::enableMenuCommands(menuItems_, !locked);
}

void AuditViewer::Members::enableElements() {
  for (const LockedElement& row : lockTable_) row.element->setEnabled(row.available() && !locked_);
}

void AuditViewer::Members::ChangeFont() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const auto font = services->chooseFont(&viewer_, surface.lvListView[0]->font());
  if (!alive || !font) return;
  for (control::ResultListView* list : surface.lvListView) list->setListFont(*font);
}

control::ResultListView& AuditViewer::Members::currentList() {
  return *surface.lvListView.at(surface.currentTab());
}

void AuditViewer::Members::DisplayNoOfRecords() {
  constexpr int recordsOnCurrentTab = 10054;
  const std::size_t count = currentList().listModel().list().rowCount();
  surface.StatusBar1->setRecords(
      fromUtf8(results::recordCountText(count, loadText(recordsOnCurrentTab).toStdString())));
}

namespace {

/// While it lives, no control of the program begins a query: it would run inside of the one that is waited for, which
/// could not be stopped meanwhile.
class QueryRuns {
 public:
  QueryRuns() { libraryState().queryRuns = true; }
  ~QueryRuns() { libraryState().queryRuns = false; }
  QueryRuns(const QueryRuns&) = delete;
  QueryRuns& operator=(const QueryRuns&) = delete;
};

}  // namespace

AuditViewer::Members::AnswerUse AuditViewer::Members::runWatched(
    const std::function<void(const db::Attendance& goOn)>& ask) {
  const QPointer<AuditViewer> alive(&viewer_);
  // Queued calls of the host may select another database, or delete this very control: nothing of it is used below
  // without a look whether it lives.
  const int selection = selections_;
  const auto isStale = [&] { return !alive || selections_ != selection; };
  const QString statusBefore = surface.StatusBar1->status();
  const QueryRuns runs;
  {
    ui::QueryWatch watch;
    ask([&] { return !isStale() && watch.goOn() && !isStale(); });
    // What impatience has sent is still on its way: it was meant for this query and shall not start another one.
    static_cast<void>(watch.goOn());
  }
  if (!alive) return AnswerUse::controlIsGone;
  surface.StatusBar1->setStatus(statusBefore);
  // Rows of a database that is not the selected one any more are nobody's: the lists were cleared of them.
  return isStale() ? AnswerUse::nobodys : AnswerUse::shown;
}

void AuditViewer::Members::TriggerQuery() {
  constexpr int noCriteria = 10060;
  constexpr int noRecords = 10061;
  using Change = control::ResultListModel::RowsChange;

  // A call that was queued while a query runs: it would run inside of that.
  if (libraryState().queryRuns) return;
  const QPointer<AuditViewer> alive(&viewer_);
  setLastFailure({});
  if (!alive) return;
  notice_.clear();
  answered(standardAnswer_, {.state = AnswerState::querying});
  const auto over = qScopeGuard([&] {
    if (alive) endAnswer(standardAnswer_);
  });
  // What is asked now: a host may choose otherwise before the answer is told.
  const query::DateRange range = libraryState().dateRange;
  const query::CategoryFlags flags = filterTree.flags();
  control::ShownAnswer answer{.question = standardQuestion(),
                              .connectionString = libraryState().connection.ConnectionString};
  const auto changeLists = [&](const auto& change) {
    std::array<std::optional<Change>, query::standardListCount> changes;
    for (std::size_t i = 0; i < changes.size(); ++i) changes.at(i).emplace(*surface.models.at(i));
    change();
  };
  changeLists([&] { query::clearStandardLists(lists); });
  DisplayNoOfRecords();
  query::StandardAnswer whole;
  const AnswerUse use = runWatched([&](const db::Attendance& goOn) {
    whole = query::askStandardQuestion({filterTree, range, answer.connectionString}, surroundings().connect, goOn,
                                       surroundings().queryMachine);
  });
  if (use == AnswerUse::controlIsGone) return;
  if (use == AnswerUse::nobodys) whole = query::StandardAnswer::stopped();
  query::QueryReport report;
  // The page that is in front now: a queued call may have chosen another one.
  const bool customPage = surface.currentTab() == query::customList;
  // The custom list keeps its rows and its view: it is sorted below, as by a click on its header.
  const std::size_t sorted = customPage ? query::listCount : surface.currentTab();
  changeLists([&] { report = whole.fill(lists, sorted); });
  if (customPage && report.outcome == query::QueryOutcome::filled)
    skipFailing([&] { surface.models.at(query::customList)->sortRows(); });
  for (control::ResultListView* list : surface.lvListView) list->showSortIcon();

  switch (report.outcome) {
    case query::QueryOutcome::noCriteria:
      answered(standardAnswer_, {});
      message(MessageIcon::information, messageTitle(), loadText(noCriteria));
      break;
    case query::QueryOutcome::noRecords:
      answer.state = AnswerState::nothingFound;
      answered(standardAnswer_, std::move(answer));
      message(MessageIcon::information, noRecordsTitle(), loadText(noRecords));
      break;
    case query::QueryOutcome::stopped:
      answered(standardAnswer_, {.state = AnswerState::stopped});
      notice_ = control::ownText("custom.stopped");
      showRestingText();
      break;
    case query::QueryOutcome::failed: {
      const Error failure = report.failure.value_or(Error(unspecifiedFailure, "unknown failure"));
      answered(standardAnswer_, {.state = AnswerState::failed, .failure = failureText(failure)});
      queryFailed(failure);
      break;
    }
    case query::QueryOutcome::filled:
      answer.state = AnswerState::filled;
      answer.alarmsOfAllDates = query::alarmsComeFromAllDates(flags, range);
      answer.rowLimitReached = report.fullResults > 0;
      answered(standardAnswer_, std::move(answer));
      break;
  }
}

void AuditViewer::Members::queryFailed(const Error& failure) {
  setLastFailure({failure.number(), failureText(failure), QDateTime::currentDateTime()});
}

void AuditViewer::Members::setLastFailure(LastFailure failure) {
  const bool changed = failure.time != lastFailure.time;
  lastFailure = std::move(failure);
  if (changed) Q_EMIT viewer_.LastFailureChanged();
}

void AuditViewer::Members::ViewTools(bool visable) {
  QWidget* const sideTools[] = {surface.tvTreeView, surface.frameFilter, surface.btDateRangeFilter,
                                surface.btClearDateRange, surface.frameTools};
  for (QWidget* element : sideTools) element->setVisible(visable);
  // The resize routine asks the property, not this call's argument.
  arrange();
  viewer_.updateGeometry();
}

void AuditViewer::Members::ShowKeyField(bool vis) {
  constexpr Twips shownWidth{1000};
  for (std::size_t i = 0; i < query::standardListCount; ++i)
    surface.lvListView.at(i)->setColumnTwips(0, vis ? shownWidth : Twips{0});
}

void AuditViewer::Members::ListViewColSetup() {
  for (std::size_t i = 0; i < query::standardListCount; ++i) {
    surface.models.at(i)->setColumns(&query::setUpAuditColumns);
    surface.lvListView.at(i)->applyColumnWidths();
    surface.lvListView.at(i)->showSortIcon();
  }
}

void AuditViewer::Members::clearAllLists() {
  for (const auto& model : surface.models) model->clear();
  notice_.clear();
  answered(customAnswer_, {});
  answered(standardAnswer_, {});
}

void AuditViewer::Members::OpenDefaultSQLServer() {
  db::ConnectionState& connection = libraryState().connection;
  db::openDefaultServer(connection, properties.DefaultSQLServer.toStdString(), properties.DatabaseType);
  announceSelection();
}

void AuditViewer::Members::SelectDatabase() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const QPointer<AuditViewer> alive(&viewer_);
  services->showForm(&viewer_, browserForm);
  if (!alive) return;
  // Deliberately also after Cancel, where an earlier selection is announced once more and its lists are cleared.
  if (!libraryState().connection.ConnectionString.empty()) {
    announceSelection();
    return;
  }
  LockControls();
  followSelectionEverywhere();
}

void AuditViewer::Members::announceSelection() {
  ++selections_;
  const QPointer<AuditViewer> alive(&viewer_);
  Q_EMIT viewer_.DatabaseSelected(fromUtf8(db::selectionText(libraryState().connection)));
  if (!alive) return;
  UnlockControls();
  clearAllLists();
  DisplayNoOfRecords();
  followSelectionEverywhere();
}

void AuditViewer::Members::btQuery_Click() {
  if (libraryState().queryRuns) return;
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const QPointer<AuditViewer> alive(&viewer_);
  {
    std::optional<ui::BusyPointer> busy(std::in_place, *services);
    const StatusText status(*surface.StatusBar1, queryingText);
    if (surface.currentTab() == query::customList)
      viewer_.TriggerAdvancedQuery(surface.txtAdvancedQuery->queryText());
    else
      viewer_.TriggerQuery();
    if (alive) DisplayNoOfRecords();
    // The pointer goes back before the status text goes.
    busy.reset();
  }
  if (alive) showRestingText();
}

void AuditViewer::Members::btSelectDB_Click() {
  viewer_.SelectDatabase();
}

void AuditViewer::Members::btClear_Click() {
  clearAllLists();
  DisplayNoOfRecords();
}

void AuditViewer::Members::btSelectALL_Click() {
  viewer_.SelectALL();
}

void AuditViewer::Members::btUnselectALL_Click() {
  viewer_.UnselectALL();
}

void AuditViewer::Members::btDBInfo_Click() {
  message(MessageIcon::information, fromUtf8(db::databaseInformationTitle),
          fromUtf8(db::databaseInformation(libraryState().connection, libraryState().language)));
}

void AuditViewer::Members::btDateRangeFilter_Click() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  libraryState().newestDay = newestDayShown();
  services->showForm(&viewer_, dateRangeForm);
  // However the dialog was closed, and whoever lives still: the range is in force from now on.
  libraryState().dateRange.DateRangeActive = true;
  showDateRangeEverywhere();
}

std::optional<std::chrono::year_month_day> AuditViewer::Members::newestDayShown() const {
  std::optional<std::chrono::year_month_day> newest;
  // Where memory has run out it is not known.
  skipFailing([&] {
    for (std::size_t i = 0; i < query::standardListCount; ++i) newest = std::max(newest, query::newestDay(lists.at(i)));
  });
  return newest;
}

void AuditViewer::Members::btClearDateRange_Click() {
  libraryState().dateRange.DateRangeActive = false;
  showDateRangeEverywhere();
}

void AuditViewer::Members::lvListView_DblClick(control::ResultListView& list, int row) {
  if (recordView_.isNull()) {
    recordView_ = new control::RecordView(&viewer_);
    QObject::connect(recordView_, &control::RecordView::refused, &viewer_,
                     [this](const QString& text) { message(MessageIcon::information, messageTitle(), text); });
  }
  recordView_->showRecord(list, row);
}

void AuditViewer::Members::SSTab1_Click() {
  offerCustomQuery();
  // What was noticed was about the page that was left.
  notice_.clear();
  followRestingText();
  // The panel speaks of the current tab: it follows when that changes.
  DisplayNoOfRecords();
}

}  // namespace korvel
