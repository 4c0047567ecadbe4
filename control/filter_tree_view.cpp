#include "control/filter_tree_view.h"

#include <QSignalBlocker>

#include "control/texts.h"
#include "ui/check_tree.h"

namespace korvel::control {
namespace {

constexpr int keyRole = Qt::UserRole;
constexpr int indexRole = Qt::UserRole + 1;
constexpr int imageRole = Qt::UserRole + 2;

}  // namespace

FilterTreeView::FilterTreeView(query::FilterTree& tree, QWidget* parent) : QTreeWidget(parent), tree_(tree) {
  setColumnCount(1);
  setHeaderHidden(true);
  setTabKeyNavigation(false);
  ui::styleCheckTree(*this);
  connect(this, &QTreeWidget::itemChanged, this, &FilterTreeView::nodeChecked);
  connect(this, &QTreeWidget::itemCollapsed, this, &FilterTreeView::expandNodes);
}

void FilterTreeView::fill() {
  const QSignalBlocker quiet(this);
  clear();
  items_.fill(nullptr);
  const auto& nodes = query::filterNodes();
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    auto* item = nodes[i].parent == 0 ? new QTreeWidgetItem(this) : new QTreeWidgetItem(items_.at(nodes[i].parent - 1));
    item->setText(0, fromUtf8(nodes[i].caption));
    item->setData(0, keyRole, fromUtf8(nodes[i].key));
    item->setData(0, indexRole, static_cast<int>(i) + 1);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    items_[i] = item;
  }
  showChecks();
}

void FilterTreeView::checkAll() {
  tree_.selectAll();
  showChecks();
  Q_EMIT checksChanged();
}

void FilterTreeView::uncheckAll() {
  tree_.unselectAll();
  showChecks();
  Q_EMIT checksChanged();
}

void FilterTreeView::expandNodes() {
  // Up to the last but one: the last node is deliberately not visited. It is a leaf.
  for (std::size_t i = 0; i + 1 < items_.size(); ++i) {
    QTreeWidgetItem* item = items_[i];
    if (item == nullptr) continue;
    if (item->data(0, keyRole).toString() == QLatin1String("root")) continue;
    if (item->data(0, imageRole).toString() == QLatin1String("pix")) continue;
    item->setExpanded(true);
  }
}

void FilterTreeView::nodeChecked(QTreeWidgetItem* item) {
  const int index = item->data(0, indexRole).toInt();
  if (index < 1) return;
  const query::NodeIndex node{static_cast<std::size_t>(index)};
  const bool checked = item->checkState(0) == Qt::Checked;
  if (tree_.isChecked(node) == checked) return;
  tree_.setChecked(node, checked);
  showChecks();
  Q_EMIT checksChanged();
}

void FilterTreeView::showChecks() {
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (items_[i] == nullptr) continue;
    const Qt::CheckState state = tree_.isChecked(query::NodeIndex{i + 1}) ? Qt::Checked : Qt::Unchecked;
    if (items_[i]->checkState(0) != state || !items_[i]->data(0, Qt::CheckStateRole).isValid())
      items_[i]->setCheckState(0, state);
  }
}

}  // namespace korvel::control
