#include "control/custom_page.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QPointer>
#include <memory>

#include "base/paths.h"
#include "control/audit_queries.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/recent_queries.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"
#include "query/file_names.h"
#include "query/forms/query_file_drop.h"
#include "query/query_file.h"
#include "settings/string_table.h"

namespace korvel::control {

namespace {

const QString everythingQuery = QStringLiteral("Select * from Korvel_Audit_Trails");

/// By its absolute path: the current folder is another one after the next start.
void rememberFile(const std::string& path) {
  skipFailing([&] {
    const QString file = QFileInfo(fromUtf8(path)).absoluteFilePath();
    libraryState().remembered.addText(Remembered::Texts::queryFiles, QDir::toNativeSeparators(file));
  });
}

}  // namespace

CustomPage::CustomPage(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AuditQueries& queries)
    : viewer_(viewer), messages_(messages), surface_(surface), queries_(queries) {
  messages_.onClick(surface_.btOpen, "btOpen_Click", [this] { btOpen_Click(); });
  messages_.onClick(surface_.btSave, "btSave_Click", [this] { btSave_Click(); });
  messages_.onClick(surface_.btClearAdvQuery, "btClearAdvQuery_Click", [this] { btClearAdvQuery_Click(); });
  messages_.onClick(surface_.btEmunFields, "btEmunFields_Click", [this] { btEmunFields_Click(); });

  QObject::connect(surface_.txtAdvancedQuery, &query::SqlEditor::runRequested, &viewer_,
                   [this] { queries_.runQueryByKey(); });
  QObject::connect(surface_.txtAdvancedQuery, &query::SqlEditor::recentRequested, &viewer_,
                   [this](const QPoint& place) { messages_.trapped("RecentQueries", [&] { showRecent(place); }); });
  auto* drop = new query::QueryFileDrop(*surface_.lvListView[query::customList]->parentWidget());
  QObject::connect(drop, &query::QueryFileDrop::dropped, &viewer_, [this](const QString& path) {
    messages_.trapped("btOpen_Click", [&] { openQueryFile(path.toStdString()); });
  });
}

void CustomPage::showTexts() {
  surface_.txtAdvancedQuery->setTexts([](std::string_view key) { return ownText(key); });
  surface_.txtAdvancedQuery->setAccessibleName(ownText("custom.query"));
  surface_.btOpen->setToolTip(ownText("custom.open"));
  surface_.btSave->setToolTip(ownText("custom.save"));
  surface_.btClearAdvQuery->setToolTip(ownText("custom.clear"));
  surface_.btEmunFields->setToolTip(ownText("custom.fields"));
}

void CustomPage::offerCustomQuery() {
  if (surface_.currentTab() == query::customList && surface_.txtAdvancedQuery->document()->isEmpty())
    surface_.txtAdvancedQuery->setQueryText(everythingQuery);
}

void CustomPage::btSave_Click() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const QString folder = viewer_.GetExportPath(QStringLiteral("Browse for Custom Query Path"), 0);
  if (!alive || folder.isEmpty()) return;
  const QString name = services->inputBox(&viewer_, QStringLiteral("Enter Query Name?"), QStringLiteral("Name"));
  if (!alive || name.isEmpty()) return;
  if (const auto problem = query::fileNameProblem(name.toStdString())) {
    messages_.inform(messageTitle(), fromUtf8(settings::describe(*problem, libraryState().language)));
    return;
  }
  const std::string text = surface_.txtAdvancedQuery->queryText().toStdString();
  if (!query::fitsQueryFile(text)) {
    const bool wanted = services->confirm(&viewer_, messageTitle(), ownText("custom.replaceCharacters"));
    if (!alive || !wanted) return;
  }
  const std::string path = (folder + name).toStdString() + "." + std::string(query::queryFileExtension);
  query::saveQueryFile(pathFromUtf8(path), text);
  rememberFile(path);
}

void CustomPage::btOpen_Click() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const QString folder = viewer_.GetExportPath(QStringLiteral("Browse for Custom Query File"), 0);
  if (!alive || folder.isEmpty()) return;
  query::QueryChoices& choices = libraryState().queryChoices;
  choices.folder = folder.toStdString();
  choices.fileName.clear();
  services->showForm(&viewer_, form_name::fileList);
  if (!alive || choices.fileName.empty()) return;
  openQueryFile(choices.folder + choices.fileName);
}

void CustomPage::openQueryFile(const std::string& path) {
  // What cannot be read leaves page and text as they were.
  const std::string text = query::loadQueryFile(pathFromUtf8(path));
  // The page first: it offers a query where it has none, and an empty file is to show as it is.
  surface_.SSTab1->setCurrentIndex(query::customList);
  surface_.txtAdvancedQuery->setQueryText(fromUtf8(text));
  rememberFile(path);
}

void CustomPage::offerRecent() {
  surface_.txtAdvancedQuery->setOffersRecent(libraryState().remembered.keepsWork());
}

void CustomPage::showRecent(const QPoint& place) {
  QMenu* const menu = makeRecentQueriesMenu(
      &viewer_, {.useText = [this](const QString& text) { surface_.txtAdvancedQuery->setQueryText(text); },
                 .openFile =
                     [this](const QString& path) {
                       messages_.trapped("btOpen_Click", [&] { openQueryFile(path.toStdString()); });
                     }});
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->popup(place);
}

void CustomPage::btClearAdvQuery_Click() {
  surface_.txtAdvancedQuery->setQueryText({});
}

void CustomPage::btEmunFields_Click() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  std::string& picked = libraryState().queryChoices.pickedQuery;
  picked.clear();
  services->showForm(&viewer_, form_name::fields);
  if (!alive || picked.empty()) return;
  surface_.txtAdvancedQuery->setQueryText(fromUtf8(picked));
  queries_.btQuery_Click();
}

}  // namespace korvel::control
