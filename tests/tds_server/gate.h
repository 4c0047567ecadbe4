#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "tests/tds_server/socket.h"

namespace korvel::test::tds {

/// How long a test waits for an event that must come. Reaching the limit is a failure, so it is long.
inline constexpr std::chrono::seconds testTimeout{20};

/// A place in a script where the server waits until the test opens the gate. Copies share one state.
class Gate {
 public:
  void open() const { state_->opened.raise(); }

  /// Waits until a connection has reached the gate; false after `testTimeout`.
  [[nodiscard]] bool waitUntilReached() const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_for(lock, testTimeout, [this] { return state_->reached; });
  }

  // For the server.
  void noteReached() const {
    const std::lock_guard lock(state_->mutex);
    state_->reached = true;
    state_->changed.notify_all();
  }
  [[nodiscard]] int descriptor() const { return state_->opened.descriptor(); }

 private:
  struct State {
    Flag opened;
    std::mutex mutex;
    std::condition_variable changed;
    bool reached = false;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace korvel::test::tds
