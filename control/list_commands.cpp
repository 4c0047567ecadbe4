#include "control/list_commands.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <algorithm>
#include <memory>

#include "control/activity_commands.h"
#include "control/answer_status.h"
#include "control/column_memory.h"
#include "control/commands/command_tables.h"
#include "control/find_and_filter.h"
#include "control/forms/record_view.h"
#include "control/library_state.h"
#include "control/list_outputs.h"
#include "control/manifest_choice.h"
#include "control/message_boxes.h"
#include "control/review_commands.h"
#include "control/review_rule_commands.h"
#include "control/size_memory.h"
#include "control/snapshot_commands.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {

namespace {

constexpr std::string_view keyColumn = "Entry ID";

/// The columns of a list with that caption; a custom query may name several alike.
std::vector<int> columnsCaptioned(const ResultListView& list, std::string_view caption) {
  const auto& columns = list.listModel().list().columns();
  std::vector<int> found;
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].caption == caption) found.push_back(static_cast<int>(i));
  return found;
}

}  // namespace

ListCommands::ListCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
                           FindAndFilter& findAndFilter, ActivityCommands& activity, ReviewCommands& review,
                           ReviewRuleCommands& exceptions, CommandItems& menu)
    : viewer_(viewer),
      messages_(messages),
      surface_(surface),
      answers_(answers),
      findAndFilter_(findAndFilter),
      activity_(activity),
      review_(review),
      exceptions_(exceptions),
      menu_(menu),
      itemHistory_(viewer, messages, surface),
      summary_(viewer, messages, surface, answers, findAndFilter) {
  surface_.SmartPopup->setHooks({.clicked = [this](const CommandItem& item) { SmartPopup_Click(item); }});
  popupItems_.changed = [this] { surface_.SmartPopup->mirror(popupItems_); };
  QObject::connect(surface_.mnupopup, &QMenu::triggered, &viewer_, [this](const QAction* entry) {
    messages_.trapped("mnupopupitem_Click", [&] { mnupopupitem_Click(entry->data().toInt()); });
  });
  for (ResultListView* list : surface_.lvListView) {
    connectList(*list);
    connectContextMenus(*list);
  }
  followColumns(surface_);
}

void ListCommands::connectList(ResultListView& list) {
  const auto columnClick = [this, &list](int column) {
    messages_.trapped("lvListView_ColumnClick", [&] { list.clickHeader(column); });
  };
  QObject::connect(list.header(), &QHeaderView::sectionClicked, &viewer_, columnClick);
  QObject::connect(&list, &ResultListView::sortRequested, &viewer_, columnClick);
  QObject::connect(&list, &ResultListView::fitRequested, &viewer_, [this, &list](int column) {
    messages_.trapped("AutoSizeColumns", [&] {
      AutoSizeColumns(list, column);
      keepColumnWidth(list, column);
    });
  });
  QObject::connect(&list, &ResultListView::recordRequested, &viewer_, [this, &list](int row) {
    messages_.trapped("lvListView_DblClick", [&] { lvListView_DblClick(list, row); });
  });
  QObject::connect(&list, &ResultListView::refused, &viewer_,
                   [this](const QString& text) { messages_.inform(messageTitle(), text); });
  QObject::connect(&list, &ResultListView::selectionScattered, &viewer_, [this](std::size_t count) {
    answers_.showNotice([count] { return ownText("list.selectionScattered").arg(countText(count)); });
  });
}

void ListCommands::connectContextMenus(ResultListView& list) {
  list.setContextMenuPolicy(Qt::CustomContextMenu);
  QObject::connect(&list, &QWidget::customContextMenuRequested, &viewer_, [this, &list](const QPoint& place) {
    messages_.trapped("BuildPopup", [&] {
      // By keyboard it is asked for in the middle of the current cell.
      const QModelIndex cell = list.indexAt(place);
      showFontMenu(list, cell, list.viewport()->mapToGlobal(place));
    });
  });
  QObject::connect(&list, &ResultListView::columnMenuRequested, &viewer_, [this, &list](const QPoint& place) {
    messages_.trapped("BuildPopup", [&] { showColumnMenu(list, place); });
  });
  QWidget* const header = list.header();
  header->setContextMenuPolicy(Qt::CustomContextMenu);
  QObject::connect(header, &QWidget::customContextMenuRequested, &viewer_, [this, &list](const QPoint& place) {
    messages_.trapped("BuildPopup", [&] { showColumnMenu(list, list.header()->viewport()->mapToGlobal(place)); });
  });
}

void ListCommands::ListViewColSetup() {
  for (std::size_t i = 0; i < query::standardListCount; ++i) {
    surface_.models.at(i)->setColumns(&query::setUpAuditColumns);
    surface_.lvListView.at(i)->applyColumnWidths();
    surface_.lvListView.at(i)->showSortIcon();
  }
}

void ListCommands::ShowKeyField(bool vis) {
  constexpr Twips shownWidth{1000};
  for (std::size_t i = 0; i < query::standardListCount; ++i)
    surface_.lvListView.at(i)->setColumnTwips(0, vis ? shownWidth : Twips{0});
}

void ListCommands::AutoSizeColumns(ResultListView& list, std::optional<int> column) {
  if (column) {
    list.autoSizeColumn(*column);
  } else {
    for (int each = 0; each < list.listModel().columnCount(); ++each) list.autoSizeColumn(each);
  }
  ShowKeyField(menu_.item("KEY").checked);
  list.viewport()->update();
}

void ListCommands::adjustColumns() {
  ResultListView& list = surface_.currentList();
  if (list.listModel().list().rowCount() > 0) AutoSizeColumns(list);
}

void ListCommands::ChangeFont() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const auto font = services->chooseFont(&viewer_, surface_.lvListView[0]->font());
  if (!alive || !font) return;
  for (ResultListView* list : surface_.lvListView) list->setListFont(*font);
}

void ListCommands::lvListView_DblClick(ResultListView& list, int row) {
  if (recordView_.isNull()) {
    recordView_ = new RecordView(&viewer_);
    rememberSize(*recordView_);
    QObject::connect(recordView_, &RecordView::refused, &viewer_,
                     [this](const QString& text) { messages_.inform(messageTitle(), text); });
  }
  recordView_->showRecord(list, row);
}

void ListCommands::BuildPopup(const QString& PopupItem) {
  skipFailing([&] { buildPopup(popupItems_, PopupItem.toStdString()); });
}

void ListCommands::showFontMenu(ResultListView& list, const QModelIndex& cell, const QPoint& place) {
  BuildPopup(QStringLiteral("Font"));
  // The fixed menu has the same entry; it is shown where the other could not be built.
  const bool built = popupItems_.find("FONT") != nullptr;
  if (built) addOwnEntries(list, cell);
  (built ? surface_.SmartPopup : surface_.mnupopup)->popup(place);
}

void ListCommands::addOwnEntries(ResultListView& list, const QModelIndex& cell) {
  if (!cell.isValid()) return;
  CommandPopup& menu = *surface_.SmartPopup;
  addRecordEntries(list, cell);
  menu.endGroup();
  findAndFilter_.addEntries(menu, list, cell);
  menu.endGroup();
  itemHistory_.addEntry(menu, list, cell);
  summary_.addEntry(menu, list);
  activity_.addEntry(menu);
  menu.endGroup();
  exceptions_.addEntry(review_.addEntries(menu, list));
  addSnapshotEntries(menu, viewer_);
  menu.endGroup();
  addOutputEntries(menu, viewer_, messages_);
  addManifestEntry(menu, viewer_, messages_);
}

void ListCommands::addRecordEntries(ResultListView& list, const QModelIndex& cell) {
  const auto add = [this](const char* text, const QKeySequence& key, const std::function<void()>& action) {
    QObject::connect(surface_.SmartPopup->addOwnEntry(ownText(text), key), &QAction::triggered, &viewer_,
                     [this, action] { messages_.trapped("SmartPopup_Click", action); });
  };
  add("list.showRecord", Qt::Key_Return,
      [this, &list, kept = QPersistentModelIndex(cell)] { lvListView_DblClick(list, kept.row()); });
  add("record.copyText", QKeySequence::Copy, [&list] { list.copySelection(); });
}

void ListCommands::showColumnMenu(ResultListView& list, const QPoint& place) {
  BuildPopup(QStringLiteral("Column"));
  const CommandItem* root = popupItems_.find("POPUP");
  if (root == nullptr) return;
  bool any = false;
  for (const auto& item : root->children) {
    const std::vector<int> columns = columnsCaptioned(list, item->key);
    item->enabled = !columns.empty();
    item->checked =
        std::any_of(columns.begin(), columns.end(), [&](int column) { return !list.isColumnHidden(column); });
    any = any || item->enabled;
  }
  popupItems_.announceChange();
  popupList_ = &list;
  if (libraryState().remembered.keepsLayout()) {
    QAction* const reset = surface_.SmartPopup->addOwnEntry(ownText("list.resetColumns"));
    const bool changed = hasRememberedColumns(list);
    reset->setEnabled(changed);
    any = any || changed;
    QObject::connect(reset, &QAction::triggered, &viewer_,
                     [this, &list] { messages_.trapped("SmartPopup_Click", [&] { resetList(list); }); });
  }
  // A list without any of these columns has no menu, unless there is something to reset.
  if (any) surface_.SmartPopup->popup(place);
}

void ListCommands::SmartPopup_Click(const CommandItem& item) {
  // Copies: the item may be gone before what it does has ended.
  const std::string key = item.key;
  const bool checked = item.checked;
  messages_.trapped("SmartPopup_Click", [&] {
    if (key == "FONT") {
      ChangeFont();
    } else if (popupList_) {
      showColumns(*popupList_, fromUtf8(key), checked);
    }
  });
}

void ListCommands::showColumns(ResultListView& list, const QString& caption, bool shown) {
  const std::string name = caption.toStdString();
  const bool standard = &list != surface_.lvListView[query::customList];
  // The key column has one switch for all standard lists: sizing the columns restores what the View menu says.
  CommandItem* const keyCommand = menu_.find("KEY");
  if (standard && name == keyColumn && keyCommand != nullptr) {
    keyCommand->checked = shown;
    menu_.announceChange();
    ShowKeyField(shown);
    return;
  }
  for (const int column : columnsCaptioned(list, name)) {
    list.setColumnHidden(column, !shown);
    if (standard) keepColumnShown(list, column);
  }
}

void ListCommands::resetList(ResultListView& list) {
  resetColumns(list);
  if (&list == surface_.lvListView[query::customList]) return;
  // The widths of a new list show its key column, whatever the View menu says.
  const CommandItem* const keyCommand = menu_.find("KEY");
  if (keyCommand != nullptr && !keyCommand->checked) list.setColumnTwips(0, {0});
}

void ListCommands::mnupopupitem_Click(int index) {
  if (index == 0) ChangeFont();
}

}  // namespace korvel::control
