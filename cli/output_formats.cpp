#include "cli/output_formats.h"

#include <array>
#include <optional>
#include <ostream>
#include <string>

#include "base/text.h"
#include "cli/messages.h"
#include "cli/pdf_output.h"
#include "cli/standard_question.h"
#include "output/csv_writer.h"
#include "output/json_writer.h"
#include "output/list_table.h"
#include "output/list_writers.h"
#include "output/report.h"
#include "output/separated_text.h"
#include "output/workbook.h"
#include "query/plant_time.h"
#include "settings/string_table.h"

namespace korvel::cli {

namespace {

/// For a format that can carry every value.
template <void (*write)(const results::ResultList&, const output::ByteSink&)>
void writeAll(const CaptionedList& list, const output::ByteSink& sink, std::ostream& /*err*/) {
  write(list.list, sink);
}

void sayReplacements(const output::JsonReplacements& replaced, std::ostream& err) {
  if (replaced.names) say(err, "note: column names have bytes that are no text; each stands as U+FFFD");
  if (replaced.values > 0)
    say(err, "note: values with bytes that are no text, which stand as U+FFFD: " + std::to_string(replaced.values) +
                 "; the first one in row " + std::to_string(replaced.firstRow + 1) + ", column " +
                 std::to_string(replaced.firstColumn + 1));
}

void writeJson(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err) {
  sayReplacements(output::writeJson(list.list, sink), err);
}

/// Notes at the end what JSON could not carry.
class CommentedJsonWriter final : public output::RowWriter {
 public:
  CommentedJsonWriter(const output::ByteSink& sink, std::ostream& err) : records_(sink), err_(err) {}

  void begin(std::span<const db::Field> fields) override { records_.begin(fields); }
  void row(std::span<const db::Cell> cells) override { records_.row(cells); }
  void end() override {
    records_.end();
    sayReplacements(records_.replacements(), err_);
  }

 private:
  output::JsonWriter records_;
  std::ostream& err_;
};

void writeHtml(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err) {
  const output::ReportList reported{list.caption, &list.list};
  const std::size_t replaced = output::writeReport(output::ReportTemplate::singleList, {&reported, 1}, {}, sink);
  if (replaced > 0)
    say(err, "note: characters that windows-1252 does not hold stand as \"?\": " + std::to_string(replaced));
}

void sayLosses(const output::WorkbookSummary& summary, std::ostream& err) {
  if (summary.lossCount == 0) return;
  const output::WorkbookLoss& first = summary.losses.front();
  say(err, "note: values that a cell cannot hold as they are: " + std::to_string(summary.lossCount) +
               "; the first one in row " + std::to_string(first.row + 1) + ", column " +
               std::to_string(first.column + 1) +
               (first.kind == output::WorkbookLoss::Kind::tooLong ? ", was cut" : ", has bytes that are no text"));
}

/// What the properties of a workbook say: of the rows, and of the time stamps among them.
std::string workbookRemark(std::string_view remark, std::span<const db::Field> fields) {
  std::string text(remark);
  if (query::stampColumnsOf(fields)) addSentence(text, settings::ownText(query::plantTimeText, {}));
  return text;
}

void writeXlsx(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err) {
  const std::string remark = workbookRemark(list.remark, output::workbookFields(list.list));
  sayLosses(output::writeWorkbook(list.list, std::string(list.caption), sink, {}, remark), err);
}

/// Fills a workbook, which is created with the first row: an answer without rows leaves no temporary file.
class XlsxWriter final : public output::RowWriter {
 public:
  XlsxWriter(std::string_view caption, const output::ByteSink& sink, std::ostream& err)
      : caption_(caption), sink_(sink), err_(err) {}

  void begin(std::span<const db::Field> fields) override {
    output::Workbook& book = book_.emplace(std::string(caption_));
    book.setRemark(workbookRemark({}, fields));
    book.beginResult(fields);
  }
  void row(std::span<const db::Cell> cells) override { book_->row(cells); }
  void end() override {
    book_->endResult();
    sayLosses(book_->finish(sink_), err_);
  }

 private:
  std::string_view caption_;
  const output::ByteSink& sink_;
  std::ostream& err_;
  std::optional<output::Workbook> book_;
};

using RowWriterPointer = std::unique_ptr<output::RowWriter>;

RowWriterPointer streamXlsx(std::string_view caption, const output::ByteSink& sink, std::ostream& err) {
  return std::make_unique<XlsxWriter>(caption, sink, err);
}

RowWriterPointer streamJson(std::string_view /*caption*/, const output::ByteSink& sink, std::ostream& err) {
  return std::make_unique<CommentedJsonWriter>(sink, err);
}

RowWriterPointer streamCsv(std::string_view /*caption*/, const output::ByteSink& sink, std::ostream& /*err*/) {
  return std::make_unique<output::CsvWriter>(sink);
}

template <char separator>
RowWriterPointer streamText(std::string_view /*caption*/, const output::ByteSink& sink, std::ostream& /*err*/) {
  return std::make_unique<output::SeparatedTextWriter>(sink, separator);
}

using output::exchangeSeparator;
using output::textExportSeparator;
constexpr std::array formats = {
    OutputFormat{"table", false, writeAll<output::writeTable>, nullptr},
    OutputFormat{"text", false, writeAll<output::writeText>, streamText<textExportSeparator>},
    OutputFormat{"exchange", false, writeAll<output::writeExchange>, streamText<exchangeSeparator>},
    OutputFormat{"csv", false, writeAll<output::writeCsv>, streamCsv},
    OutputFormat{"json", false, writeJson, streamJson},
    OutputFormat{"html", false, writeHtml, nullptr},
    OutputFormat{"pdf", true, writePdf, nullptr},
    OutputFormat{"xlsx", true, writeXlsx, streamXlsx},
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
