#include "query/complete_query.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <future>
#include <mutex>
#include <system_error>
#include <utility>

#include "base/text.h"
#include "db/procedure/audit_conditions.h"
#include "db/procedure/audit_selection.h"
#include "query/query_failure.h"
#include "query/row_join.h"
#include "results/memory_watch.h"
#include "settings/string_table.h"

namespace korvel::query {
namespace {

/// The query was asked to stop.
struct Stopped {};

/// The caption of a category in the filter tree, with that of its group, because some captions are those of two.
std::string categoryCaption(std::size_t category) {
  for (const FilterNode& node : filterNodes())
    if (node.argument == category + 1)
      return std::string(filterNodes().at(node.parent - 1).caption) + " / " + std::string(node.caption);
  return {};
}

struct Call {
  CategoryFlags flags;
  DateTexts dates;
};

/// The result sets of one call or select.
class Collector final : public db::ResultSink {
 public:
  Collector(std::vector<BufferedRows>& results, results::MemoryWatch& memory, const std::stop_token& stop)
      : results_(results), memory_(memory), stop_(stop) {}

  void beginResult(std::span<const db::Field> fields) override {
    if (results_.size() == count_) results_.emplace_back();
    results_[count_].begin(fields);
  }
  bool row(std::span<const db::Cell> cells) override {
    std::size_t bytes = cells.size() * BufferedRows::bytesOfValue;
    for (const db::Cell& cell : cells) bytes += cell.text.size();
    // A whole answer of the procedure is small, a minute that is selected may not be.
    if (results_[count_].rowCount() >= db::rowLimitPerResult) memory_.grown(bytes);
    results_[count_].add(cells);
    return !stop_.stop_requested();
  }
  void endResult() override { ++count_; }
  bool shouldContinue() override { return !stop_.stop_requested(); }

  [[nodiscard]] std::size_t count() const noexcept { return count_; }

 private:
  std::vector<BufferedRows>& results_;
  results::MemoryWatch& memory_;
  const std::stop_token& stop_;
  std::size_t count_ = 0;
};

/// Whether no row of the audit trail can be without a date, as far as the engine knows.
bool hasDateAlways(const BufferedRows& rows) {
  for (const db::Field& field : rows.fields())
    if (equalsIgnoringAsciiCase(field.name, "DateTime")) return !field.mayBeNull;
  return false;
}

/// Whether the server says that the login may not read the table.
bool refusesTheTable(const Error& error) noexcept {
  constexpr std::int32_t columnRightMissing = 230;
  return error.number() == db::rightMissingNumber || error.number() == db::nameUnknownNumber ||
         error.number() == columnRightMissing;
}

}  // namespace

/// What the worker has joined so far, and the waiting thread may take over at any moment.
class CompleteAnswer::Collected {
 public:
  explicit Collected(const results::MemoryGauge& memory) : join_(memory) {}

  /// Changes the joined rows, unless they have been taken over.
  template <typename Work>
  void change(const Work& work) {
    const std::lock_guard lock(mutex_);
    if (taken_) throw Stopped{};
    work(join_, report_);
    rows_ = join_.rowCount();
    slices_ = report_.slices;
  }

  [[nodiscard]] CompletionProgress progress() const noexcept { return {rows_, slices_}; }

  /// From now on only the caller uses it.
  CompletionReport take() {
    const std::lock_guard lock(mutex_);
    taken_ = true;
    report_.changedEntries = join_.changedEntries();
    report_.changedEntryCount = join_.changedEntryCount();
    return report_;
  }

  /// After take().
  [[nodiscard]] RowJoin& join() noexcept { return join_; }

 private:
  std::mutex mutex_;
  RowJoin join_;
  CompletionReport report_;
  bool taken_ = false;
  std::atomic<std::size_t> rows_ = 0;
  std::atomic<std::size_t> slices_ = 0;
};

namespace {

/// Asks until everything has come. Lives on the worker; what it uses is its own.
template <typename Collected>
class Completion {
 public:
  Completion(CategoryFlags flags, const DateRange& range, std::string connectionString, Connector connect,
             const results::MemoryGauge& memory, Collected& collected, const std::stop_token& stop,
             std::size_t rowLimit)
      : flags_(flags),
        range_(range),
        connectionString_(std::move(connectionString)),
        connect_(std::move(connect)),
        memory_(memory),
        collected_(collected),
        stop_(stop),
        rowLimit_(rowLimit) {}

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
    collected_.change([&](RowJoin& /*join*/, CompletionReport& report) { report.slices = isJoined ? 1 : 0; });
    for (std::size_t i = 0; i < categories.size(); ++i) {
      awaitJoin();
      collected_.change([&](RowJoin& join, CompletionReport& /*report*/) {
        join.beginCategory(categories[i] == alarmsCategory);
        if (!isCut(first[i])) join.addDistinct(first[i]);
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
      selectAtOnce(category);
      return;
    }
    DateSlices slices(timeAskedFor(), sample.minutes(), rowLimit_);
    // Alarm rows of the vel_Alg tables come whatever the time, and those alone where the time ends before it begins.
    const std::size_t count = rowsOfAllDates(category);
    const bool leaveLittleRoom = count > rowLimit_ / 2;
    if (leaveLittleRoom && (count >= rowLimit_ || mayReadTheTable())) {
      finishBySelect(category, timeAskedFor(), IncompletePart::Kind::ofAllDates, sample);
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
        if (!answer.empty()) joinLater(answer.front(), slice);
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
    std::vector<BufferedRows> none;
    return !select(
        {std::nullopt, db::AuditSelection::Dates::within, beginOf(first + std::chrono::minutes(1)), beginOf(first)},
        none);
  }

  /// Reads the whole category by one select, whose rows are joined while the next ones are read.
  void selectAtOnce(std::optional<std::size_t> category) {
    using Dates = db::AuditSelection::Dates;
    const TimeSlice time = timeAskedFor();
    const db::AuditSelection selection{category, range_.DateRangeActive ? Dates::within : Dates::all,
                                       beginOf(time.first), endOf(time.last)};
    Batches batches(*this);
    connection_->select(selection, batches);
    if (stop_.stop_requested()) throw Stopped{};
    batches.flush();
    awaitJoin();
    collected_.change([](RowJoin& /*join*/, CompletionReport& report) {
      ++report.calls;
      ++report.slices;
    });
  }

  /// Hands the rows of one answer over in parts.
  class Batches final : public db::ResultSink {
   public:
    explicit Batches(Completion& completion) : completion_(completion) {}

    void beginResult(std::span<const db::Field> fields) override {
      fields_.assign(fields.begin(), fields.end());
      rows_.begin(fields_);
    }
    bool row(std::span<const db::Cell> cells) override {
      rows_.add(cells);
      if (rows_.rowCount() == db::rowLimitPerResult) flush();
      return !completion_.stop_.stop_requested();
    }
    void endResult() override {}
    bool shouldContinue() override { return !completion_.stop_.stop_requested(); }

    void flush() {
      if (rows_.rowCount() == 0) return;
      completion_.joinLater(rows_, std::nullopt);
      rows_.begin(fields_);
    }

   private:
    Completion& completion_;
    std::vector<db::Field> fields_;
    BufferedRows rows_;
  };

  /// Joins rows on another thread while the next ones are read; takes them, and gives back a buffer to be filled anew.
  void joinLater(BufferedRows& rows, const std::optional<TimeSlice>& slice) {
    awaitJoin();
    std::swap(rows, joined_);
    const auto join = [this, slice] {
      collected_.change([&](RowJoin& all, CompletionReport& report) {
        if (!slice) {
          all.addDistinct(joined_);
          return;
        }
        all.addSlice(joined_, *slice);
        ++report.slices;
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

  /// Selects what slices cannot reach from the table; `cut` is what came of it instead.
  void finishBySelect(std::optional<std::size_t> category, const TimeSlice& slice, IncompletePart::Kind kind,
                      const BufferedRows& cut) {
    const db::AuditSelection selection{category, db::AuditSelection::Dates::within, beginOf(slice.first),
                                       endOf(slice.last)};
    std::vector<BufferedRows> rows;
    std::optional<Error> refusal = select(selection, rows);
    // Another table, or another reading of dates, than the procedure's.
    if (!refusal && (rows.empty() || rows.front().rowCount() < cut.rowCount()))
      refusal = settings::localizedError(internalErrorNumber, "complete.tableDiffers");
    awaitJoin();
    collected_.change([&](RowJoin& join, CompletionReport& report) {
      ++report.slices;
      join.addSlice(refusal || rows.empty() ? cut : rows.front(), slice);
      if (refusal) report.incomplete.push_back({kind, slice.first, category, *refusal});
    });
  }

  /// Without a range the procedure also finds rows that have no date.
  void finishUndated(std::optional<std::size_t> category, const BufferedRows& sample) {
    if (range_.DateRangeActive) return;
    const TimeSlice all = allServerDays();
    const db::AuditSelection selection{category, db::AuditSelection::Dates::outside, beginOf(all.first),
                                       endOf(all.last)};
    std::vector<BufferedRows> rows;
    std::optional<Error> refusal = select(selection, rows);
    if (refusal && hasDateAlways(sample) && readsBeforeAllServerDays(category, rows)) refusal.reset();
    awaitJoin();
    collected_.change([&](RowJoin& join, CompletionReport& report) {
      if (refusal) {
        report.incomplete.push_back({IncompletePart::Kind::undated, {}, category, *refusal});
      } else if (!rows.empty() && rows.front().rowCount() > 0) {
        ++report.slices;
        join.addSlice(rows.front(), all);
      }
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
      Collector collector(results, memory_, stop_);
      connection.execute(text, collector);
      const std::size_t expected = call.flags.all() ? 1 : call.flags.count();
      // Result sets are told apart by their order alone.
      if (!stop_.stop_requested() && collector.count() != expected)
        throw settings::localizedError(internalErrorNumber, "complete.otherAnswer",
                                       {std::to_string(collector.count()), std::to_string(expected)});
    });
    return results;
  }

  /// Gives the error of a server that refuses the table.
  [[nodiscard]] std::optional<Error> select(const db::AuditSelection& selection, std::vector<BufferedRows>& rows) {
    if (refusal_) return refusal_;
    try {
      repeatOnce([&](db::Connection& connection) {
        Collector collector(rows, memory_, stop_);
        connection.select(selection, collector);
        rows.resize(collector.count());
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
        collected_.change([](RowJoin& /*join*/, CompletionReport& report) { ++report.calls; });
        return;
      } catch (const Error& error) {
        if (stop_.stop_requested()) throw Stopped{};
        if (isRepeated || refusesTheTable(error) || error.number() == results::outOfMemoryNumber) throw;
        connection_.reset();
      }
    }
  }

  CategoryFlags flags_;
  DateRange range_;
  std::string connectionString_;
  Connector connect_;
  results::MemoryWatch memory_;
  Collected& collected_;
  const std::stop_token& stop_;
  std::size_t rowLimit_;
  std::unique_ptr<db::Connection> connection_;
  std::optional<Error> refusal_;  ///< of a server that refuses the table
  BufferedRows joined_;
  std::future<void> joining_;  // ends before the rows that it joins
};

}  // namespace

std::vector<std::string> completionTexts(const CompletionReport& report, std::size_t records,
                                         const settings::LanguageOffset& language,
                                         const std::function<std::string(std::size_t)>& count) {
  const auto text = [&](std::string_view key, const std::vector<std::string>& values = {}) {
    return settings::filled(settings::ownText(key, language), values);
  };
  const char* const summary = !report.isComplete() ? "complete.not"
                              : report.slices <= 1 ? "complete.wholeOfOne"
                                                   : "complete.whole";
  std::vector<std::string> texts{text(summary, {count(records), count(report.slices)})};
  if (report.endedEarly) texts.push_back(text("complete.stopped"));
  constexpr std::size_t namedParts = 10;
  for (const IncompletePart& part : report.incomplete) {
    if (texts.size() > namedParts) {
      texts.push_back(text("complete.more", {count(report.incomplete.size() - namedParts)}));
      break;
    }
    const std::string category = part.category ? categoryCaption(*part.category) : text("complete.allCategories");
    constexpr std::array keys{"complete.minute", "complete.ofAllDates", "complete.undated"};
    texts.push_back(text(
        keys.at(static_cast<std::size_t>(part.kind)),
        {category, minuteText(part.minute), count(db::rowLimitPerResult), settings::describe(part.reason, language)}));
  }
  if (report.changedEntryCount > 0) {
    std::string named;
    for (const std::string& entry : report.changedEntries) named.append(named.empty() ? "" : ", ").append(entry);
    if (report.changedEntryCount > report.changedEntries.size()) named += ", ...";
    texts.push_back(text("complete.changed", {count(report.changedEntryCount), named}));
  }
  return texts;
}

CompleteAnswer::CompleteAnswer() = default;
CompleteAnswer::CompleteAnswer(CompleteAnswer&&) noexcept = default;
CompleteAnswer& CompleteAnswer::operator=(CompleteAnswer&&) noexcept = default;
CompleteAnswer::~CompleteAnswer() = default;

std::size_t CompleteAnswer::rowCount() const noexcept {
  return collected_ ? collected_->join().rowCount() : 0;
}

const CompletionReport& CompleteAnswer::fill(ResultLists& lists, std::size_t currentList) {
  if (!collected_ || rowCount() == 0) return report_;
  const auto unfilled = failureOf([&] {
    RowJoin& join = collected_->join();
    ResultLists filled = lists;
    for (std::size_t i = 0; i < standardListCount; ++i) filled[i].setRows(join.store(), join.takeList(i));
    if (currentList < filled.size() && !filled[currentList].isSorted()) filled[currentList].sort();
    for (std::size_t i = 0; i < standardListCount; ++i) lists[i] = std::move(filled[i]);
  });
  collected_.reset();
  report_.endedEarly = report_.outcome == QueryOutcome::stopped;
  report_.outcome = unfilled ? QueryOutcome::failed : QueryOutcome::filled;
  report_.failure = unfilled;
  return report_;
}

CompleteAnswer completeStandardQuery(const StandardQueryRequest& question, const Connector& connect,
                                     const CompletionCallback& onWait, const QueryEnvironment& environment,
                                     std::size_t rowLimit) {
  CompleteAnswer answer;
  if (!question.tree.anyRootChecked()) {
    answer.report_.outcome = QueryOutcome::noCriteria;
    return answer;
  }
  using Collected = CompleteAnswer::Collected;
  const auto broken = failureOf([&] {
    const CategoryFlags flags = question.tree.flags();
    const auto collected = std::make_shared<Collected>(environment.memory);
    const auto work = [flags, range = question.range, connectionString = question.connectionString, connect,
                       memory = environment.memory, collected,
                       rowLimit](const std::stop_token& stop) -> std::optional<Error> {
      return failureOf([&] {
        try {
          Completion<Collected>(flags, range, connectionString, connect, memory, *collected, stop, rowLimit).run();
        } catch (const Stopped&) {  // NOLINT(bugprone-empty-catch): whoever asked for the stop knows
        }
      });
    };
    bool stopped = false;
    db::WaitCallback noted;
    if (onWait)
      noted = [&] {
        stopped = !onWait(collected->progress());
        return !stopped;
      };
    const auto failure = db::runOnWorker(work, noted, environment.pace);
    answer.report_ = collected->take();
    answer.collected_ = collected;
    if (stopped || !failure)
      answer.report_.outcome = QueryOutcome::stopped;
    else if (*failure)
      answer.report_.failure = **failure;
    else
      answer.report_.outcome = collected->join().rowCount() > 0 ? QueryOutcome::filled : QueryOutcome::noRecords;
  });
  if (!broken && answer.report_.outcome != QueryOutcome::failed) return answer;
  answer.collected_.reset();
  if (broken) answer.report_.failure = broken;
  answer.report_.outcome = QueryOutcome::failed;
  return answer;
}

}  // namespace korvel::query
