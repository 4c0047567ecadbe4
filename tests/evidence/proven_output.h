#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/atomic_file.h"
#include "evidence/proven_file.h"
#include "evidence/recorded_rows.h"
#include "output/csv_writer.h"
#include "output/json_writer.h"
#include "output/workbook.h"

namespace korvel::evidence {

using TextRows = std::vector<std::vector<std::string>>;

inline const std::vector<db::Field> provenFields{{"EntryID"}, {"User"}, {"Value"}};

/// `count` rows, no two of them the same.
inline TextRows numberedRows(std::size_t count) {
  TextRows rows;
  for (std::size_t i = 0; i < count; ++i)
    rows.push_back(
        {std::to_string(i + 1), i % 3 == 0 ? "Małgorzata" : "Luca, \"Rossi\"", std::to_string(i * 7 % 1000)});
  return rows;
}

/// A workbook that is written row by row.
class WorkbookWriter final : public output::RowWriter {
 public:
  WorkbookWriter(output::ByteSink sink, std::uint32_t rowsPerSheet)
      : sink_(std::move(sink)), book_("Rows", std::filesystem::temp_directory_path(), rowsPerSheet) {}
  void begin(std::span<const db::Field> fields) override { book_.beginResult(fields); }
  void row(std::span<const db::Cell> cells) override { book_.row(cells); }
  void end() override {
    book_.endResult();
    book_.finish(sink_);
  }

 private:
  output::ByteSink sink_;
  output::Workbook book_;
};

/// Writes rows as a csv, json or xlsx file, with what `recorder` is to know of them.
inline std::string fileOf(const TextRows& rows, std::string_view format, RowRecorder& recorder) {
  std::string bytes;
  const output::ByteSink sink = [&](std::string_view part) { bytes += part; };
  std::unique_ptr<output::RowWriter> writer;
  if (format == "xlsx")
    writer = std::make_unique<WorkbookWriter>(sink, output::Workbook::maxRowsPerSheet);
  else if (format == "json")
    writer = std::make_unique<output::JsonWriter>(sink);
  else
    writer = std::make_unique<output::CsvWriter>(sink);
  RecordingWriter recording(std::move(writer), recorder);
  recording.begin(provenFields);
  for (const auto& row : rows) {
    std::vector<db::Cell> cells;
    for (const std::string& text : row) cells.push_back({text});
    recording.row(cells);
  }
  recording.end();
  return bytes;
}

/// Writes rows as a file with its manifest.
inline void writeProven(const std::filesystem::path& target, const TextRows& rows, std::string_view format = "csv") {
  RowRecorder recorder(recordedForms(format));
  const std::string bytes = fileOf(rows, format, recorder);
  ProvenFile file(target);
  file.write(bytes);
  Manifest manifest;
  manifest.program = "korvel-audit";
  manifest.programVersion = "1.0.0";
  manifest.begun = "2026-11-22T16:05:03+01:00";
  manifest.ended = "2026-11-22T16:05:04+01:00";
  manifest.output.format = format;
  manifest.rows = recorder.take();
  file.commit(manifest);
}

}  // namespace korvel::evidence
