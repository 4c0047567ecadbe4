#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "tests/support/tds/descriptor.h"

namespace korvel::test::tds {

/// How long a test waits for something that must come. Reaching it is a failure, so it is generous.
inline constexpr std::chrono::seconds patience{20};

/// A place in a script where the peer stands still until the test opens it. Copies are the same gate.
class Gate {
 public:
  void open() const { state_->opened.raise(); }

  /// Waits until a connection stands at the gate; false where none came within the test's patience.
  [[nodiscard]] bool waitUntilReached() const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_for(lock, patience, [this] { return state_->reached; });
  }

  // For the peer.
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
