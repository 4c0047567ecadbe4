#pragma once

#include <algorithm>
#include <chrono>

namespace korvel::db::net {

/// The moment by which an exchange must be over, however many steps it takes.
class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds fromNow) : end_(Clock::now() + fromNow) {}

  [[nodiscard]] bool passed() const { return Clock::now() >= end_; }
  /// What is left, never negative, rounded up so that a wait does not end just before the moment.
  [[nodiscard]] std::chrono::milliseconds left() const {
    return std::max(std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now()), std::chrono::milliseconds{0});
  }
  /// The earlier of this and a moment `limit` from now.
  [[nodiscard]] Deadline within(std::chrono::milliseconds limit) const { return Deadline(std::min(left(), limit)); }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point end_;
};

}  // namespace korvel::db::net
