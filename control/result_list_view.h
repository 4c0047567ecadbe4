#pragma once

#include <optional>

#include "base/twips.h"
#include "control/look/result_table.h"
#include "control/result_list_model.h"

namespace korvel::control {

/// One of the six lists `lvListView` on the surface: a table over a ResultListModel whose columns are measured in
/// twips.
class ResultListView final : public look::ResultTable {
  Q_OBJECT

 public:
  /// `model` must outlive the view.
  explicit ResultListView(ResultListModel& model, QWidget* parent = nullptr);

  [[nodiscard]] ResultListModel& listModel() const { return model_; }

  /// Gives every column the width that the list names for it, and shows all of them.
  void applyColumnWidths();
  /// Width 0 hides the column.
  void setColumnTwips(int column, Twips width);
  [[nodiscard]] Twips columnTwips(int column) const;
  /// A click on the header of a column: sorts, and keeps in sight the current record if it was. Throws Error when
  /// memory runs out; the rows then stay as they were.
  void clickHeader(int column);
  /// Shows sort key and direction of the list in the header.
  void showSortIcon();
  /// Takes name, size, bold and italic from `font`, nothing else.
  void setListFont(const QFont& font);

  /// The selected rows as they are shown, visible columns in their visible order, as tab-separated lines.
  /// Cells that hold tabs or line breaks stand in quotes.
  [[nodiscard]] QString selectedText() const;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  ResultListModel& model_;
};

}  // namespace korvel::control
