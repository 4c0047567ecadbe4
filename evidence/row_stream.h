#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

#include "db/connection.h"
#include "query/buffered_rows.h"

namespace korvel::evidence {

/// The rows of an answer, taken one batch after the other while the engine works on a thread of the stream's own. Holds
/// a few batches, however many rows there are.
class RowStream {
 public:
  /// Pushes an answer into a sink; called once, on the stream's thread. It ends early where the sink has had enough,
  /// and when it is asked to stop.
  using Source = std::function<void(db::ResultSink& sink, const std::stop_token& stop)>;

  /// Throws Error where no thread is to be had.
  explicit RowStream(Source source);
  /// Asks the source to stop, and waits for its end.
  ~RowStream();
  RowStream(const RowStream&) = delete;
  RowStream& operator=(const RowStream&) = delete;

  /// The next rows, valid until the next call; null after the last ones. A result without rows gives one batch, which
  /// has its fields. Throws what the source threw, after all rows that came before. `whileWaiting` is called again and
  /// again while none come; what it throws comes out.
  [[nodiscard]] const query::BufferedRows* next(const std::function<void()>& whileWaiting = {});

 private:
  class Sink;
  using Batch = std::unique_ptr<query::BufferedRows>;

  /// Waits for room, and adds a batch; false where nobody takes it any more.
  bool put(Batch batch);
  [[nodiscard]] Batch emptyBatch();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Batch> filled_;
  std::vector<Batch> spare_;  ///< their memory is used again
  Batch current_;
  bool ended_ = false;
  bool isUnwanted_ = false;  ///< nobody takes batches any more
  std::exception_ptr failure_;
  std::jthread thread_;  // last: it uses all others
};

}  // namespace korvel::evidence
