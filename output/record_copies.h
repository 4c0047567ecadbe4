#pragma once

#include "output/byte_sink.h"
#include "output/json_records.h"
#include "results/result_list.h"

namespace korvel::output {

/// Full copies of the records behind a list's rows, in the list's order: every column of the record under its own name,
/// values exactly as they are stored, also where the list displays less.

/// Comma-separated values after RFC 4180: a line of column names, CR LF, fields quoted where they need it. Null is an
/// empty field, an empty text is "", so that the two stay apart. Bytes stay as they are stored. A list without a record
/// behind it gives the line of its captions.
void writeCsv(const results::ResultList& list, const ByteSink& sink);

/// A JSON array with one object a record, one record a line. Every value is a string, so that no reader rounds a
/// number; null is null. A name that a record holds twice becomes NAME_2, NAME_3. Bytes that are not UTF-8, which JSON
/// cannot carry, become U+FFFD; returns where they did.
JsonReplacements writeJson(const results::ResultList& list, const ByteSink& sink);

}  // namespace korvel::output
