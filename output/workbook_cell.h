#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "db/connection.h"

namespace korvel::output {

/// The most UTF-16 units that a cell holds.
inline constexpr std::size_t mostCellUnits = 32'767;

/// What a cell of a workbook holds of a value: its type where nothing is lost by it, else text.
class WorkbookCell {
 public:
  enum class Kind { empty, number, date, boolean, text };

  /// The cell of a value in a column of this kind. Room for text is kept from call to call.
  void assign(db::ColumnKind column, const db::Cell& value);
  void assignText(std::string_view value);

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  /// Of a number, a date (days of a spreadsheet) or a boolean (0 or 1).
  [[nodiscard]] double number() const noexcept { return number_; }
  /// Of a text, with codes for what a reader would take for one.
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  [[nodiscard]] bool wasCut() const noexcept { return wasCut_; }
  [[nodiscard]] bool wasNoText() const noexcept { return wasNoText_; }

  /// The value as it can be read back from the workbook; null is an empty cell. Valid until the cell changes.
  [[nodiscard]] db::Cell readBack();

 private:
  Kind kind_ = Kind::empty;
  double number_ = 0;
  bool wasCut_ = false;
  bool wasNoText_ = false;
  std::string text_;
  std::string readBack_;
};

// What readers of workbooks make of a cell.

/// The text of a number, to the 15 digits that spreadsheets keep.
[[nodiscard]] std::string workbookNumberText(double number);
/// A text with each code _x0041_ replaced by its character.
[[nodiscard]] std::string workbookText(std::string_view coded);

}  // namespace korvel::output
