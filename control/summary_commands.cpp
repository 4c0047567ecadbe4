#include "control/summary_commands.h"

#include <QShortcut>
#include <filesystem>

#include "base/atomic_file.h"
#include "control/answer_status.h"
#include "control/command_menus.h"
#include "control/find_and_filter.h"
#include "control/message_boxes.h"
#include "control/size_memory.h"
#include "control/surface.h"
#include "control/texts.h"
#include "control/watched_work.h"
#include "korvel/AuditViewer.h"
#include "output/list_writers.h"

namespace korvel::control {
namespace {

const QKeySequence summaryKey(Qt::CTRL | Qt::Key_G);
const QString fileName = QStringLiteral("Summary.csv");

}  // namespace

SummaryCommands::SummaryCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface,
                                 AnswerStatus& answers, FindAndFilter& findAndFilter)
    : viewer_(viewer), messages_(messages), answers_(answers), findAndFilter_(findAndFilter) {
  for (ResultListView* list : surface.lvListView) {
    auto* key = new QShortcut(summaryKey, list);
    key->setContext(Qt::WidgetShortcut);
    QObject::connect(key, &QShortcut::activated, &viewer_, [this, list] { show(*list); });
  }
}

void SummaryCommands::addEntry(CommandPopup& menu, ResultListView& list) {
  QAction* const entry = menu.addOwnEntry(ownText("summary.command"), summaryKey);
  QObject::connect(entry, &QAction::triggered, &viewer_, [this, &list] { show(list); });
}

void SummaryCommands::show(ResultListView& list) {
  messages_.trapped("ShowSummary", [&] {
    if (summaryView_.isNull()) {
      summaryView_ = new SummaryView(&viewer_);
      rememberSize(*summaryView_);
      QObject::connect(summaryView_, &SummaryView::refused, &viewer_,
                       [this](const QString& text) { messages_.inform(messageTitle(), text); });
      QObject::connect(summaryView_, &SummaryView::groupRequested, &viewer_,
                       [this](ResultListView* rows, const std::vector<results::ColumnCondition>& group) {
                         messages_.trapped("FilterByGroup", [&] { findAndFilter_.keepOnlyGroup(*rows, group); });
                         rows->setFocus();
                       });
      QObject::connect(summaryView_, &SummaryView::exportRequested, &viewer_,
                       [this] { messages_.trapped("ExportSummary", [this] { exportGroups(); }); });
    }
    summaryView_->showSummary(list);
  });
}

void SummaryCommands::exportGroups() {
  const QPointer<AuditViewer> alive(&viewer_);
  const QString remark = summaryView_->filterRemark();
  const auto allGroups = summaryView_->allGroups();
  const QString folder = viewer_.GetExportPath(ownText("summary.folder"), 0);
  if (!alive || folder.isEmpty()) return;
  const QString file = folder + fileName;
  // There may be as many groups as rows.
  const auto written = runWatched([allGroups, path = toPath(file)](const std::stop_token& stop) {
    AtomicFile target(path);
    output::writeCsv(allGroups(), [&](std::string_view bytes) { target.write(bytes); });
    if (stop.stop_requested()) return false;
    target.commit();
    return true;
  });
  if (!alive || !written.value_or(false)) return;
  answers_.showNotice([file, remark] {
    const QString said = ownText("export.written").arg(file);
    return remark.isEmpty() ? said : said + QStringLiteral(". ") + remark;
  });
}

}  // namespace korvel::control
