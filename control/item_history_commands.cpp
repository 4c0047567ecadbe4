#include "control/item_history_commands.h"

#include <QShortcut>

#include "control/command_menus.h"
#include "control/message_boxes.h"
#include "control/size_memory.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {
namespace {

const QKeySequence historyKey(Qt::CTRL | Qt::Key_H);

}  // namespace

ItemHistoryCommands::ItemHistoryCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface)
    : viewer_(viewer), messages_(messages) {
  for (ResultListView* list : surface.lvListView) {
    auto* key = new QShortcut(historyKey, list);
    key->setContext(Qt::WidgetShortcut);
    QObject::connect(key, &QShortcut::activated, &viewer_, [this, list] { show(*list, list->currentIndex().row()); });
  }
}

void ItemHistoryCommands::addEntry(CommandPopup& menu, ResultListView& list, const QModelIndex& cell) {
  QAction* const entry = menu.addOwnEntry(ownText("history.command"), historyKey);
  entry->setEnabled(cell.isValid() && query::itemColumns(list.listModel().list()).has_value());
  QObject::connect(entry, &QAction::triggered, &viewer_,
                   [this, &list, kept = QPersistentModelIndex(cell)] { show(list, kept.row()); });
}

void ItemHistoryCommands::show(ResultListView& list, int row) {
  if (row < 0) return;
  messages_.trapped("ShowHistory", [&] {
    const auto columns = query::itemColumns(list.listModel().list());
    if (!columns) return messages_.inform(messageTitle(), ownText("history.noColumns"));
    if (historyView_.isNull()) {
      historyView_ = new HistoryView(&viewer_);
      rememberSize(*historyView_);
      QObject::connect(historyView_, &HistoryView::refused, &viewer_,
                       [this](const QString& text) { messages_.inform(messageTitle(), text); });
    }
    historyView_->showHistory(list, *columns, row);
  });
}

}  // namespace korvel::control
