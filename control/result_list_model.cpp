#include "control/result_list_model.h"

#include <QHash>
#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "control/texts.h"
#include "ui/shown_text.h"

namespace korvel::control {
namespace {

using results::ColumnIndex;
using results::RowPosition;

// Qt counts rows in int.
int qtCount(std::size_t count) {
  return static_cast<int>(std::min<std::size_t>(count, std::numeric_limits<int>::max()));
}

}  // namespace

ResultListModel::ResultListModel(results::ResultList& list, QObject* parent)
    : QAbstractTableModel(parent), list_(list) {}

int ResultListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : qtCount(list_.rowCount());
}

int ResultListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : qtCount(list_.columns().size());
}

QVariant ResultListModel::data(const QModelIndex& index, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) return {};
  return fromUtf8(list_.text(RowPosition{static_cast<std::size_t>(index.row())},
                             ColumnIndex{static_cast<std::size_t>(index.column())}));
}

QVariant ResultListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical) return rowHeaderData(section, role);
  if (section < 0 || section >= columnCount()) return {};
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  const QString caption = fromUtf8(list_.columns()[static_cast<std::size_t>(section)].caption);
  return role == Qt::ToolTipRole ? ui::plainToolTip(caption) : caption;
}

QVariant ResultListModel::rowHeaderData(int row, int role) const {
  if (!rowTexts_ || row < 0 || row >= rowCount()) return {};
  if (role != Qt::ToolTipRole && role != Qt::AccessibleTextRole) return {};
  const QString text = rowTexts_(row);
  if (text.isEmpty()) return {};
  return role == Qt::ToolTipRole ? ui::plainToolTip(text) : text;
}

void ResultListModel::clear() {
  const RowsChange change(*this);
  list_.clear();
}

void ResultListModel::setColumns(const std::function<void(results::ResultList&)>& change) {
  const RowsChange reset(*this);
  change(list_);
}

void ResultListModel::clickColumn(int column) {
  if (column < 0 || column >= columnCount()) return;
  reorder([&] { list_.clickColumn(ColumnIndex{static_cast<std::size_t>(column)}); });
  Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

void ResultListModel::sortRows() {
  reorder([&] { list_.sort(); });
}

void ResultListModel::setFilter(results::RowFilter filter) {
  const RowsChange change(*this);
  list_.setFilter(std::move(filter));
}

void ResultListModel::reorder(const std::function<void()>& sort) {
  Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  // After the signal only: views make their selection persistent on it.
  const QModelIndexList before = persistentIndexList();
  QHash<quint32, int> positions;
  std::vector<quint32> records;
  records.reserve(static_cast<std::size_t>(before.size()));
  for (const QModelIndex& index : before) {
    const quint32 record = list_.rowId(RowPosition{static_cast<std::size_t>(index.row())}).value;
    records.push_back(record);
    positions.insert(record, -1);
  }

  std::exception_ptr failure;
  try {
    sort();
  } catch (...) {
    // The rows stay as they were, but views still wait for the end of the change.
    failure = std::current_exception();
  }

  auto missing = positions.size();
  for (std::size_t row = 0; row < list_.rowCount() && missing > 0; ++row) {
    const auto found = positions.find(list_.rowId(RowPosition{row}).value);
    if (found == positions.end() || *found >= 0) continue;
    *found = static_cast<int>(row);
    --missing;
  }
  QModelIndexList after;
  after.reserve(before.size());
  for (qsizetype i = 0; i < before.size(); ++i)
    after.append(index(positions.value(records[static_cast<std::size_t>(i)]), before[i].column()));
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
  if (failure) std::rethrow_exception(failure);
}

}  // namespace korvel::control
