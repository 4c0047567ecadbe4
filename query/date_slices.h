#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace korvel::query {

/// A minute of the trail's own clock.
using Minute = std::chrono::sys_time<std::chrono::minutes>;

/// The minutes from `first` to `last`, both included and whole.
struct TimeSlice {
  Minute first;
  Minute last;

  [[nodiscard]] std::chrono::minutes length() const noexcept { return last - first + std::chrono::minutes(1); }
  friend bool operator==(const TimeSlice&, const TimeSlice&) = default;
};

/// From the first minute of the first day to the last one of the last day.
[[nodiscard]] TimeSlice wholeDays(std::chrono::sys_days first, std::chrono::sys_days last) noexcept;
/// The time that a server's dates have.
[[nodiscard]] TimeSlice allServerDays() noexcept;

/// "2004-03-07 13:45".
[[nodiscard]] std::string minuteText(Minute minute);
/// The minute of a time as a server or a file gives it: year-month-day, and hours:minutes where they are there. Nothing
/// for any other text.
[[nodiscard]] std::optional<Minute> minuteOf(std::string_view time) noexcept;

/// Cuts time into slices whose answers are below the procedure's limit, the earliest first. The next slice is as wide
/// as the rows of a week before, or else of a day before, promise; one that is cut all the same is narrowed, to a half
/// at least.
class DateSlices {
 public:
  /// `all` is the time of which an answer has been cut to `rowLimit` rows; `sample` has the minutes of the rows that
  /// came, in any order.
  DateSlices(const TimeSlice& all, std::span<const Minute> sample, std::size_t rowLimit);

  /// The slice to ask for; nothing when all of the time is done.
  [[nodiscard]] std::optional<TimeSlice> current() const noexcept;
  /// The current slice is done; its answer had rows of these minutes.
  void done(std::span<const Minute> rows);
  /// The current slice has been cut: a narrower one takes its place. Only for slices of more than a minute.
  void cut(std::span<const Minute> sample);
  /// So many rows of each answer are of other times than asked for, and leave less room for those asked for.
  void reserve(std::size_t rows) noexcept { reserved_ = rows; }

 private:
  using Hour = std::int64_t;

  [[nodiscard]] static Hour hourOf(Minute minute) noexcept;
  /// How many rows an hour is expected to have.
  [[nodiscard]] double expected(Hour hour) const;
  [[nodiscard]] double target() const noexcept;
  void fitToSample(std::span<const Minute> sample, double most);
  void fitToHistory();
  /// `width` in minutes.
  void setWidth(double width);

  TimeSlice left_;  ///< what has not been done
  std::chrono::minutes width_;
  std::size_t rowLimit_;
  std::size_t reserved_ = 0;
  bool cutBefore_ = false;
  double density_ = 0;  ///< rows a minute of the last slice that had any
  Hour firstHour_ = 0;  ///< the first hour that is in the history
  std::unordered_map<Hour, std::size_t> history_;
};

}  // namespace korvel::query
