#pragma once

#include "tests/support/tds/column.h"

namespace korvel::test::tds {

/// The five bytes that stand for a collation in a column's description.
void writeCollation(ByteWriter& out, const Collation& collation);
/// Bytes of a decimal's value, sign included.
[[nodiscard]] unsigned decimalSize(unsigned precision);

}  // namespace korvel::test::tds
