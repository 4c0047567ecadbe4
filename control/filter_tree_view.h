#pragma once

#include <QTreeWidget>
#include <array>

#include "query/filter_tree.h"

namespace korvel::control {

/// The filter tree `tvTreeView` on the surface. The check state is the FilterTree's; the boxes show it. The tree stays
/// open: what is collapsed opens again.
class FilterTreeView final : public QTreeWidget {
  Q_OBJECT

 public:
  /// `tree` must outlive the view. The view is empty until it is filled.
  explicit FilterTreeView(query::FilterTree& tree, QWidget* parent = nullptr);

  /// Clears the view and adds the thirteen nodes.
  void fill();
  void checkAll();
  void uncheckAll();
  void expandNodes();

 Q_SIGNALS:
  /// Boxes were ticked or cleared.
  void checksChanged();

 private:
  void nodeChecked(QTreeWidgetItem* item);
  void showChecks();

  query::FilterTree& tree_;
  std::array<QTreeWidgetItem*, query::filterNodeCount> items_{};
};

}  // namespace korvel::control
