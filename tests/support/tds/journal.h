#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/tds/command.h"
#include "tests/support/tds/gate.h"
#include "tests/support/tds/login.h"

namespace korvel::test::tds {

/// Everything that clients have done so far.
struct Record {
  std::vector<Login> logins;
  std::vector<Command> commands;
  /// What clients did wrong, and commands that no script answers.
  std::vector<std::string> complaints;
  std::size_t connections = 0;
  std::size_t openConnections = 0;
  std::size_t attentions = 0;
  /// What clients asked of their transactions, in order: "begin", "commit", "rollback".
  std::vector<std::string> transactions;
};

/// The peer's journal: connections write, the test reads and waits.
class Journal {
 public:
  template <class Change>
  void note(Change change) {
    const std::lock_guard lock(mutex_);
    change(record_);
    changed_.notify_all();
  }
  [[nodiscard]] Record copy() const {
    const std::lock_guard lock(mutex_);
    return record_;
  }
  /// Waits for a condition; false where it did not come about within the test's patience.
  template <class Condition>
  [[nodiscard]] bool waitUntil(Condition holds) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, patience, [&] { return holds(record_); });
  }

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  Record record_;
};

}  // namespace korvel::test::tds
