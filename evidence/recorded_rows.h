#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "evidence/manifest.h"
#include "evidence/row_digest.h"
#include "output/row_writer.h"
#include "output/workbook_cell.h"
#include "query/plant_time.h"
#include "results/result_list.h"

namespace korvel::evidence {

/// Whether rows are recorded as a workbook's cells hold them, too: a cell does not keep a stored text in each case.
enum class RecordedForms { stored, storedAndCells };
[[nodiscard]] RecordedForms recordedForms(std::string_view outputFormat) noexcept;

/// Finds what a manifest says of time stamps.
class StampRecorder {
 public:
  void begin(std::span<const db::Field> fields);
  void row(std::span<const db::Cell> cells);
  /// What another recorder has found of other rows.
  void add(const StampRecorder& other);
  [[nodiscard]] std::optional<RecordedStamps> take();

 private:
  std::optional<query::StampColumns> columns_;
  std::optional<RecordedStamps> stamps_;
  query::RepeatedTimes repeated_;
};

/// Digests rows as a workbook's cells hold them, so that they can be recognized in it.
class CellDigester {
 public:
  /// For rows whose values are written as those of `fields`.
  explicit CellDigester(std::span<const db::Field> fields);
  [[nodiscard]] Digest digestOf(std::span<const db::Cell> cells);
  /// The names of columns as they are read back from a workbook.
  [[nodiscard]] static std::vector<db::Field> readBackFields(std::span<const db::Field> fields);

 private:
  std::vector<db::Field> fields_;
  RowDigester digester_;
  std::vector<output::WorkbookCell> written_;
  std::vector<db::Cell> readBack_;
};

/// What a manifest records of rows that go by.
class RowRecorder {
 public:
  explicit RowRecorder(RecordedForms forms = RecordedForms::stored) : forms_(forms) {}
  /// The rows that follow have these columns. Rows of several results are recorded under the columns of the first.
  void begin(std::span<const db::Field> fields);
  void row(std::span<const db::Cell> cells);
  /// All rows have come.
  [[nodiscard]] Manifest::Rows take();

 private:
  RecordedForms forms_;
  Manifest::Rows rows_;
  std::unique_ptr<RowDigester> digester_;
  std::unique_ptr<CellDigester> cellDigester_;
  StampRecorder stamps_;
};

/// Records the rows that another writer writes.
class RecordingWriter final : public output::RowWriter {
 public:
  /// `recorder` outlives the writer.
  RecordingWriter(std::unique_ptr<output::RowWriter> writer, RowRecorder& recorder)
      : writer_(std::move(writer)), recorder_(recorder) {}

  void begin(std::span<const db::Field> fields) override {
    recorder_.begin(fields);
    writer_->begin(fields);
  }
  void row(std::span<const db::Cell> cells) override {
    recorder_.row(cells);
    writer_->row(cells);
  }
  void end() override { writer_->end(); }

 private:
  std::unique_ptr<output::RowWriter> writer_;
  RowRecorder& recorder_;
};

/// Records the records behind a list's rows, with all of their columns, in the order of the list.
[[nodiscard]] Manifest::Rows recordedRows(const results::ResultList& list, RecordedForms forms = RecordedForms::stored);

}  // namespace korvel::evidence
