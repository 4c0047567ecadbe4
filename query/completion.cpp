#include "query/completion.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "base/text.h"
#include "db/procedure/audit_conditions.h"
#include "db/procedure/audit_selection.h"
#include "query/buffered_rows.h"
#include "query/query_failure.h"
#include "settings/string_table.h"

namespace korvel::query {
namespace {

struct Call {
  CategoryFlags flags;
  DateTexts dates;
};

/// Whether no row of the audit trail can be without a date, as far as the engine knows.
bool hasDateAlways(const BufferedRows& rows) {
  const auto column = columnOf(rows.fields(), BufferedRows::dateTimeColumn);
  return column && !rows.fields()[*column].mayBeNull;
}

/// Whether the server says that the login may not read the table.
bool refusesTheTable(const Error& error) noexcept {
  constexpr std::int32_t columnRightMissing = 230;
  return error.number() == db::rightMissingNumber || error.number() == db::nameUnknownNumber ||
         error.number() == columnRightMissing;
}

/// Queries until all rows have come. Used on the worker only, and owns all that it uses.
class Completion {
 public:
  Completion(const CompletionOrder& order, SharedJoin& joined, const std::stop_token& stop)
      : flags_(order.flags),
        range_(order.range),
        connectionString_(order.connectionString),
        connect_(order.connect),
        memory_(order.memory),
        joined_(joined),
        stop_(stop),
        rowLimit_(order.rowLimit) {}

  void run() {
    // What is not cut is done with the first answer; its later result sets are looked at whatever the first one holds.
    std::vector<BufferedRows> first = ask({flags_, textsOf(range_)});
    std::vector<std::optional<std::size_t>> categories;
    if (flags_.all())
      categories.emplace_back();
    else
      for (std::size_t i = 0; i < flags_.size(); ++i)
        if (flags_[i]) categories.emplace_back(i);
    const bool isJoined =
        !std::all_of(first.begin(), first.end(), [&](const BufferedRows& rows) { return isCut(rows); });
    joined_.change([&](RowJoin& /*join*/, CompletionReport& report) { report.slices = isJoined ? 1 : 0; });
    for (std::size_t i = 0; i < categories.size(); ++i) {
      awaitJoin();
      joined_.change([&](RowJoin& join, CompletionReport& /*report*/) {
        join.beginCategory(categories[i] == alarmsCategory);
        if (!isCut(first[i])) join.add(first[i]);
      });
      if (isCut(first[i])) finish(categories[i], first[i]);
      first[i] = {};
    }
    awaitJoin();
  }

 private:
  [[nodiscard]] bool isCut(const BufferedRows& rows) const noexcept { return rows.rowCount() >= rowLimit_; }

  [[nodiscard]] TimeSlice timeAskedFor() const {
    return range_.DateRangeActive ? wholeDays(range_.RangeFromDate, range_.RangeToDate) : allServerDays();
  }

  [[nodiscard]] static std::string beginOf(Minute minute) { return minuteText(minute) + ":00.000"; }

  /// A slice ends with the moment with which the next one begins, so that no time lies between them, however finely the
  /// server counts. The last one ends as the range does.
  [[nodiscard]] std::string endOf(Minute minute) const {
    if (minute != timeAskedFor().last) return beginOf(minute + std::chrono::minutes(1));
    // Servers round a later time up, to a day that they do not have.
    return range_.DateRangeActive ? toDateText(range_) : minuteText(minute) + ":59.997";
  }

  [[nodiscard]] Call callOf(std::optional<std::size_t> category, const TimeSlice& slice) const {
    Call call{flags_, {true, beginOf(slice.first), endOf(slice.last)}};
    if (category) call.flags = CategoryFlags().set(*category);
    return call;
  }

  /// Finishes a category whose answer was cut.
  void finish(std::optional<std::size_t> category, const BufferedRows& sample) {
    if (connection_->selectsFreely()) {
      if (const auto refusal = selectAtOnce(category, {})) throw Error(*refusal);
      return;
    }
    DateSlices slices(timeAskedFor(), sample.minutes(), rowLimit_);
    // Alarm rows of the vel_Alg tables come whatever the time, and those alone where the time ends before it begins.
    const std::size_t count = rowsOfAllDates(category);
    const bool leaveLittleRoom = count > rowLimit_ / 2;
    if (leaveLittleRoom && (count >= rowLimit_ || mayReadTheTable())) {
      const auto refusal = selectAtOnce(category, sample);
      if (!refusal) return;
      nameIncomplete({IncompletePart::Kind::ofAllDates, timeAskedFor().first, category, *refusal}, timeAskedFor(),
                     sample);
      finishUndated(category, sample);
      return;
    }
    slices.reserve(count);
    while (const auto slice = slices.current()) {
      std::vector<BufferedRows> answer = ask(callOf(category, *slice));
      const BufferedRows none;
      const BufferedRows& rows = answer.empty() ? none : answer.front();
      if (!isCut(rows)) {
        slices.done(rows.minutes());
        if (!answer.empty()) joinSlice(answer.front(), *slice);
      } else if (slice->length() > std::chrono::minutes(1)) {
        slices.cut(rows.minutes());
      } else if (category == alarmsCategory && rowsOfAllDates(category) >= rowLimit_) {
        // They have become too many meanwhile: no slice would have room.
        finishBySelect(category, {slice->first, timeAskedFor().last}, IncompletePart::Kind::ofAllDates, rows);
        break;
      } else {
        finishBySelect(category, *slice, IncompletePart::Kind::minute, rows);
        slices.done(rows.minutes());
      }
    }
    finishUndated(category, sample);
  }

  /// How many rows of a category come whatever the time that is asked for.
  [[nodiscard]] std::size_t rowsOfAllDates(std::optional<std::size_t> category) {
    const Minute first = timeAskedFor().first;
    Call call = callOf(category, {first, first});
    std::swap(call.dates.from, call.dates.to);
    const std::vector<BufferedRows> rows = ask(call);
    return rows.front().rowCount();
  }

  /// Whether the server lets the login select, as far as a select of no rows tells.
  [[nodiscard]] bool mayReadTheTable() {
    const Minute first = timeAskedFor().first;
    Batches none(*this, std::nullopt, {});
    return !select(
        {std::nullopt, db::AuditSelection::Dates::within, beginOf(first + std::chrono::minutes(1)), beginOf(first)},
        none);
  }

  /// Reads the whole category, of which `cut` has come, by one select. Gives the reason where that cannot be.
  [[nodiscard]] std::optional<Error> selectAtOnce(std::optional<std::size_t> category, const BufferedRows& cut) {
    using Dates = db::AuditSelection::Dates;
    const TimeSlice time = timeAskedFor();
    return joinSelection(
        {category, range_.DateRangeActive ? Dates::within : Dates::all, beginOf(time.first), endOf(time.last)},
        std::nullopt, cut);
  }

  /// Joins the rows of a select in batches, while the next ones are read: an answer of any size takes the memory of two
  /// batches beside that of the joined rows, and a stop waits for one batch at most.
  class Batches final : public db::ResultSink {
   public:
    /// Nothing is joined before `least` rows have come.
    Batches(Completion& completion, const std::optional<TimeSlice>& slice, std::size_t least)
        : completion_(completion), slice_(slice), least_(least) {}

    /// The rows come from the first one on, also where some have come already.
    void begin() {
      completion_.awaitJoin();
      comesAgain_ = isBegun_;
      count_ = 0;
      rows_.clear();
    }
    void beginResult(std::span<const db::Field> fields) override {
      fields_.assign(fields.begin(), fields.end());
      rows_.begin(fields_);
    }
    bool row(std::span<const db::Cell> cells) override {
      rows_.add(cells);
      ++count_;
      const bool isFull = rows_.rowCount() >= completion_.rowLimit_ || rows_.byteCount() >= bytesOfBatch;
      if (isFull && count_ >= least_) join();
      return !completion_.stop_.stop_requested();
    }
    void endResult() override {}
    bool shouldContinue() override { return !completion_.stop_.stop_requested(); }

    /// Joins what is left. False where at no time as many rows came as the least number: none are joined then.
    [[nodiscard]] bool finish() {
      if (count_ < least_ && !isBegun_) return false;
      join();
      completion_.awaitJoin();
      return true;
    }
    [[nodiscard]] std::size_t count() const noexcept { return count_; }

   private:
    static constexpr std::size_t bytesOfBatch = std::size_t{4} << 20U;

    void join() {
      if (rows_.rowCount() == 0) return;
      const bool begins = !std::exchange(isBegun_, true);
      const bool repeats = std::exchange(comesAgain_, false);
      completion_.joinLater(rows_, [slice = slice_, begins, repeats](RowJoin& join, CompletionReport& /*report*/) {
        if (begins) join.beginAnswer(slice);
        if (repeats) join.repeatAnswer();
      });
      rows_.begin(fields_);
    }

    Completion& completion_;
    std::optional<TimeSlice> slice_;
    std::size_t least_;
    std::size_t count_ = 0;
    bool isBegun_ = false;
    bool comesAgain_ = false;
    std::vector<db::Field> fields_;
    BufferedRows rows_;
  };

  /// Selects from the table and joins what comes: a slice, or all of the category. Gives the reason where the login may
  /// not read the table, or the table has fewer rows than `cut`; nothing is joined then.
  [[nodiscard]] std::optional<Error> joinSelection(const db::AuditSelection& selection,
                                                   const std::optional<TimeSlice>& slice, const BufferedRows& cut) {
    Batches rows(*this, slice, cut.rowCount());
    if (auto refusal = select(selection, rows)) return refusal;
    // Another table, or another reading of dates, than the procedure's.
    if (!rows.finish()) return settings::localizedError(internalErrorNumber, "complete.tableDiffers");
    if (rows.count() > 0) joined_.change([](RowJoin& /*join*/, CompletionReport& report) { ++report.slices; });
    return std::nullopt;
  }

  void joinSlice(BufferedRows& rows, const TimeSlice& slice) {
    joinLater(rows, [slice](RowJoin& join, CompletionReport& report) {
      join.beginAnswer(slice);
      ++report.slices;
    });
  }

  /// Joins rows, after `prepare`, on another thread while the next ones are read; takes them, and gives back a buffer
  /// to be filled anew.
  template <typename Prepare>
  void joinLater(BufferedRows& rows, const Prepare& prepare) {
    awaitJoin();
    std::swap(rows, beingJoined_);
    const auto join = [this, prepare] {
      joined_.change([&](RowJoin& all, CompletionReport& report) {
        prepare(all, report);
        all.add(beingJoined_);
      });
    };
    try {
      joining_ = std::async(std::launch::async, join);
    } catch (const std::system_error&) {
      join();  // no thread to be had
    }
  }
  /// Throws what the joining threw.
  void awaitJoin() {
    if (joining_.valid()) joining_.get();
  }

  /// Selects a minute from the table, or what else slices cannot reach; `cut` is what came of it instead.
  void finishBySelect(std::optional<std::size_t> category, const TimeSlice& slice, IncompletePart::Kind kind,
                      const BufferedRows& cut) {
    const db::AuditSelection selection{category, db::AuditSelection::Dates::within, beginOf(slice.first),
                                       endOf(slice.last)};
    if (const auto refusal = joinSelection(selection, slice, cut))
      nameIncomplete({kind, slice.first, category, *refusal}, slice, cut);
  }

  /// Joins what came of a part that cannot be finished.
  void nameIncomplete(const IncompletePart& part, const TimeSlice& slice, const BufferedRows& cut) {
    awaitJoin();
    joined_.change([&](RowJoin& join, CompletionReport& report) {
      ++report.slices;
      join.beginAnswer(slice);
      join.add(cut);
      report.incomplete.push_back(part);
    });
  }

  /// Without a range the procedure also finds rows that have no date.
  void finishUndated(std::optional<std::size_t> category, const BufferedRows& sample) {
    if (range_.DateRangeActive) return;
    const TimeSlice all = allServerDays();
    const db::AuditSelection selection{category, db::AuditSelection::Dates::outside, beginOf(all.first),
                                       endOf(all.last)};
    const std::optional<Error> refusal = joinSelection(selection, all, {});
    if (!refusal) return;
    std::vector<BufferedRows> rows;
    if (hasDateAlways(sample) && readsBeforeAllServerDays(category, rows)) {
      if (!rows.empty() && rows.front().rowCount() > 0) joinSlice(rows.front(), all);
      return;
    }
    awaitJoin();
    joined_.change([&](RowJoin& /*join*/, CompletionReport& report) {
      report.incomplete.push_back({IncompletePart::Kind::undated, {}, category, *refusal});
    });
  }

  /// Asks for dates that come before those of all slices; false where there are too many. Most servers have none.
  [[nodiscard]] bool readsBeforeAllServerDays(std::optional<std::size_t> category, std::vector<BufferedRows>& rows) {
    constexpr std::int32_t notADate = 241;
    constexpr std::int32_t dateOutOfRange = 242;
    Call call = callOf(category, {allServerDays().first, allServerDays().first});
    call.dates.from = "0001-01-01 00:00:00.000";
    call.dates.to = "1752-12-31 23:59:59.999";
    try {
      rows = ask(call);
    } catch (const Error& error) {
      if (error.number() != notADate && error.number() != dateOutOfRange) throw;
      return true;
    }
    return !isCut(rows.front());
  }

  [[nodiscard]] std::vector<BufferedRows> ask(const Call& call) {
    std::vector<BufferedRows> results;
    const std::string text = queryAuditsText(call.flags, call.dates);
    repeatOnce([&](db::Connection& connection) {
      BufferedAnswer answer(results, memory_, stop_);
      connection.execute(text, answer);
      const std::size_t expected = call.flags.all() ? 1 : call.flags.count();
      // Result sets are told apart by their order alone.
      if (!stop_.stop_requested() && answer.count() != expected)
        throw settings::localizedError(internalErrorNumber, "complete.otherAnswer",
                                       {std::to_string(answer.count()), std::to_string(expected)});
    });
    return results;
  }

  /// Gives the error of a server that refuses the table.
  [[nodiscard]] std::optional<Error> select(const db::AuditSelection& selection, Batches& rows) {
    if (refusal_) return refusal_;
    try {
      repeatOnce([&](db::Connection& connection) {
        rows.begin();
        connection.select(selection, rows);
      });
    } catch (const Error& error) {
      if (!refusesTheTable(error)) throw;
      refusal_ = error;
    }
    return refusal_;
  }

  /// Runs a step on the connection; where that breaks, once more on another one.
  template <typename Step>
  void repeatOnce(const Step& step) {
    for (bool isRepeated = false;; isRepeated = true) {
      try {
        if (!connection_) connection_ = connect_(connectionString_, stop_);
        if (!connection_) throw internalFailure();
        step(*connection_);
        if (stop_.stop_requested()) throw Stopped{};
        joined_.change([](RowJoin& /*join*/, CompletionReport& report) { ++report.calls; });
        return;
      } catch (const Error& error) {
        if (stop_.stop_requested()) throw Stopped{};
        if (isRepeated || (connection_ && connection_->selectsFreely()) || refusesTheTable(error) ||
            error.number() == results::outOfMemoryNumber)
          throw;
        connection_.reset();
      }
    }
  }

  CategoryFlags flags_;
  DateRange range_;
  std::string connectionString_;
  Connector connect_;
  results::MemoryWatch memory_;
  SharedJoin& joined_;
  const std::stop_token& stop_;
  std::size_t rowLimit_;
  std::unique_ptr<db::Connection> connection_;
  std::optional<Error> refusal_;  ///< of a server that refuses the table
  BufferedRows beingJoined_;
  std::future<void> joining_;  // ends before the rows that it joins
};

}  // namespace

void runCompletion(const CompletionOrder& order, SharedJoin& joined, const std::stop_token& stop) {
  Completion(order, joined, stop).run();
}

}  // namespace korvel::query
