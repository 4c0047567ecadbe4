#include "control/column_memory.h"

#include <QHeaderView>
#include <algorithm>
#include <cstddef>

#include "control/library_state.h"
#include "control/result_list_view.h"
#include "control/surface.h"
#include "control/texts.h"
#include "ui/screen_measure.h"

namespace korvel::control {
namespace {

/// The caption; of several columns with one caption the second one is "caption (2)".
QString nameOf(const ResultListView& list, int column) {
  const auto& columns = list.listModel().list().columns();
  const std::string& caption = columns.at(static_cast<std::size_t>(column)).caption;
  const auto before = std::count_if(columns.begin(), columns.begin() + column,
                                    [&](const results::ColumnHeader& each) { return each.caption == caption; });
  const QString name = fromUtf8(caption);
  return before == 0 ? name : name + QStringLiteral(" (%1)").arg(before + 1);
}

int columnNamed(const ResultListView& list, const QString& name) {
  for (int column = 0; column < list.listModel().columnCount(); ++column)
    if (nameOf(list, column) == name) return column;
  return -1;
}

const QString customListName = QStringLiteral("lvListView%1").arg(query::customList);

bool isKeyColumn(const ResultListView& list, int column) {
  return column == 0 && list.objectName() != customListName;
}

/// Whether there is such a column, whose width and presence are remembered.
bool isRemembered(const ResultListView& list, int column) {
  return column >= 0 && column < list.listModel().columnCount() && !isKeyColumn(list, column);
}

void keepOrder(const ResultListView& list) {
  QStringList names;
  for (int place = 0; place < list.header()->count(); ++place)
    names.append(nameOf(list, list.header()->logicalIndex(place)));
  libraryState().remembered.changeColumns(list.objectName(),
                                          [&](RememberedColumns& columns) { columns.order = names; });
}

void restoreWidths(ResultListView& list, const RememberedColumns& columns) {
  const ui::ScreenMeasure measure(list);
  for (const RememberedColumn& column : columns.columns) {
    const int at = column.width ? columnNamed(list, column.name) : -1;
    if (isRemembered(list, at)) list.setColumnWidth(at, measure.horizontal(*column.width));
  }
}

}  // namespace

void followColumns(const Surface& surface) {
  for (ResultListView* const list : surface.lvListView) {
    QObject::connect(list->header(), &ui::ResultHeader::widthChosen, list,
                     [list](int column) { skipFailing([&] { keepColumnWidth(*list, column); }); });
    QObject::connect(list->header(), &ui::ResultHeader::orderChosen, list, [list] {
      // The order of a query's own columns is part of the query.
      if (list->objectName() != customListName) skipFailing([&] { keepOrder(*list); });
    });
  }
}

void restoreColumns(ResultListView& list) {
  const RememberedColumns columns = libraryState().remembered.columns(list.objectName());
  restoreWidths(list, columns);
  for (const RememberedColumn& column : columns.columns) {
    const int at = column.shown ? columnNamed(list, column.name) : -1;
    if (isRemembered(list, at)) list.setColumnHidden(at, !*column.shown);
  }
  int place = 0;
  for (const QString& name : columns.order) {
    const int column = columnNamed(list, name);
    if (column >= 0) list.header()->moveSection(list.header()->visualIndex(column), place++);
  }
}

void restoreColumnWidths(ResultListView& list) {
  restoreWidths(list, libraryState().remembered.columns(list.objectName()));
}

void keepColumnWidth(const ResultListView& list, int column) {
  if (!isRemembered(list, column) || list.isColumnHidden(column)) return;
  const Twips width = ui::ScreenMeasure(list).horizontalTwips(list.columnWidth(column));
  libraryState().remembered.changeColumns(
      list.objectName(), [&](RememberedColumns& columns) { columns.column(nameOf(list, column)).width = width; });
}

void keepColumnShown(const ResultListView& list, int column) {
  if (!isRemembered(list, column)) return;
  const bool shown = !list.isColumnHidden(column);
  libraryState().remembered.changeColumns(
      list.objectName(), [&](RememberedColumns& columns) { columns.column(nameOf(list, column)).shown = shown; });
}

bool hasRememberedColumns(const ResultListView& list) {
  const RememberedColumns columns = libraryState().remembered.columns(list.objectName());
  return !columns.columns.isEmpty() || !columns.order.isEmpty();
}

void resetColumns(ResultListView& list) {
  libraryState().remembered.forgetColumns(list.objectName());
  list.applyColumnWidths();
}

}  // namespace korvel::control
