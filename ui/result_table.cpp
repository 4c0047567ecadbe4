#include "ui/result_table.h"

#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "ui/dialogs.h"
#include "ui/icons/icons.h"
#include "ui/shown_text.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {
namespace {

constexpr int cellInset = 8;

int listRowHeight(const QWidget& widget) {
  return std::max(px(&widget, space::listRow), widget.fontMetrics().height() + px(&widget, 6));
}

/// A value in one line: characters that break or hide lines become blanks.
/// Returns the text itself, unshared, in the usual case that there is nothing to replace.
QString oneLine(QString text) {
  const auto breaks = [](QChar c) {
    return c < QLatin1Char(' ') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
  };
  if (std::any_of(text.cbegin(), text.cend(), breaks)) {
    for (QChar& c : text) {
      if (breaks(c)) c = QLatin1Char(' ');
    }
  }
  return text;
}

}  // namespace

ResultHeader::ResultHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsMovable(true);
  setSectionsClickable(true);
  setHighlightSections(false);
  setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  setTextElideMode(Qt::ElideRight);
  setSortIndicatorShown(false);
  setStretchLastSection(false);
  setMinimumSectionSize(px(this, 24));
}

void ResultHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const {
  QHeaderView::initStyleOptionForIndex(option, logicalIndex);
  if (option == nullptr) return;
  option->text = visibleFormats(option->text);
  if (qobject_cast<const ViewerStyle*>(style()) != nullptr || option->sortIndicator == QStyleOptionHeader::None) return;
  // Styles disagree on the direction of the ascending arrow, so other styles draw our icon instead.
  option->sortIndicator = QStyleOptionHeader::None;
  const bool ascending = sortIndicatorOrder() == Qt::AscendingOrder;
  option->icon = icon(ascending ? IconName::SortAscending : IconName::SortDescending);
}

void ResultHeader::showSort(int column, Qt::SortOrder order) {
  setSortIndicatorShown(column >= 0);
  setSortIndicator(column, order);
}

RowDelegate::RowDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

QString RowDelegate::shownText(const QString& value) {
  if (value.size() <= shownCharacters) return oneLine(visibleFormats(value));
  return oneLine(visibleFormats(value.left(shownCharacters))) + QChar(0x2026);
}

int RowDelegate::cellWidth(const QWidget* widget, qreal textWidth) {
  return static_cast<int>(std::ceil(textWidth)) + 2 * px(widget, cellInset) + 1;
}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const Theme& theme = Theme::of(option.palette);
  const QRect cell = option.rect;
  const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
  const bool selected = option.state.testFlag(QStyle::State_Selected);
  if (selected) {
    painter->fillRect(cell, theme.selection);
  } else if (option.features.testFlag(QStyleOptionViewItem::Alternate)) {
    painter->fillRect(cell, theme.alternateRow);
  }
  const int inset = px(option.widget, cellInset);
  const QRect line = cell.adjusted(inset, 0, -inset, 0);
  if (line.width() > 0) {
    const QString text = shownText(index.data(Qt::DisplayRole).toString());
    if (!text.isEmpty()) {
      painter->setFont(option.font);
      const QColor& ink = selected ? theme.onSelection : theme.text;
      painter->setPen(option.state.testFlag(QStyle::State_Enabled) ? ink : theme.disabled);
      painter->drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                        option.fontMetrics.elidedText(text, Qt::ElideRight, line.width()));
    }
  }
  if (view != nullptr && view->hasFocus() && view->currentIndex().row() == index.row()) {
    const int width = px(option.widget, 1);
    painter->fillRect(cell.left(), cell.top(), cell.width(), width, theme.accent);
    painter->fillRect(cell.left(), cell.bottom() + 1 - width, cell.width(), width, theme.accent);
  }
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QString text = shownText(index.data(Qt::DisplayRole).toString());
  const int height = option.widget != nullptr ? listRowHeight(*option.widget) : option.fontMetrics.height();
  return {cellWidth(option.widget, QFontMetricsF(option.font).horizontalAdvance(text)), height};
}

bool RowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index) {
  if (event == nullptr || view == nullptr || event->type() != QEvent::ToolTip || !index.isValid() ||
      index.data(Qt::ToolTipRole).isValid()) {
    return QStyledItemDelegate::helpEvent(event, view, option, index);
  }
  const QString whole = index.data(Qt::DisplayRole).toString();
  const QFontMetrics metrics(view->font());
  const int room = view->visualRect(index).width() - 2 * px(view, cellInset);
  const QString shown = shownText(whole);
  const bool cut = shown != whole || metrics.horizontalAdvance(shown) > room;
  if (!cut) {
    QToolTip::hideText();
    return true;
  }
  QToolTip::showText(event->globalPos(), plainToolTip(whole), view);
  return true;
}

ResultTable::ResultTable(QWidget* parent) : QTableView(parent) {
  setHorizontalHeader(new ResultHeader(this));
  setItemDelegate(new RowDelegate(this));
  setShowGrid(false);
  setAlternatingRowColors(true);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setWordWrap(false);
  setTextElideMode(Qt::ElideRight);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setTabKeyNavigation(false);  // Tab leaves the list
  setCornerButtonEnabled(false);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  measure();
}

ResultHeader* ResultTable::header() const {
  return qobject_cast<ResultHeader*>(horizontalHeader());
}

void ResultTable::setEmptyText(const QString& text) {
  if (text == emptyText_) return;
  emptyText_ = text;
  // Assistive technology cannot read painted text.
  setAccessibleDescription(text);
  viewport()->update();
}

void ResultTable::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  // The text may contain a server's message: it is shown as plain text and cut.
  constexpr qsizetype maxCharacters = 2000;
  if (model() == nullptr || model()->rowCount(rootIndex()) == 0)
    paintEmptyMessage(*this, visibleFormats(emptyText_.left(maxCharacters)));
}

void ResultTable::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) measure();
}

void ResultTable::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  // The frame of the current row runs through all of its cells.
  for (const QModelIndex& index : {current, previous}) {
    if (index.isValid()) viewport()->update(0, visualRect(index).top(), viewport()->width(), rowHeight(index.row()));
  }
}

void ResultTable::measure() {
  const int height = ui::listRowHeight(*this);
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(height);
}

}  // namespace korvel::ui
