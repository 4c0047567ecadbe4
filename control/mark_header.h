#pragma once

#include <QHeaderView>
#include <functional>
#include <optional>

#include "evidence/row_reviews.h"

namespace korvel::control {

/// What the column of marks shows of a row.
struct RowMark {
  evidence::RowReview review = evidence::RowReview::none;
  bool hasComment = false;
};

/// The column of marks at the left edge of a list: a sign for each row, told apart by shape as well as by colour. It is
/// none of the list's columns: it is not sorted, printed, copied or exported, and stays where it is while the list is
/// scrolled. What it says in words comes from the model's vertical header.
class MarkHeader final : public QHeaderView {
  Q_OBJECT

 public:
  explicit MarkHeader(QWidget* parent = nullptr);

  /// Asked for each row that is painted.
  void setMarks(std::function<RowMark(int row)> marks);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  /// The room below the rows is that of the list, not of a header.
  void paintEvent(QPaintEvent* event) override;
  void paintSection(QPainter* painter, const QRect& place, int row) const override;

 private:
  std::function<RowMark(int)> marks_;
};

}  // namespace korvel::control
