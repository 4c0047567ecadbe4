#include "output/row_writer.h"

#include <utility>

namespace korvel::output {

RecordStream::RecordStream(std::unique_ptr<RowWriter> writer, std::function<bool()> wanted)
    : writer_(std::move(writer)), wanted_(std::move(wanted)) {}

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
