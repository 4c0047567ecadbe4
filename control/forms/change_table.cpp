#include "control/forms/change_table.h"

#include <QStringList>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "control/texts.h"
#include "query/audit_record.h"

namespace korvel::control {
namespace {

using results::ResultList;

/// Columns of the audit trail from the left to the right; an empty name is the remark.
constexpr std::array<std::string_view, 8> shownColumns = {"DateTime", "OldValue",  "NewValue", "",
                                                          "UserName", "EventType", "PCName",   "Nr"};

}  // namespace

void ChangeTable::show(const ResultList& list, query::ItemHistory history) {
  beginResetModel();
  list_ = &list;
  history_ = std::move(history);
  user_ = query::auditColumnOf(list, "UserName");
  columns_.clear();
  for (const std::string_view name : shownColumns) {
    if (name.empty()) {
      columns_.push_back({{}, ownText("history.remark")});
    } else if (const auto column = query::auditColumnOf(list, name)) {
      columns_.push_back({column, fromUtf8(list.columns()[column->value].caption)});
    }
  }
  shown_.assign(history_.changes.size(), true);
  if (list.isFiltered()) {
    std::vector<std::uint8_t> isRow(list.store()->rowCount(), 0);
    for (std::size_t row = 0; row < list.rowCount(); ++row) isRow[list.rowId({row}).value] = 1;
    for (std::size_t i = 0; i < shown_.size(); ++i) shown_[i] = isRow[history_.changes[i].record.value] != 0;
  }
  endResetModel();
}

void ChangeTable::clear() {
  beginResetModel();
  list_ = nullptr;
  history_ = {};
  columns_.clear();
  shown_.clear();
  endResetModel();
}

QString ChangeTable::userOf(int change) const {
  if (!user_) return {};
  return fromUtf8(list_->textOf(history_.changes.at(static_cast<std::size_t>(change)).record, *user_));
}

QString ChangeTable::remarkOf(std::size_t change) const {
  QStringList remarks;
  const query::ItemChange& shown = history_.changes[change];
  if (!shown.continues) {
    // One short value can be named; a long one would fill the column.
    constexpr qsizetype mostNamed = 40;
    const QString before = fromUtf8(history_.changes[change - 1].newValue).simplified();
    remarks << (before.isEmpty() || before.size() > mostNamed ? ownText("history.doesNotContinue")
                                                              : ownText("history.doesNotContinueFrom").arg(before));
  }
  if (!shown_[change]) remarks << ownText("history.hidden");
  return remarks.join(QLatin1String("; "));
}

int ChangeTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(history_.changes.size());
}

int ChangeTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant ChangeTable::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != Qt::DisplayRole) return {};
  const auto change = static_cast<std::size_t>(index.row());
  const Column& column = columns_[static_cast<std::size_t>(index.column())];
  return column.source ? fromUtf8(list_->textOf(history_.changes[change].record, *column.source)) : remarkOf(change);
}

QVariant ChangeTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  return columns_[static_cast<std::size_t>(section)].caption;
}

}  // namespace korvel::control
