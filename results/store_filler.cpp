#include "results/store_filler.h"

#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "results/background_appender.h"
#include "results/memory_watch.h"

namespace korvel::results {

namespace {

/// Rows of an answer from which on a second thread pays for its start.
constexpr std::size_t manyRows = 4096;

/// What a cell costs whose text the store knows already.
constexpr std::size_t bytesOfCode = 4;

/// Runs `work`; missing memory is an Error like any other.
template <typename Work>
void withMemory(const Work& work) {
  try {
    work();
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

}  // namespace

StoreFiller::StoreFiller(MemoryGauge gauge) : store_(std::make_shared<RowStore>()), memory_(std::move(gauge)) {}

StoreFiller::~StoreFiller() = default;

void StoreFiller::beginResult(std::span<const db::Field> fields) {
  withMemory([&] {
    if (store_ == nullptr) store_ = std::make_shared<RowStore>();
    if (appender_ != nullptr)
      appender_->beginResult(fields);
    else
      store_->beginResult(fields);
  });
}

RowId StoreFiller::append(std::span<const db::Cell> cells) {
  const RowId id{static_cast<std::uint32_t>(rowCount_)};
  std::size_t textBytes = 0;
  for (const db::Cell& cell : cells) textBytes += cell.text.size();
  memory_.grown(textBytes + cells.size() * bytesOfCode);
  if (appender_ != nullptr) {
    withMemory([&] { appender_->append(cells, textBytes); });
  } else {
    store_->append(cells);
    if (rowCount_ + 1 == manyRows) startAppender();
  }
  ++rowCount_;
  return id;
}

void StoreFiller::finish() {
  if (appender_ != nullptr) withMemory([&] { appender_->finish(); });
}

std::shared_ptr<const RowStore> StoreFiller::takeStore() {
  finish();
  appender_.reset();
  rowCount_ = 0;
  return std::move(store_);
}

void StoreFiller::startAppender() {
  if (std::thread::hardware_concurrency() < 2) return;
  try {
    withMemory([&] { appender_ = std::make_unique<BackgroundAppender>(*store_); });
  } catch (const std::system_error&) {
    // No thread to be had: the rows go on being appended by this one.
  }
}

}  // namespace korvel::results
