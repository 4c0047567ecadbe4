#include "results/row_filter.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

#include "base/numbers.h"
#include "results/date_text.h"
#include "results/matching_cells.h"
#include "results/memory_watch.h"
#include "results/result_list.h"
#include "results/shown_column.h"
#include "results/text_ids.h"

namespace korvel::results {

namespace {

/// A condition, prepared for many texts.
class ConditionTest {
 public:
  explicit ConditionTest(const ColumnCondition& condition) : range_(condition.range), excludes_(condition.excludes) {
    for (const ShownValue& value : condition.values) {
      if (value.isNull)
        null_ = true;
      else
        values_.idOf(value.text);
    }
    std::vector<std::string_view> sorted(condition.beginnings.begin(), condition.beginnings.end());
    std::sort(sorted.begin(), sorted.end());
    // What begins with another one adds nothing; without it, no two of them begin a text.
    for (const std::string_view beginning : sorted)
      if (beginnings_.empty() || !beginning.starts_with(beginnings_.back())) beginnings_.push_back(beginning);
  }

  [[nodiscard]] std::uint8_t operator()(std::string_view text, bool isNull) const {
    return meets(text, isNull) != excludes_ ? 1 : 0;
  }

 private:
  [[nodiscard]] bool meets(std::string_view text, bool isNull) const {
    if (isNull) return null_;
    if (values_.size() == 1 ? sameText(values_.textOf(0), text) : values_.size() != 0 && values_.find(text))
      return true;
    if (!beginnings_.empty()) {
      const auto after = std::upper_bound(beginnings_.begin(), beginnings_.end(), text);
      if (after != beginnings_.begin() && text.starts_with(*std::prev(after))) return true;
    }
    return range_ && range_->contains(text);
  }

  TextIds values_;
  bool null_ = false;
  std::vector<std::string_view> beginnings_;
  std::optional<TextRange> range_;
  bool excludes_;
};

/// Whether `text` orders before `bound`.
bool isBefore(std::string_view text, std::string_view bound) noexcept {
  constexpr auto day = static_cast<std::size_t>(DatePart::day);
  const bool hasTimes = text.size() > day && bound.size() > day;
  if (!hasTimes || text[day] != 'T' || !bound.starts_with(text.substr(0, day))) return text < bound;
  return bound[day] == 'T' || bound[day] == ' ' ? text.substr(day + 1) < bound.substr(day + 1) : ' ' < bound[day];
}

}  // namespace

bool TextRange::contains(std::string_view text) const noexcept {
  return !isBefore(text, from) && (before.empty() || isBefore(text, before));
}

void removeLeadingZeros(ColumnCondition& condition) {
  for (ShownValue& value : condition.values) {
    const auto number = value.text.starts_with("-0") ? wholeNumber(value.text) : std::nullopt;
    value.text = number ? std::string(number->negative ? "-" : "").append(number->digits)
                        : std::string(withoutLeadingZeros(value.text));
  }
}

bool TextCondition::isKnownFor(const ResultList& list) const noexcept {
  return known != nullptr && isStoreOf(known->store, list);
}

std::shared_ptr<const MatchingRecords> noneMatching(const ResultList& list) {
  const std::size_t records = list.store() == nullptr ? 0 : list.store()->rowCount();
  return std::make_shared<const MatchingRecords>(
      MatchingRecords{list.sharedStore(), std::vector<std::uint8_t>(records, 0)});
}

std::shared_ptr<const MatchingRecords> matchingRecords(const ResultList& list, const TextCondition& condition) {
  if (condition.isKnownFor(list)) return condition.known;
  return std::make_shared<const MatchingRecords>(
      MatchingRecords{list.sharedStore(), MatchingCells(list, condition.matcher, condition.columns).matchingRecords()});
}

bool RecordCondition::isKnownFor(const ResultList& list) const noexcept {
  return records != nullptr && isStoreOf(records->store, list) && records->records.size() == list.store()->rowCount();
}

std::shared_ptr<const MatchingRecords> matchingOnly(const ResultList& list, std::span<const RowId> records) {
  MatchingRecords matching(*noneMatching(list));
  for (const RowId record : records) matching.records.at(record.value) = 1;
  return std::make_shared<const MatchingRecords>(std::move(matching));
}

std::vector<std::uint8_t> passingRecords(const ResultList& list, const RowFilter& filter,
                                         std::optional<ColumnIndex> except) {
  try {
    const std::size_t records = list.store() == nullptr ? 0 : list.store()->rowCount();
    std::vector<std::uint8_t> passing(records, 1);
    const auto keepOnly = [&passing](const std::vector<std::uint8_t>& matching) {
      std::transform(passing.begin(), passing.end(), matching.begin(), passing.begin(),
                     [](std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>(a & b); });
    };
    if (passing.empty()) return passing;
    for (const ColumnCondition& condition : filter.columns) {
      if (condition.column == except) continue;
      const ShownColumn column(list, condition.column);
      std::uint8_t* const out = passing.data();
      column.forEachRow(ConditionTest(condition), [out](std::size_t row, std::uint8_t meets) { out[row] &= meets; });
    }
    for (const TextCondition& condition : filter.texts) keepOnly(matchingRecords(list, condition)->records);
    for (const RecordCondition& condition : filter.records)
      keepOnly(condition.isKnownFor(list) ? condition.records->records : noneMatching(list)->records);
    return passing;
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

}  // namespace korvel::results
