#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/atomic_file.h"
#include "evidence/proven_file.h"
#include "evidence/recorded_rows.h"
#include "output/csv_writer.h"
#include "output/json_writer.h"

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

/// Writes rows as a csv or json file, with what `recorder` is to know of them.
inline std::string fileOf(const TextRows& rows, std::string_view format, RowRecorder& recorder) {
  std::string bytes;
  const output::ByteSink sink = [&](std::string_view part) { bytes += part; };
  std::unique_ptr<output::RowWriter> writer;
  if (format == "json")
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
  RowRecorder recorder;
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
