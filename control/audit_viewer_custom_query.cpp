// The page of custom queries: what runs them, and the buttons beside their text.
#include <QDir>
#include <QScopeGuard>
#include <array>
#include <utility>

#include "base/paths.h"
#include "control/audit_viewer_members.h"
#include "control/message_titles.h"
#include "control/skip_failing.h"
#include "control/texts.h"
#include "query/custom_query.h"
#include "query/file_names.h"
#include "query/forms/query_file_drop.h"
#include "query/query_file.h"
#include "settings/explained_error.h"

namespace korvel {

using control::AnswerState;
using control::failureText;
using control::libraryState;
using control::messageTitle;
using control::noRecordsTitle;
using control::ownText;
using control::surroundings;
using ui::fromUtf8;
using ui::MessageIcon;

namespace {

const QString fieldsForm = QStringLiteral("frmFields");
const QString fileListForm = QStringLiteral("frmFileList");
const QString noRecordsText = QStringLiteral("No Records Found for Query");
const QString everythingQuery = QStringLiteral("Select * from Korvel_Audit_Trails");

}  // namespace

void AuditViewer::Members::connectCustomPage() {
  onClick(surface.btOpen, &Members::btOpen_Click, "btOpen_Click");
  onClick(surface.btSave, &Members::btSave_Click, "btSave_Click");
  onClick(surface.btClearAdvQuery, &Members::btClearAdvQuery_Click, "btClearAdvQuery_Click");
  onClick(surface.btEmunFields, &Members::btEmunFields_Click, "btEmunFields_Click");

  QObject::connect(surface.txtAdvancedQuery, &query::SqlEditor::runRequested, &viewer_, [this] { runQueryByKey(); });
  auto* drop = new query::QueryFileDrop(*surface.lvListView[query::customList]->parentWidget());
  QObject::connect(drop, &query::QueryFileDrop::dropped, &viewer_, [this](const QString& path) {
    trapped("btOpen_Click", [&] { openQueryFile(path.toStdString()); });
  });
}

void AuditViewer::Members::nameCustomPage() {
  surface.txtAdvancedQuery->setTexts([](std::string_view key) { return ownText(key); });
  surface.txtAdvancedQuery->setAccessibleName(ownText("custom.query"));
  surface.btOpen->setToolTip(ownText("custom.open"));
  surface.btSave->setToolTip(ownText("custom.save"));
  surface.btClearAdvQuery->setToolTip(ownText("custom.clear"));
  surface.btEmunFields->setToolTip(ownText("custom.fields"));
}

void AuditViewer::Members::offerCustomQuery() {
  if (surface.currentTab() == query::customList && surface.txtAdvancedQuery->document()->isEmpty())
    surface.txtAdvancedQuery->setQueryText(everythingQuery);
}

void AuditViewer::Members::TriggerAdvancedQuery(const QString& QueryString) {
  if (libraryState().queryRuns) return;
  const QPointer<AuditViewer> alive(&viewer_);
  setLastFailure({});
  if (!alive) return;
  surface.txtAdvancedQuery->setErrorLine(std::nullopt);
  notice_.clear();
  answered(customAnswer_, {.state = AnswerState::querying});
  const auto over = qScopeGuard([&] {
    if (alive) endAnswer(customAnswer_);
  });
  control::ShownAnswer shown{.connectionString = libraryState().connection.AdvancedConnectionString};
  control::ResultListModel& model = *surface.models.at(query::customList);
  model.clear();
  DisplayNoOfRecords();

  // Apart from the list that is shown, which stays whole whatever is painted meanwhile.
  results::ResultList answer(results::RowFilling::whole);
  query::CustomReport report;
  const std::string text = QueryString.toStdString();
  const AnswerUse use = runWatched([&](const db::Attendance& goOn) {
    const query::QueryProgress progress = [&](std::size_t rows) {
      if (alive && rows > 0) surface.StatusBar1->setStatus(ownText("custom.rowsSoFar").arg(ui::countText(rows)));
      return goOn();
    };
    report = query::runCustomQuery(text, shown.connectionString, surroundings().connect, answer, progress,
                                   surroundings().queryMachine);
  });
  if (use == AnswerUse::controlIsGone) return;
  if (use == AnswerUse::nobodys) report = {query::CustomOutcome::stopped, std::nullopt};

  switch (report.outcome) {
    case query::CustomOutcome::filled:
      model.setColumns([&](results::ResultList& list) { list = std::move(answer); });
      surface.lvListView[query::customList]->applyColumnWidths();
      surface.lvListView[query::customList]->showSortIcon();
      DisplayNoOfRecords();
      shown.state = AnswerState::filled;
      answered(customAnswer_, std::move(shown));
      break;
    case query::CustomOutcome::noRecords:
      shown.state = AnswerState::nothingFound;
      answered(customAnswer_, std::move(shown));
      message(MessageIcon::information, noRecordsTitle(), noRecordsText);
      break;
    case query::CustomOutcome::stopped:
      answered(customAnswer_, {.state = AnswerState::stopped});
      notice_ = ownText("custom.stopped");
      showRestingText();
      break;
    case query::CustomOutcome::failed: {
      const Error failure = report.failure.value_or(Error(unspecifiedFailure, "unknown failure"));
      if (surface.txtAdvancedQuery->queryText() == QueryString) surface.txtAdvancedQuery->setErrorLine(failure.line());
      answered(customAnswer_, {.state = AnswerState::failed, .failure = failureText(failure)});
      // Before the box, which may stand for hours.
      queryFailed(failure);
      if (!alive) return;
      trapped("TriggerAdvancedQuery", [&failure] { throw Error(failure); });
      break;
    }
  }
}

QString AuditViewer::Members::GetExportPath(const QString& dialogtext, int files) {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const std::optional<QString> folder = services->chooseFolder(&viewer_, dialogtext, files > 0);
  // Deliberately also behind a root, which ends in a separator already.
  return folder ? QDir::toNativeSeparators(*folder) + QDir::separator() : QString();
}

void AuditViewer::Members::btSave_Click() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const QString folder = viewer_.GetExportPath(QStringLiteral("Browse for Custom Query Path"), 0);
  if (!alive || folder.isEmpty()) return;
  const QString name = services->inputBox(&viewer_, QStringLiteral("Enter Query Name?"), QStringLiteral("Name"));
  if (!alive || name.isEmpty()) return;
  if (const auto problem = query::fileNameProblem(name.toStdString())) {
    message(MessageIcon::information, messageTitle(), fromUtf8(settings::describe(*problem, libraryState().language)));
    return;
  }
  const std::string text = surface.txtAdvancedQuery->queryText().toStdString();
  if (!query::fitsQueryFile(text)) {
    const bool wanted = services->confirm(&viewer_, messageTitle(), ownText("custom.replaceCharacters"));
    if (!alive || !wanted) return;
  }
  query::saveQueryFile(pathFromUtf8((folder + name).toStdString() + "." + std::string(query::queryFileExtension)),
                       text);
}

void AuditViewer::Members::btOpen_Click() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const QString folder = viewer_.GetExportPath(QStringLiteral("Browse for Custom Query File"), 0);
  if (!alive || folder.isEmpty()) return;
  query::QueryChoices& choices = libraryState().queryChoices;
  choices.folder = folder.toStdString();
  choices.fileName.clear();
  services->showForm(&viewer_, fileListForm);
  if (!alive || choices.fileName.empty()) return;
  openQueryFile(choices.folder + choices.fileName);
}

void AuditViewer::Members::openQueryFile(const std::string& path) {
  // What cannot be read leaves the text as it was.
  const std::string text = query::loadQueryFile(pathFromUtf8(path));
  surface.txtAdvancedQuery->setQueryText(fromUtf8(text));
}

void AuditViewer::Members::btClearAdvQuery_Click() {
  surface.txtAdvancedQuery->setQueryText({});
}

void AuditViewer::Members::btEmunFields_Click() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const QPointer<AuditViewer> alive(&viewer_);
  std::string& picked = libraryState().queryChoices.pickedQuery;
  picked.clear();
  services->showForm(&viewer_, fieldsForm);
  if (!alive || picked.empty()) return;
  surface.txtAdvancedQuery->setQueryText(fromUtf8(picked));
  btQuery_Click();
}

}  // namespace korvel
