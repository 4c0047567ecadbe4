#pragma once

#include <span>

#include "db/connection.h"
#include "output/row_buffer.h"

namespace korvel::output {

/// Comma-separated values after RFC 4180, in UTF-8 as they come: fields quoted where they need it, lines ended by
/// CR LF. Null is an empty field, an empty text is "", so that the two stay apart.

/// Writes one line.
void writeCsvRow(std::span<const db::Cell> cells, RowBuffer& out);
/// Writes the line of the names.
void writeCsvNames(std::span<const db::Field> fields, RowBuffer& out);

}  // namespace korvel::output
