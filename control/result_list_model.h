#pragma once

#include <QAbstractTableModel>
#include <functional>

#include "results/result_list.h"

namespace korvel::control {

/// The item model of a ResultList. Holds no text: every cell is read from the list when it is painted.
class ResultListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// `list` must outlive the model; change it through the members below only.
  explicit ResultListModel(results::ResultList& list, QObject* parent = nullptr);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role = Qt::DisplayRole) const override;

  [[nodiscard]] const results::ResultList& list() const noexcept { return list_; }

  /// What is said of a row, as the tooltip and the accessible text of the vertical header; empty for nothing.
  void setRowTexts(std::function<QString(int row)> texts) { rowTexts_ = std::move(texts); }

  /// Drops the rows.
  void clear();
  /// Replaces the columns.
  void setColumns(const std::function<void(results::ResultList&)>& change);
  /// A click on the header of `column`; records that are selected or current stay so, wherever they move.
  /// Throws Error when memory runs out; the rows then stay as they were.
  void clickColumn(int column);

  /// Shows only the rows that pass; an empty filter shows all. Throws Error when memory runs out; the list then shows
  /// what it showed before.
  void setFilter(results::RowFilter filter);

  /// Switches sorting on with the list's own key and order; like clickColumn otherwise.
  void sortRows();

  /// While it exists, the list's rows may be replaced; views are updated when it is destroyed.
  class RowsChange {
   public:
    explicit RowsChange(ResultListModel& model) : model_(model) { model_.beginResetModel(); }
    ~RowsChange() { model_.endResetModel(); }
    RowsChange(const RowsChange&) = delete;
    RowsChange& operator=(const RowsChange&) = delete;

   private:
    ResultListModel& model_;
  };

 private:
  [[nodiscard]] QVariant rowHeaderData(int row, int role) const;
  void reorder(const std::function<void()>& sort);

  results::ResultList& list_;
  std::function<QString(int)> rowTexts_;
};

}  // namespace korvel::control
