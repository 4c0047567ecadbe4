#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "evidence/row_readers.h"

namespace korvel::evidence {

/// How much of a workbook is read: more than ours have, and less than keeps a computer busy for hours. A small file may
/// claim to hold very much.
struct WorkbookLimits {
  std::uint64_t unpackedBytes = std::uint64_t{1} << 33U;
  std::size_t rows = std::size_t{1} << 26U;
};

/// Reads back the rows of a workbook of ours, also where a spreadsheet program has saved it: its sheets in their order,
/// each with the names of the columns in its first row. A value is what its cell holds: a number to 15 digits, dates as
/// numbers, null for an empty cell, and behind a formula its result. Rows without a value count where others follow.
/// Throws Error with a sentence where a file cannot be read, or holds more than the limits; rows that came before were
/// taken.
void readWorkbookRows(std::string_view bytes, const RowTaker& take, const WorkbookLimits& limits = {});

}  // namespace korvel::evidence
