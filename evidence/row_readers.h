#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "db/connection.h"

namespace korvel::evidence {

/// Takes the rows of a file, in order: the names of the columns, and the cells, both valid during the call. Rows of
/// JSON may have other columns than the row before.
using RowTaker = std::function<void(std::span<const db::Field> fields, std::span<const db::Cell> cells)>;

// Read back the rows that our full copies hold. Throw Error with a sentence that names the place where a file is not
// what our writers write; rows that came before were taken.

/// Null is an empty field, an empty text "".
void readCsvRows(std::string_view bytes, const RowTaker& take);
void readJsonRows(std::string_view bytes, const RowTaker& take);

}  // namespace korvel::evidence
