#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "results/result_list.h"
#include "results/row_filter.h"

namespace korvel::query {

/// How long a period of activity is. Weeks begin on Monday.
enum class ActivityStep { hour, day, week, month };

/// The beginning of a period, in the time that the rows have.
using ActivityHour = std::chrono::sys_time<std::chrono::hours>;

/// A span of time, which does not include its end.
struct ActivitySpan {
  ActivityHour from;
  ActivityHour before;
  friend bool operator==(const ActivitySpan&, const ActivitySpan&) = default;
};

/// The rows of one period: how many there are of each kind.
struct ActivityBar {
  ActivityHour begin;
  std::vector<std::size_t> counts{};
  [[nodiscard]] std::size_t total() const noexcept;
};

/// How many rows of a list fall into each period, from the first one that has rows to the last.
struct Activity {
  ActivityStep step = ActivityStep::day;
  /// What the rows are told apart by, the most frequent first. The counts of a bar have one place for each, and a last
  /// one for all other kinds where there are `hasOthers`.
  std::vector<results::ShownValue> kinds{};
  bool hasOthers = false;
  /// One for each period, empty ones between the others included; their counts have the same number of places.
  std::vector<ActivityBar> bars{};
  /// Rows without a date of the calendar; they are in no bar.
  std::size_t undated = 0;

  [[nodiscard]] std::size_t kindCount() const noexcept { return kinds.size() + (hasOthers ? 1 : 0); }
};

/// More bars than a picture can show; all months of the calendar's dates are fewer.
inline constexpr std::size_t mostActivityBars = 130'000;
/// More kinds than a reader tells apart.
inline constexpr std::size_t mostActivityKinds = 7;

/// Counts the rows that the list shows. Where there would be more than `mostBars` periods, the step is a longer one.
/// The kinds after the first `mostKinds` are counted together, if there are two or more of them. A row whose date has
/// no hour belongs to the first one of its day. Without a column that tells kinds apart all rows are "others".
/// Throws Error when memory runs out.
[[nodiscard]] Activity activityOf(const results::ResultList& list, results::ColumnIndex time,
                                  std::optional<results::ColumnIndex> kind, ActivityStep step,
                                  std::size_t mostKinds = mostActivityKinds, std::size_t mostBars = mostActivityBars);

/// The hour that a text names as its row is counted; nothing where it has no day of the calendar.
[[nodiscard]] std::optional<ActivityHour> activityHour(std::string_view text);
/// The texts of the dates in a span, for a filter; and the span of such texts, nothing where they are no dates.
[[nodiscard]] results::TextRange textRange(const ActivitySpan& span);
[[nodiscard]] std::optional<ActivitySpan> spanOf(const results::TextRange& range);

/// The beginning of the period that `time` lies in.
[[nodiscard]] ActivityHour periodOf(ActivityHour time, ActivityStep step) noexcept;
/// The beginning of the period after the one that begins at `begin`.
[[nodiscard]] ActivityHour nextPeriod(ActivityHour begin, ActivityStep step) noexcept;

}  // namespace korvel::query
