#include "ui/check_tree.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QHelpEvent>
#include <QToolTip>
#include <QTreeView>
#include <algorithm>

#include "ui/style/style_parts.h"
#include "ui/style/theme.h"

namespace korvel::ui {

CheckTreeDelegate::CheckTreeDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

void CheckTreeDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  option->textElideMode = Qt::ElideRight;
  if (!index.parent().isValid()) {
    option->font = semiBold(option->font);
    option->fontMetrics = QFontMetrics(option->font);
  }
}

QSize CheckTreeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QSize hint = QStyledItemDelegate::sizeHint(option, index);
  return {hint.width(),
          std::max(px(option.widget, space::treeRow), option.fontMetrics.height() + px(option.widget, 4))};
}

bool CheckTreeDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) {
  const bool cut = view != nullptr && index.isValid() &&
                   view->visualRect(index).left() + sizeHint(option, index).width() > view->viewport()->width();
  if (event != nullptr && event->type() == QEvent::ToolTip && cut && !index.data(Qt::ToolTipRole).isValid()) {
    QToolTip::showText(event->globalPos(), index.data(Qt::DisplayRole).toString().toHtmlEscaped(), view);
    return true;
  }
  return QStyledItemDelegate::helpEvent(event, view, option, index);
}

void styleCheckTree(QTreeView& tree) {
  tree.setItemDelegate(new CheckTreeDelegate(&tree));
  tree.setProperty(roomyFrame, true);
  tree.setFrameStyle(QFrame::NoFrame);  // only a change of the frame style makes the tree ask for its width again
  tree.setFrameStyle(static_cast<int>(QFrame::StyledPanel) | static_cast<int>(QFrame::Sunken));
  tree.header()->hide();
  tree.setIndentation(px(&tree, 12));
  tree.setUniformRowHeights(true);
  tree.setRootIsDecorated(true);
  tree.setEditTriggers(QAbstractItemView::NoEditTriggers);
  tree.setSelectionMode(QAbstractItemView::SingleSelection);
  tree.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  tree.setTextElideMode(Qt::ElideRight);
  tree.setMouseTracking(true);
}

}  // namespace korvel::ui
