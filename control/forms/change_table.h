#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "query/item_history.h"

namespace korvel::control {

/// The changes of an item as a table, in the order of time: old and new value side by side, and in words where a change
/// does not continue from the one before.
class ChangeTable final : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// Shows a history of `list`, whose rows must not change as long as it is shown.
  void show(const results::ResultList& list, query::ItemHistory history);
  void clear();
  [[nodiscard]] const query::ItemHistory& history() const { return history_; }
  /// Whether the list shows the record of a change: a filter may hide it.
  [[nodiscard]] bool isShown(int change) const { return shown_.at(static_cast<std::size_t>(change)); }
  /// Who made a change.
  [[nodiscard]] QString userOf(int change) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  /// A column: one of the list's, or the remark.
  struct Column {
    std::optional<results::ColumnIndex> source;
    QString caption;
  };
  [[nodiscard]] QString remarkOf(std::size_t change) const;

  const results::ResultList* list_ = nullptr;
  query::ItemHistory history_;
  std::vector<Column> columns_;
  std::optional<results::ColumnIndex> user_;
  std::vector<bool> shown_;
};

}  // namespace korvel::control
