#pragma once

#include <QString>
#include <optional>
#include <vector>

class QMimeData;

namespace korvel::control {

class ResultListModel;

/// Rows first..last of a list.
struct RowSpan {
  int first = 0;
  int last = 0;
  friend bool operator==(const RowSpan&, const RowSpan&) = default;
};

/// Rows of cells for the clipboard: tab-separated lines for editors, and a table of text cells for spreadsheets and
/// word processors, which would convert plain lines to numbers, dates and formulas.
class RowCopy {
 public:
  /// A further row is not taken up once both forms together have more than `limit` characters.
  explicit RowCopy(qsizetype limit) : limit_(limit) {}

  enum class CellKind { caption, value };
  void beginRow();
  void addCell(const QString& text, CellKind kind = CellKind::value);
  void endRow();

  [[nodiscard]] bool isFull() const { return text_.size() + html_.size() > limit_; }
  [[nodiscard]] const QString& text() const { return text_; }
  [[nodiscard]] QString html() const;
  /// Both forms in one object, which the clipboard takes over.
  [[nodiscard]] QMimeData* mimeData() const;

 private:
  qsizetype limit_;
  bool rowIsEmpty_ = true;
  QString text_;
  QString html_;
};

/// The captions of `columns` and the texts of the rows as the list shows them; nothing where they are too many for
/// `limit`.
[[nodiscard]] std::optional<RowCopy> copyRows(const ResultListModel& model, const std::vector<int>& columns,
                                              const std::vector<RowSpan>& rows, qsizetype limit);

}  // namespace korvel::control
