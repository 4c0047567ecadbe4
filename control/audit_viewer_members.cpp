#include "control/audit_viewer_members.h"

#include "control/column_memory.h"
#include "control/library_state.h"
#include "control/manifest_choice.h"
#include "control/working_hours.h"
#include "db/connection_state.h"
#include "settings/registry.h"

namespace korvel {

using control::libraryState;

namespace {

/// The lists have no columns until ListViewColSetup, also where Initialize fails before it.
query::ResultLists listsWithoutColumns() {
  query::ResultLists lists = query::makeResultLists();
  for (results::ResultList& list : lists) list.setColumns({});
  return lists;
}

}  // namespace

AuditViewer::Members::Members(AuditViewer& viewer)
    : lists(listsWithoutColumns()),
      surface(viewer, lists, filterTree),
      messages(viewer),
      answers(surface, filterTree),
      queries(viewer, messages, surface, answers, lists, filterTree),
      customPage(viewer, messages, surface, queries),
      lock(surface, menuItems, toolbarItems),
      selection(viewer, messages, surface, {lock, queries, answers}, &followSelectionEverywhere),
      snapshots(viewer, messages, answers, selection),
      sideTools(viewer, messages, surface, queries, &followDateRangeEverywhere),
      findAndFilter(viewer, messages, surface, answers, queries),
      activity(viewer, messages, surface, findAndFilter),
      review(viewer, messages, surface, answers, findAndFilter),
      exceptions(viewer, messages, surface, answers, findAndFilter),
      listCommands(viewer, messages, surface, answers, findAndFilter, activity, review, exceptions, menuItems),
      outputs(viewer, messages, surface, answers),
      help(viewer),
      commands(viewer, messages, surface, menuItems, toolbarItems,
               {answers, queries, lock, selection, listCommands, outputs, sideTools, help}) {
  QObject::connect(surface.tvTreeView, &control::FilterTreeView::checksChanged, &viewer,
                   [this] { answers.followRestingText(); });
  QObject::connect(surface.SSTab1, &QTabWidget::currentChanged, &viewer,
                   [this] { messages.trapped("SSTab1_Click", [this] { SSTab1_Click(); }); });
  instances().push_back(this);
}

AuditViewer::Members::~Members() {
  std::erase(instances(), this);
}

void AuditViewer::Members::Initialize() {
  const auto backend = control::platform().openSettings();
  libraryState().language = settings::storedLanguage(*backend);
  skipFailing([&] { libraryState().writesManifests = control::storedManifestChoice(*backend); });
  skipFailing([&] { libraryState().workingHours = control::storedWorkingHours(*backend); });

  listCommands.ListViewColSetup();
  skipFailing([this] { restoreRemembered(); });
  commands.BuildMenu();
  commands.BuildToolbar();
  BuildMisc();
  // Nothing can be queried until a database is selected, also where another instance has selected one.
  lock.LockControls();
  surface.tvTreeView->fill();
  surface.tvTreeView->expandNodes();
  surface.tvTreeView->checkAll();
  surface.SSTab1->setCurrentIndex(0);
  libraryState().printFont.name = "Courier";
  libraryState().printFont.size = 9;
}

void AuditViewer::Members::restoreRemembered() {
  const control::Remembered& remembered = libraryState().remembered;
  for (control::ResultListView* const list : surface.lvListView) control::restoreColumns(*list);
  surface.findHistory.restore(remembered.texts(control::Remembered::Texts::find));
  customPage.offerRecent();
  surface.findHistory.used = [](const QString& text) {
    skipFailing([&] { libraryState().remembered.addText(control::Remembered::Texts::find, text); });
  };
}

void AuditViewer::Members::Show() {
  sideTools.showDateRange();
  surface.SmartToolbar->setVisible(properties.ViewToolBar);
  sideTools.setApplied(properties.ViewSideTools);
  sideTools.ViewTools(sideTools.applied());
  if (control::platform().selectsDefaultServer && db::namesAServer(properties.DefaultSQLServer.toStdString()))
    selection.OpenDefaultSQLServer(properties);
}

void AuditViewer::Members::BuildMisc() {
  sideTools.showCaptions();
  skipFailing([this] { help.chooseFile(); });
  skipFailing([this] { sideTools.showAccessibleNames(); });
  skipFailing([this] { customPage.showTexts(); });
  skipFailing([this] { findAndFilter.showTexts(); });
  skipFailing([this] { activity.showTexts(); });
  skipFailing([this] { exceptions.showTexts(); });
  skipFailing([this] { answers.showEmptyTexts(); });
  skipFailing([this] { answers.followRestingText(); });
}

void AuditViewer::Members::followSelectionEverywhere() {
  for (Members* instance : instances()) {
    instance->answers.followRestingText();
    instance->answers.showEmptyTexts();
  }
}

void AuditViewer::Members::followDateRangeEverywhere() {
  for (Members* instance : instances()) {
    instance->sideTools.showDateRange();
    instance->answers.followRestingText();
  }
}

void AuditViewer::Members::SSTab1_Click() {
  customPage.offerCustomQuery();
  // A notice belongs to the page that was left.
  answers.clearNotice();
  answers.followRestingText();
  // The panel shows the count of the current tab.
  queries.DisplayNoOfRecords();
}

}  // namespace korvel
