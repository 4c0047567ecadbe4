#pragma once

#include <chrono>
#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "db/connection.h"
#include "results/row_store.h"

namespace korvel::query {

// The stamps of an audit trail are the wall-clock time of the plant. A record has a stamp and a flag, no time zone:
// what is said here follows from them alone. The flag tells summer time from standard time, not how far the clock is
// from UTC.

enum class Season { unknown, summer, standard };

/// What the summer-time flag of a record says: 1 or true, 0 or false; null and all else are unknown.
[[nodiscard]] Season seasonOf(const db::Cell& flag) noexcept;

/// A stamp as the wall clock showed it.
struct WallTime {
  std::string_view day;             ///< "2004-03-07"
  std::chrono::nanoseconds time{};  ///< since midnight
  /// From UTC, where the stamp itself is written with it; no other way is known.
  std::optional<std::chrono::minutes> offset{};
};
/// "2004-03-07 13:45:59.123", with "T" for the blank, without seconds or fraction, and with "Z" or an offset behind it;
/// nothing for any other text, also a day alone. The day is part of `stamp`.
[[nodiscard]] std::optional<WallTime> wallTimeOf(std::string_view stamp) noexcept;

/// "+02:00".
[[nodiscard]] std::string offsetText(std::chrono::minutes offset);

/// Times of a day, both included.
struct TimesOfDay {
  std::chrono::nanoseconds from{};
  std::chrono::nanoseconds to{};
  std::string fromStamp{};  ///< as it is stored
  std::string toStamp{};

  [[nodiscard]] bool contains(std::chrono::nanoseconds time) const noexcept { return from <= time && time <= to; }
};

/// Finds the times that the clock showed twice, because it was set back from summer to standard time, as far as records
/// prove it. A day is one on which the clock was set back where its first record by entry number has summer time and
/// its last one standard time. Every time from the earliest one in standard time to the latest one in summer time was
/// then shown twice. Nothing is said where they lie an hour or more apart: no clock is set back by more. Holds for
/// records of one plant, whose computers have the same time; times beside those that are found may have been shown
/// twice, too.
class RepeatedTimes {
 public:
  RepeatedTimes() = default;
  ~RepeatedTimes() = default;
  RepeatedTimes(RepeatedTimes&&) = default;
  RepeatedTimes& operator=(RepeatedTimes&&) = default;
  RepeatedTimes(const RepeatedTimes&) = delete;
  RepeatedTimes& operator=(const RepeatedTimes&) = delete;

  /// A record; nothing follows from one whose entry number, stamp or flag is something else, or whose stamp has an
  /// offset.
  void add(const db::Cell& entryNumber, const db::Cell& stamp, const db::Cell& flag);
  /// The same for a stamp that was read.
  void add(const db::Cell& entryNumber, std::string_view stamp, const WallTime& wall, const db::Cell& flag);
  /// The records that others have seen.
  void add(const RepeatedTimes& others);
  /// The times of a day that were shown twice.
  [[nodiscard]] std::optional<TimesOfDay> on(std::string_view day) const;
  /// Of all days, in order.
  [[nodiscard]] std::vector<TimesOfDay> all() const;

 private:
  struct Day {
    long long firstEntry = std::numeric_limits<long long>::max();
    long long lastEntry = std::numeric_limits<long long>::min();
    Season first = Season::unknown;
    Season last = Season::unknown;
    std::optional<std::chrono::nanoseconds> latestSummer{};
    std::optional<std::chrono::nanoseconds> earliestStandard{};
    std::string latestSummerStamp{};
    std::string earliestStandardStamp{};
  };
  [[nodiscard]] static std::optional<TimesOfDay> timesOf(const Day& day);
  static void addTo(Day& day, const Day& other);
  [[nodiscard]] Day& dayOf(std::string_view day);

  std::map<std::string, Day, std::less<>> days_;
  /// Records come day by day; a day stays where it is.
  std::pair<const std::string, Day>* latest_ = nullptr;
};

/// Where records have their stamp, and what says more of it.
struct StampColumns {
  std::size_t stamp = 0;
  std::optional<std::size_t> entryNumber{};
  std::optional<std::size_t> flag{};
};
/// Found by their names in the table or by their captions; nothing where there is no stamp, as in the answers to some
/// queries.
[[nodiscard]] std::optional<StampColumns> stampColumnsOf(std::span<const db::Field> fields);

/// What a record and the others of its day say of its stamp.
struct PlantTime {
  enum class Shown { unknown, first, second };
  Season season = Season::unknown;
  std::optional<std::chrono::minutes> offset{};
  Shown shown = Shown::unknown;  ///< which of two times, where the clock showed the stamp twice
};

/// Reads the stamps of an answer's records. All rows of a day are looked at once.
class PlantTimes {
 public:
  explicit PlantTimes(std::shared_ptr<const results::RowStore> store) : store_(std::move(store)) {}
  /// Nothing where the record has no stamp that can be read.
  [[nodiscard]] std::optional<PlantTime> of(results::RowId record);
  /// The column of the record's stamp.
  [[nodiscard]] std::optional<std::size_t> stampColumn(results::RowId record) const;

 private:
  [[nodiscard]] const std::optional<TimesOfDay>& repeatedOn(std::string_view day);

  std::shared_ptr<const results::RowStore> store_;
  std::map<std::string, std::optional<TimesOfDay>, std::less<>> days_;
};

/// The key of a text of our own: stamps are the plant's local time.
inline constexpr std::string_view plantTimeText = "query.plantTime";

}  // namespace korvel::query
