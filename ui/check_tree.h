#pragma once

#include <QStyledItemDelegate>

class QTreeView;

namespace korvel::ui {

/// Paints the rows of a tree with check boxes: 24 px rows, semi-bold roots, rounded accent boxes, focus as a frame
/// around the text. A click on the painted box ticks it.
class CheckTreeDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  explicit CheckTreeDelegate(QObject* parent = nullptr);
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

/// Sets a tree view (or tree widget) up with check boxes: delegate, indentation, no header, no editing.
void styleCheckTree(QTreeView& tree);

}  // namespace korvel::ui
