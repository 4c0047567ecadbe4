#include "cli/output_formats.h"

#include <array>
#include <ostream>

#include "base/text.h"
#include "cli/messages.h"
#include "cli/pdf_output.h"
#include "output/list_writers.h"
#include "output/report.h"
#include "output/workbook.h"

namespace korvel::cli {

namespace {

template <output::ListFormat format>
void writeText(const CaptionedList& list, const output::ByteSink& sink, std::ostream& /*err*/) {
  output::writeList(format, list.list, sink);
}

void writeHtml(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err) {
  const output::ReportList reported{list.caption, &list.list};
  const auto notes = output::writeReport(output::ReportTemplate::singleList, {&reported, 1}, {}, sink);
  if (notes.replacedCharacters > 0)
    say(err,
        "note: characters that windows-1252 does not hold stand as \"?\": " + std::to_string(notes.replacedCharacters));
}

void writeXlsx(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err) {
  const auto summary = output::writeWorkbook(list.list, std::string(list.caption), sink);
  if (summary.lossCount == 0) return;
  const output::WorkbookLoss& first = summary.losses.front();
  say(err, "note: values that a cell cannot hold as they are: " + std::to_string(summary.lossCount) +
               "; the first one in row " + std::to_string(first.row + 1) + ", column " +
               std::to_string(first.column + 1) +
               (first.kind == output::WorkbookLoss::Kind::tooLong ? ", was cut" : ", has bytes that are no text"));
}

using output::ListFormat;
constexpr std::array formats = {
    OutputFormat{"table", false, writeText<ListFormat::table>},
    OutputFormat{"text", false, writeText<ListFormat::text>},
    OutputFormat{"exchange", false, writeText<ListFormat::exchange>},
    OutputFormat{"csv", false, writeText<ListFormat::csv>},
    OutputFormat{"json", false, writeText<ListFormat::json>},
    OutputFormat{"html", false, writeHtml},
    OutputFormat{"pdf", true, writePdf},
    OutputFormat{"xlsx", true, writeXlsx},
};

}  // namespace

std::span<const OutputFormat> outputFormats() noexcept {
  return formats;
}

const OutputFormat* outputFormatNamed(std::string_view name) noexcept {
  for (const OutputFormat& format : formats)
    if (equalsIgnoringAsciiCase(name, format.name)) return &format;
  return nullptr;
}

}  // namespace korvel::cli
