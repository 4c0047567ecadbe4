#include "results/column_values.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "results/date_text.h"
#include "results/memory_watch.h"
#include "results/shown_column.h"
#include "results/text_ids.h"
#include "results/text_ranks.h"

namespace korvel::results {

namespace {

constexpr std::uint32_t noId = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t nullId = noId - 1;
constexpr std::uint32_t otherId = noId - 2;  ///< of a text that is no date where dates are counted

/// Counts the values of one column.
class ValueCounter {
 public:
  ValueCounter(const std::optional<TextMatcher>& search, std::size_t limit, bool byDay)
      : search_(search), limit_(limit), byDay_(byDay) {}

  /// `rows` says for each record how many rows of the list it is.
  void count(const ShownColumn& column, const std::vector<std::uint32_t>& rows) {
    column.forEachRow([&](std::string_view text, bool isNull) { return idOf(text, isNull); },
                      [&](std::size_t record, std::uint32_t id) { add(id, rows[record]); },
                      [&](std::size_t record) { return rows[record] != 0; });
  }

  [[nodiscard]] bool tooMany() const noexcept { return tooMany_; }
  /// Whether days were asked for and a text is none.
  [[nodiscard]] bool metOtherText() const noexcept { return metOtherText_; }

  [[nodiscard]] std::vector<ValueCount> values() const {
    std::vector<std::string_view> texts;
    std::vector<std::uint32_t> ids;
    for (std::uint32_t id = 0; id < counts_.size(); ++id) {
      if (counts_[id] == 0) continue;
      ids.push_back(id);
      texts.push_back(ids_.textOf(id));
    }
    const std::vector<std::uint32_t> ranks = rankTexts(texts);
    std::vector<std::size_t> order(ids.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      const std::size_t countA = counts_[ids[a]];
      const std::size_t countB = counts_[ids[b]];
      if (countA != countB) return countA > countB;
      return ranks[a] != ranks[b] ? ranks[a] < ranks[b] : texts[a] < texts[b];
    });
    std::vector<ValueCount> values;
    values.reserve(order.size() + 1);
    for (const std::size_t i : order) values.push_back({{std::string(texts[i]), false}, counts_[ids[i]]});
    if (nulls_ != 0) {
      const auto place =
          std::find_if(values.begin(), values.end(), [&](const ValueCount& v) { return v.count < nulls_; });
      values.insert(place, {{{}, true}, nulls_});
    }
    return values;
  }

 private:
  std::uint32_t idOf(std::string_view text, bool isNull) {
    if (tooMany_ || metOtherText_) return noId;
    if (isNull) return search_ ? noId : nullId;
    if (byDay_ && !text.empty()) {
      if (!isDateText(text)) return otherId;
      text = datePart(text, DatePart::day);
    }
    if (search_ && !search_->matches(text)) return noId;
    return ids_.idOf(text);
  }

  void add(std::uint32_t id, std::size_t rows) {
    if (id == noId) return;
    if (id == otherId) {
      metOtherText_ = true;
      return;
    }
    if (id == nullId) {
      nulls_ += rows;
      return;
    }
    if (id >= counts_.size()) counts_.resize(ids_.size(), 0);
    if (counts_[id] == 0 && ++distinct_ > limit_) tooMany_ = true;
    counts_[id] += rows;
  }

  const std::optional<TextMatcher>& search_;
  std::size_t limit_;
  bool byDay_;
  TextIds ids_;
  std::vector<std::size_t> counts_;
  std::size_t nulls_ = 0;
  std::size_t distinct_ = 0;
  bool tooMany_ = false;
  bool metOtherText_ = false;
};

/// `rows` says for each record how many rows of the list count.
ColumnValues countValues(const ResultList& list, ColumnIndex column, const std::vector<std::uint32_t>& rows,
                         const std::optional<TextMatcher>& search, std::size_t limit) {
  const ShownColumn shown(list, column);
  for (const bool byDay : {true, false}) {
    ValueCounter counter(search, limit, byDay);
    counter.count(shown, rows);
    if (byDay && counter.metOtherText()) continue;
    ColumnValues result;
    result.tooMany = counter.tooMany();
    if (!result.tooMany) result.values = counter.values();
    result.areDates = byDay && std::any_of(result.values.begin(), result.values.end(),
                                           [](const ValueCount& each) { return !each.value.text.empty(); });
    return result;
  }
  return {};
}

}  // namespace

ColumnValues columnValues(const ResultList& list, ColumnIndex column, const std::optional<TextMatcher>& search,
                          std::size_t limit) {
  try {
    const std::vector<std::uint8_t> passing = passingRecords(list, list.filter(), column);
    std::vector<std::uint32_t> rows(passing.size(), 0);
    for (const RowId row : list.wholeRows()) rows[row.value] += passing[row.value];
    return countValues(list, column, rows, search, limit);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

ColumnValues shownColumnValues(const ResultList& list, ColumnIndex column, std::size_t limit) {
  try {
    std::vector<std::uint32_t> rows(list.store() == nullptr ? 0 : list.store()->rowCount(), 0);
    for (std::size_t row = 0; row < list.rowCount(); ++row) ++rows[list.rowId({row}).value];
    return countValues(list, column, rows, {}, limit);
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

}  // namespace korvel::results
