#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "tests/tds_server/gate.h"
#include "tests/tds_server/protocol/command.h"
#include "tests/tds_server/protocol/login.h"

namespace korvel::test::tds {

/// Everything that clients have sent so far.
struct Record {
  std::vector<Login> logins;
  std::vector<Command> commands;
  /// Violations of the protocol, refused tickets, and commands without an answer in the script.
  std::vector<std::string> problems;
  std::size_t connections = 0;
  std::size_t openConnections = 0;
  std::size_t attentions = 0;
  /// Transaction requests in order: "begin", "commit", "rollback".
  std::vector<std::string> transactions;
};

/// The record, shared by threads: connections write, the test reads and waits.
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
  /// Waits for a condition; false after `testTimeout`.
  template <class Condition>
  [[nodiscard]] bool waitUntil(Condition holds) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, testTimeout, [&] { return holds(record_); });
  }

 private:
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  Record record_;
};

}  // namespace korvel::test::tds
