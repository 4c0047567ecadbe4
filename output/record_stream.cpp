#include "output/record_stream.h"

#include <utility>

#include "output/csv_rows.h"
#include "output/json_row_writer.h"
#include "output/separated_lines.h"

namespace korvel::output {

namespace {

class CsvWriter final : public RowWriter {
 public:
  explicit CsvWriter(const ByteSink& sink) : out_(sink) {}
  void begin(std::span<const db::Field> fields) override { writeCsvNames(fields, out_); }
  void row(std::span<const db::Cell> cells) override { writeCsvRow(cells, out_); }
  void end() override { out_.flush(); }

 private:
  RowBuffer out_;
};

class LineWriter final : public RowWriter {
 public:
  LineWriter(const ByteSink& sink, char separator) : chunks_(sink), separator_(separator) {}
  void begin(std::span<const db::Field> fields) override { appendHeaderLine(fields, separator_, chunks_.text()); }
  void row(std::span<const db::Cell> cells) override {
    appendRowLine(cells, separator_, chunks_.text());
    chunks_.endLine();
  }
  void end() override { chunks_.flush(); }

 private:
  ChunkedText chunks_;
  char separator_;
};

}  // namespace

std::unique_ptr<RowWriter> rowWriterOf(ListFormat format, const ByteSink& sink) {
  switch (format) {
    case ListFormat::json:
      return std::make_unique<JsonRowWriter>(sink);
    case ListFormat::text:
      return std::make_unique<LineWriter>(sink, textExportSeparator);
    case ListFormat::exchange:
      return std::make_unique<LineWriter>(sink, exchangeSeparator);
    case ListFormat::table:
    case ListFormat::csv:
      break;
  }
  return std::make_unique<CsvWriter>(sink);
}

RecordStream::RecordStream(ListFormat format, const ByteSink& sink, std::function<bool()> wanted)
    : RecordStream(rowWriterOf(format, sink), std::move(wanted)) {}

RecordStream::RecordStream(std::unique_ptr<RowWriter> writer, std::function<bool()> wanted)
    : writer_(std::move(writer)), wanted_(std::move(wanted)) {}

RecordStream::~RecordStream() = default;

void RecordStream::beginResult(std::span<const db::Field> fields) {
  if (begun_)
    complete_ = true;
  else
    fields_.assign(fields.begin(), fields.end());
  begun_ = true;
}

bool RecordStream::row(std::span<const db::Cell> cells) {
  if (!shouldContinue()) return false;
  if (rowCount_++ == 0) writer_->begin(fields_);
  writer_->row(cells);
  return true;
}

void RecordStream::endResult() {
  complete_ = true;
}

bool RecordStream::shouldContinue() {
  if (complete_) return false;
  if (!stopped_) stopped_ = !wanted_();
  return !stopped_;
}

void RecordStream::finish() {
  if (rowCount_ > 0) writer_->end();
}

}  // namespace korvel::output
