#include "evidence/row_stream.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "base/error.h"
#include "base/system_errors.h"

namespace korvel::evidence {

namespace {

constexpr std::size_t mostRowsOfBatch = 4096;
constexpr std::size_t mostBytesOfBatch = std::size_t{4} << 20U;
/// Enough that neither side waits while the other one works evenly.
constexpr std::size_t mostBatches = 4;

}  // namespace

/// Collects the rows of an answer into batches.
class RowStream::Sink final : public db::ResultSink {
 public:
  Sink(RowStream& stream, const std::stop_token& stop) : stream_(stream), stop_(stop) {}

  void beginResult(std::span<const db::Field> fields) override {
    fields_.assign(fields.begin(), fields.end());
    batch_ = stream_.emptyBatch();
    batch_->begin(fields_);
  }
  bool row(std::span<const db::Cell> cells) override {
    batch_->add(cells);
    if (batch_->rowCount() < mostRowsOfBatch && batch_->byteCount() < mostBytesOfBatch) return true;
    if (!stream_.put(std::move(batch_))) return false;
    wasPut_ = true;
    batch_ = stream_.emptyBatch();
    batch_->begin(fields_);
    return true;
  }
  void endResult() override { flush(); }
  bool shouldContinue() override { return !stop_.stop_requested(); }

  /// Hands over what came before a failure.
  void flush() {
    if (batch_ && (batch_->rowCount() > 0 || !wasPut_)) stream_.put(std::move(batch_));
    batch_.reset();
    wasPut_ = true;
  }

 private:
  RowStream& stream_;
  const std::stop_token& stop_;
  std::vector<db::Field> fields_;
  Batch batch_;
  bool wasPut_ = false;
};

RowStream::RowStream(Source source) {
  try {
    thread_ = std::jthread([this, source = std::move(source)](const std::stop_token& stop) {
      std::exception_ptr failure;
      Sink sink(*this, stop);
      try {
        source(sink, stop);
      } catch (...) {
        failure = std::current_exception();
      }
      try {
        sink.flush();
      } catch (...) {
        if (!failure) failure = std::current_exception();
      }
      const std::lock_guard lock(mutex_);
      ended_ = true;
      failure_ = failure;
      changed_.notify_all();
    });
  } catch (const std::system_error& error) {
    throw systemError(systemErrorNumber(error.code()), "cannot read rows on a thread of their own");
  }
}

RowStream::~RowStream() {
  thread_.request_stop();
  {
    const std::lock_guard lock(mutex_);
    isUnwanted_ = true;
  }
  changed_.notify_all();
}

const query::BufferedRows* RowStream::next(const std::function<void()>& whileWaiting) {
  constexpr std::chrono::milliseconds interval{20};
  std::unique_lock lock(mutex_);
  if (current_) spare_.push_back(std::move(current_));
  while (!changed_.wait_for(lock, interval, [this] { return !filled_.empty() || ended_; })) {
    if (!whileWaiting) continue;
    lock.unlock();
    whileWaiting();
    lock.lock();
  }
  if (filled_.empty()) {
    if (failure_) std::rethrow_exception(failure_);
    return nullptr;
  }
  current_ = std::move(filled_.front());
  filled_.pop_front();
  changed_.notify_all();
  return current_.get();
}

bool RowStream::put(Batch batch) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return isUnwanted_ || filled_.size() < mostBatches; });
  if (isUnwanted_) return false;
  filled_.push_back(std::move(batch));
  changed_.notify_all();
  return true;
}

RowStream::Batch RowStream::emptyBatch() {
  const std::lock_guard lock(mutex_);
  if (spare_.empty()) return std::make_unique<query::BufferedRows>();
  Batch batch = std::move(spare_.back());
  spare_.pop_back();
  return batch;
}

}  // namespace korvel::evidence
