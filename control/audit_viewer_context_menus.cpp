// What a right click shows: the font command in a list, the columns on its header.
#include <QContextMenuEvent>
#include <algorithm>

#include "control/audit_viewer_members.h"
#include "control/commands/command_tables.h"
#include "control/skip_failing.h"
#include "control/texts.h"

namespace korvel {

using control::CommandItem;
using control::skipFailing;
using ui::fromUtf8;

namespace {

constexpr std::string_view keyColumn = "Entry ID";

/// The columns of a list with that caption; a custom query may name several alike.
std::vector<int> columnsCaptioned(const control::ResultListView& list, std::string_view caption) {
  const auto& columns = list.listModel().list().columns();
  std::vector<int> found;
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].caption == caption) found.push_back(static_cast<int>(i));
  return found;
}

}  // namespace

void AuditViewer::Members::connectContextMenus() {
  surface.SmartPopup->setHooks({.clicked = [this](const CommandItem& item) { SmartPopup_Click(item); }});
  popupItems_.changed = [this] { surface.SmartPopup->mirror(popupItems_); };
  QObject::connect(surface.mnupopup, &QMenu::triggered, &viewer_, [this](const QAction* entry) {
    trapped("mnupopupitem_Click", [&] { mnupopupitem_Click(entry->data().toInt()); });
  });

  for (control::ResultListView* list : surface.lvListView) {
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(list, &QWidget::customContextMenuRequested, &viewer_, [this, list](const QPoint& place) {
      trapped("BuildPopup", [&] { showFontMenu(list->viewport()->mapToGlobal(place)); });
    });
    QObject::connect(list, &control::ResultListView::columnMenuRequested, &viewer_, [this, list](const QPoint& place) {
      trapped("BuildPopup", [&] { showColumnMenu(*list, place); });
    });
    QWidget* const header = list->header();
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(header, &QWidget::customContextMenuRequested, &viewer_, [this, list](const QPoint& place) {
      trapped("BuildPopup", [&] { showColumnMenu(*list, list->header()->viewport()->mapToGlobal(place)); });
    });
  }
}

void AuditViewer::Members::BuildPopup(const QString& PopupItem) {
  skipFailing([&] { control::buildPopup(popupItems_, PopupItem.toStdString()); });
}

void AuditViewer::Members::showFontMenu(const QPoint& place) {
  BuildPopup(QStringLiteral("Font"));
  // The fixed menu says the same where the other could not be built.
  const bool built = popupItems_.find("FONT") != nullptr;
  (built ? surface.SmartPopup : surface.mnupopup)->popup(place);
}

void AuditViewer::Members::showColumnMenu(control::ResultListView& list, const QPoint& place) {
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
  // A list whose columns have other names has nothing to choose from.
  if (any) surface.SmartPopup->popup(place);
}

void AuditViewer::Members::SmartPopup_Click(const CommandItem& item) {
  const ClickedCommand command{item.key, item.checked};
  trapped("SmartPopup_Click", [&] {
    if (command.key == "FONT") {
      ChangeFont();
    } else if (popupList_) {
      showColumns(*popupList_, fromUtf8(command.key), command.checked);
    }
  });
}

void AuditViewer::Members::showColumns(control::ResultListView& list, const QString& caption, bool shown) {
  const std::string name = caption.toStdString();
  const bool standard = &list != surface.lvListView[query::customList];
  // The key column is one switch for all standard lists: what the View menu says of it is what sizing the columns
  // goes back to.
  CommandItem* const keyCommand = menuItems_.find("KEY");
  if (standard && name == keyColumn && keyCommand != nullptr) {
    keyCommand->checked = shown;
    menuItems_.announceChange();
    ShowKeyField(shown);
    return;
  }
  for (const int column : columnsCaptioned(list, name)) list.setColumnHidden(column, !shown);
}

void AuditViewer::Members::mnupopupitem_Click(int index) {
  if (index == 0) ChangeFont();
}

}  // namespace korvel
