#include "results/row_sink.h"

#include <new>
#include <system_error>
#include <thread>

#include "base/error.h"
#include "results/background_appender.h"
#include "results/out_of_memory.h"

namespace korvel::results {

namespace {

/// Rows of an answer from which on a second thread pays for its start.
constexpr std::size_t manyRows = 16384;

}  // namespace

RowSink::RowSink(bool firstOnly) : firstOnly_(firstOnly) {}

RowSink::~RowSink() = default;

void RowSink::beginResult(std::span<const db::Field> fields) {
  if (appender_ != nullptr) appender_->finish();
  try {
    if (store_ == nullptr) store_ = std::make_shared<RowStore>();
    if (firstRows_.empty()) firstFields_.assign(fields.begin(), fields.end());
    firstRows_.push_back(store_->rowCount());
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
  if (!firstOnly_ || firstRows_.size() == 1) store_->beginResult(fields);
}

bool RowSink::row(std::span<const db::Cell> cells) {
  // Nobody asked for more than the first result set: the server need not go on sending.
  if (firstOnly_ && firstRows_.size() > 1) return false;
  if (appender_ == nullptr) {
    store_->append(cells);
    if (store_->rowCount() == manyRows) startAppender();
    return true;
  }
  try {
    appender_->append(cells);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
  return true;
}

void RowSink::endResult() {
  if (appender_ != nullptr) appender_->finish();
}

std::shared_ptr<const RowStore> RowSink::takeStore() {
  appender_.reset();
  firstRows_.clear();
  firstFields_.clear();
  return std::move(store_);
}

void RowSink::startAppender() {
  if (std::thread::hardware_concurrency() < 2) return;
  try {
    appender_ = std::make_unique<BackgroundAppender>(*store_);
  } catch (const std::system_error&) {
    // No thread to be had: the rows go on being appended by this one.
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

}  // namespace korvel::results
