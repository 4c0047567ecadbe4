#include "output/list_writers.h"

#include "output/list_table.h"
#include "output/record_copies.h"
#include "output/separated_lines.h"

namespace korvel::output {

namespace {

void writeSeparatedLines(const results::ResultList& list, char separator, const ByteSink& sink) {
  ChunkedText chunks(sink);
  appendHeaderLine(list, separator, chunks.text());
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    appendRowLine(list, {row}, separator, chunks.text());
    chunks.endLine();
  }
  chunks.flush();
}

}  // namespace

void writeList(ListFormat format, const results::ResultList& list, const ByteSink& sink) {
  switch (format) {
    case ListFormat::table:
      return writeTable(list, sink);
    case ListFormat::text:
      return writeSeparatedLines(list, textExportSeparator, sink);
    case ListFormat::exchange:
      return writeSeparatedLines(list, exchangeSeparator, sink);
    case ListFormat::csv:
      return writeCsv(list, sink);
    case ListFormat::json:
      writeJson(list, sink);
      return;
  }
}

}  // namespace korvel::output
