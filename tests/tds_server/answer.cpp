#include "tests/tds_server/answer.h"

#include <stdexcept>

namespace korvel::test::tds {
namespace {

// Between parts of this size the server looks whether the client has sent an attention.
constexpr std::size_t streamPart = std::size_t{32} * 1024;

}  // namespace

Answer& Answer::procedure() {
  procedure_ = true;
  return *this;
}

Answer& Answer::result(std::vector<Column> columns) {
  closeResult();
  settle();
  columns_ = std::move(columns);
  writeColumns(stream(), columns_);
  resultOpen_ = true;
  rowCount_ = 0;
  return *this;
}

Answer& Answer::row(const std::vector<Value>& values) {
  return addRow(values, false);
}

Answer& Answer::bitmapRow(const std::vector<Value>& values) {
  return addRow(values, true);
}

Answer& Answer::rows(std::size_t count, const std::function<std::vector<Value>(std::size_t)>& make) {
  for (std::size_t i = 0; i < count; ++i) addRow(make(i), false);
  return *this;
}

Answer& Answer::addRow(const std::vector<Value>& values, bool bitmap) {
  if (!resultOpen_) throw std::logic_error("a row needs an open result");
  (bitmap ? writeBitmapRow : writeRow)(stream(), columns_, values, chunkSize_);
  ++rowCount_;
  return *this;
}

Answer& Answer::done() {
  if (!resultOpen_) throw std::logic_error("no result is open");
  closeResult();
  return *this;
}

Answer& Answer::affected(std::uint64_t rows) {
  closeResult();
  settle();
  rowCount_ = rows;
  pending_ = openDone(doneCount);
  return *this;
}

Answer& Answer::print(const std::string& text) {
  return warning({0, text, 0, 1, 1});
}

Answer& Answer::warning(Message message) {
  if (message.severity > 10) message.severity = 10;
  if (!resultOpen_) settle();
  writeInfo(stream(), message);
  if (!resultOpen_) {
    rowCount_ = 0;
    pending_ = openDone(0);
  }
  return *this;
}

Answer& Answer::error(const Message& message) {
  bareError(message);
  if (!resultOpen_) rowCount_ = 0;
  pending_ = openDone(resultOpen_ ? doneError | doneCount : doneError);
  resultOpen_ = false;
  return *this;
}

Answer& Answer::bareError(const Message& message) {
  if (!resultOpen_) settle();
  writeError(stream(), message);
  return *this;
}

Answer& Answer::chunks(std::size_t size) {
  chunkSize_ = size;
  return *this;
}

Answer& Answer::tokens(std::string_view bytes) {
  if (!resultOpen_) settle();
  stream().raw(bytes);
  return *this;
}

Answer& Answer::cut(std::size_t count) {
  std::string bytes = stream_.take();
  if (count > bytes.size()) throw std::logic_error("nothing to cut");
  bytes.resize(bytes.size() - count);
  stream_ = ByteWriter().raw(bytes);
  return *this;
}

Answer& Answer::abandon() {
  moveStreamToSteps();
  abandoned_ = true;
  return *this;
}

std::string Answer::ending(bool called, std::optional<std::int32_t> handle) const {
  if (abandoned_) return {};
  ByteWriter out;
  out.raw(stream_.bytes());
  Done last = resultOpen_ ? openDone(doneCount) : pending_.value_or(Done{});
  if (called || procedure_) {
    if (resultOpen_ || pending_) {
      last.token = DoneToken::inProcedure;
      last.flags = static_cast<std::uint16_t>(last.flags | doneMore);
      writeDone(out, last);
    }
    writeReturnStatus(out, 0);
    if (handle) writeReturnHandle(out, *handle);
    last = {DoneToken::procedure, 0, 0};
  }
  writeDone(out, last);
  return out.take();
}

Answer& Answer::interrupt(Step step) {
  if (!resultOpen_) settle();
  moveStreamToSteps();
  steps_.push_back(std::move(step));
  return *this;
}

ByteWriter& Answer::stream() {
  if (abandoned_) throw std::logic_error("the answer has been abandoned");
  if (stream_.bytes().size() >= streamPart) moveStreamToSteps();
  return stream_;
}

void Answer::moveStreamToSteps() {
  if (!stream_.bytes().empty()) steps_.emplace_back(SendTokens{stream_.take()});
  stream_ = ByteWriter();
}

Done Answer::openDone(unsigned flags) const {
  return {procedure_ ? DoneToken::inProcedure : DoneToken::batch, static_cast<std::uint16_t>(flags), rowCount_};
}

void Answer::closeResult() {
  if (resultOpen_) pending_ = openDone(doneCount);
  resultOpen_ = false;
}

void Answer::settle() {
  if (!pending_) return;
  pending_->flags = static_cast<std::uint16_t>(pending_->flags | doneMore);
  writeDone(stream(), *pending_);
  pending_.reset();
}

}  // namespace korvel::test::tds
