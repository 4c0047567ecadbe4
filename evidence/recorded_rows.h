#pragma once

#include <memory>
#include <span>
#include <vector>

#include "evidence/manifest.h"
#include "evidence/row_digest.h"
#include "output/row_writer.h"
#include "results/result_list.h"

namespace korvel::evidence {

/// What a manifest records of rows that go by.
class RowRecorder {
 public:
  /// The rows that follow have these columns. Rows of several results are recorded under the columns of the first.
  void begin(std::span<const db::Field> fields);
  void row(std::span<const db::Cell> cells) { rows_.each.push_back(digester_->digestOf(cells)); }
  /// All rows have come.
  [[nodiscard]] Manifest::Rows take();

 private:
  Manifest::Rows rows_;
  std::unique_ptr<RowDigester> digester_;
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
[[nodiscard]] Manifest::Rows recordedRows(const results::ResultList& list);

}  // namespace korvel::evidence
