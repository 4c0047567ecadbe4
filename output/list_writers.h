#pragma once

#include "output/byte_sink.h"
#include "output/json_writer.h"
#include "output/row_writer.h"
#include "results/result_list.h"

namespace korvel::output {

// A list's rows in their order, in UTF-8, chunk by chunk, through the same writers that rows of an answer go through.
// What the sink throws comes through; the output is then incomplete.

/// Hands a list to `writer` as it is displayed, its captions as the names of the fields.
void writeDisplayedRows(const results::ResultList& list, RowWriter& writer, const RowProgress& progress = {});

/// The list as displayed, in the layout of the text export.
void writeText(const results::ResultList& list, const ByteSink& sink);
/// The list as displayed, in the layout of the spreadsheet's exchange file.
void writeExchange(const results::ResultList& list, const ByteSink& sink);

// Full copies of the records behind the rows: every column of the record under its own name, values exactly as they are
// stored, also where the list displays less.

/// A list without a record behind it gives the line of its captions.
void writeCsv(const results::ResultList& list, const ByteSink& sink);
/// Returns which bytes JSON cannot carry.
JsonReplacements writeJson(const results::ResultList& list, const ByteSink& sink);

}  // namespace korvel::output
