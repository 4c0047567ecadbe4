#include "results/background_appender.h"

#include <utility>

#include "results/row_store.h"
#include "results/text_bytes.h"

namespace korvel::results {

BackgroundAppender::BackgroundAppender(RowStore& store) : store_(store) {
  for (Batch& batch : batches_) batch.texts = heapBytes(batchBytes);
  thread_ = std::thread([this] { work(); });
}

BackgroundAppender::~BackgroundAppender() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void BackgroundAppender::beginResult(std::span<const db::Field> fields) {
  handOver();
  current().begins.emplace(fields.begin(), fields.end());
}

void BackgroundAppender::append(std::span<const db::Cell> cells, std::size_t textBytes) {
  if (textBytes > batchBytes) {
    // Too long to travel: the store is ours for a moment.
    finish();
    store_.append(cells);
    return;
  }
  if (current().used + textBytes > batchBytes || current().rowEnds.size() == batchRows) handOver();
  copyInto(current(), cells);
}

void BackgroundAppender::copyInto(Batch& batch, std::span<const db::Cell> cells) {
  const std::size_t before = batch.cells.size();
  try {
    batch.cells.insert(batch.cells.end(), cells.begin(), cells.end());
    batch.rowEnds.push_back(batch.cells.size());
  } catch (...) {
    batch.cells.resize(before);
    throw;
  }
  char* place = batch.texts.get() + batch.used;
  for (db::Cell& cell : std::span{batch.cells}.subspan(before)) {
    const std::size_t size = cell.text.size();
    copyText(cell.text, place);
    cell.text = {place, size};
    place += size;
  }
  batch.used = static_cast<std::size_t>(place - batch.texts.get());
}

void BackgroundAppender::handOver() {
  const bool anything = current().begins || !current().rowEnds.empty();
  std::unique_lock lock(mutex_);
  if (anything) {
    ++handedOver_;
    changed_.notify_all();
  }
  changed_.wait(lock, [this] { return handedOver_ - appended_ < batchCount || failure_ != nullptr; });
  if (failure_ != nullptr) std::rethrow_exception(failure_);
}

void BackgroundAppender::finish() {
  handOver();
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return handedOver_ == appended_ || failure_ != nullptr; });
  if (failure_ != nullptr) std::rethrow_exception(failure_);
}

void BackgroundAppender::appendAll(Batch& batch) {
  if (batch.begins) store_.beginResult(*batch.begins);
  batch.begins.reset();
  std::size_t begin = 0;
  for (const std::size_t end : batch.rowEnds) {
    store_.append(std::span{batch.cells}.subspan(begin, end - begin));
    begin = end;
  }
  batch.used = 0;
  batch.cells.clear();
  batch.rowEnds.clear();
}

void BackgroundAppender::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return stopping_ || handedOver_ != appended_; });
    if (stopping_) return;
    Batch& batch = batches_[appended_ % batchCount];
    lock.unlock();
    try {
      appendAll(batch);
    } catch (...) {
      lock.lock();
      failure_ = std::current_exception();
      changed_.notify_all();
      return;
    }
    lock.lock();
    ++appended_;
    changed_.notify_all();
  }
}

}  // namespace korvel::results
