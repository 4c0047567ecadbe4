#include "evidence/exceptions.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "query/audit_record.h"
#include "query/date_range.h"
#include "query/item_history.h"
#include "query/plant_time.h"
#include "results/memory_watch.h"
#include "results/text_ids.h"

namespace korvel::evidence {

namespace {

using results::ColumnIndex;
using results::ResultList;
using results::RowId;
using std::chrono::nanoseconds;

constexpr std::array<ExceptionRuleInfo, exceptionRuleCount> rules = {
    {{ExceptionRule::withoutComment, "no-comment", "exception.withoutComment"},
     {ExceptionRule::deletion, "deletion", "exception.deletion"},
     {ExceptionRule::outsideHours, "outside-hours", "exception.outsideHours"},
     {ExceptionRule::twoComputers, "two-computers", "exception.twoComputers"},
     {ExceptionRule::discontinued, "discontinued", "exception.discontinued"},
     {ExceptionRule::numbersMissing, "numbers-missing", "exception.numbersMissing"},
     {ExceptionRule::numberRepeated, "number-repeated", "exception.numberRepeated"},
     {ExceptionRule::clockStep, "clock-step", "exception.clockStep"},
     {ExceptionRule::repeatedHour, "repeated-hour", "exception.repeatedHour"},
     {ExceptionRule::unusualChange, "unusual-change", "exception.unusualChange"}}};

/// The columns of a trail that the rules read, as places in Columns below.
enum class Part : std::size_t {
  number,
  time,
  project,
  database,
  area,
  item,
  event,
  itemId,
  oldValue,
  newValue,
  computer,
  systemUser,
  appUser,
  userName,
  comment,
  summerTime
};
constexpr std::array<std::string_view, 16> partNames = {
    "Nr",       "DateTime", "ProjectGUID", "DatabaseName", "TableName", "FieldName", "EventType", "EventItem",
    "OldValue", "NewValue", "PCName",      "OSUser",       "AppUser",   "UserName",  "Comments",  "T1"};
constexpr std::array identityParts = {Part::project, Part::database, Part::area, Part::item, Part::itemId};

constexpr nanoseconds sameMoment = std::chrono::minutes{1};
constexpr nanoseconds mostSetBack = std::chrono::hours{1};
/// From so many changes on an item has something usual.
constexpr std::size_t leastChanges = 5;
constexpr double timesUsual = 5;

/// A record, and its entry number.
struct Entry {
  std::int64_t number = 0;
  RowId record;
};

/// Whatever the case of letters.
bool containsWord(std::string_view text, std::string_view word) {
  for (std::size_t i = 0; i + word.size() <= text.size(); ++i)
    if (equalsIgnoringAsciiCase(text.substr(i, word.size()), word)) return true;
  return false;
}

/// The moment on the wall clock, counted from 1970, without regard to summer time.
std::optional<nanoseconds> momentOf(const query::WallTime& wall) {
  const auto day = query::parseDay(wall.day);
  if (!day) return std::nullopt;
  return std::chrono::sys_days{*day}.time_since_epoch() + wall.time;
}

class Search {
 public:
  Search(const ResultList& list, const ExceptionSettings& settings) : list_(list), settings_(settings) {}

  /// False where a column is missing.
  bool findColumns() {
    for (std::size_t i = 0; i < partNames.size(); ++i) {
      const auto column = query::auditColumnOf(list_, partNames.at(i));
      if (!column) return false;
      columns_.at(i) = *column;
    }
    return true;
  }

  FoundExceptions find() {
    collectEntries();
    found_.lookedAt = entries_.size();
    found_.numbersWereJudged = settings_.hasAllNumbers;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      judgeNumber(i);
      judgeTexts(entries_[i].record);
      judgeTime(entries_[i].record);
      judgeItem(entries_[i].record);
    }
    judgeRepeatedHours();
    judgeChanges();
    return std::move(found_);
  }

 private:
  [[nodiscard]] db::Cell cell(RowId record, Part part) const {
    return list_.store()->cell(record, columns_.at(static_cast<std::size_t>(part)));
  }
  /// Without outer blanks, null as empty.
  [[nodiscard]] std::string_view text(RowId record, Part part) const { return trimBlanks(cell(record, part).text); }
  void add(ExceptionRule rule, RowId record) { found_.records.at(static_cast<std::size_t>(rule)).push_back(record); }

  void collectEntries() {
    entries_.reserve(list_.rowCount());
    for (std::size_t i = 0; i < list_.rowCount(); ++i) {
      const RowId record = list_.rowId({i});
      if (const auto number = parseInteger<std::int64_t>(text(record, Part::number)))
        entries_.push_back({*number, record});
    }
    const auto isBefore = [](const Entry& a, const Entry& b) {
      return a.number != b.number ? a.number < b.number : a.record < b.record;
    };
    if (!std::is_sorted(entries_.begin(), entries_.end(), isBefore))
      std::sort(entries_.begin(), entries_.end(), isBefore);
    const auto isSame = [this](const Entry& a, const Entry& b) {
      return a.number == b.number && list_.store()->isSameRecord(a.record, b.record);
    };
    entries_.erase(std::unique(entries_.begin(), entries_.end(), isSame), entries_.end());
  }

  void judgeNumber(std::size_t at) {
    if (at == 0) return;
    const Entry& entry = entries_[at];
    const Entry& before = entries_[at - 1];
    if (entry.number == before.number) {
      if (at == 1 || entries_[at - 2].number != before.number) add(ExceptionRule::numberRepeated, before.record);
      add(ExceptionRule::numberRepeated, entry.record);
    } else if (settings_.hasAllNumbers && entry.number - 1 != before.number) {
      add(ExceptionRule::numbersMissing, entry.record);
    }
  }

  void judgeTexts(RowId record) {
    if (text(record, Part::comment).empty() && text(record, Part::oldValue) != text(record, Part::newValue))
      add(ExceptionRule::withoutComment, record);
    const std::string_view event = text(record, Part::event);
    if (containsWord(event, "DELETE") || containsWord(event, "DELETION")) add(ExceptionRule::deletion, record);
  }

  void judgeTime(RowId record) {
    const std::string_view stamp = text(record, Part::time);
    const auto wall = query::wallTimeOf(stamp);
    if (!wall) return;
    repeated_.add(cell(record, Part::number), stamp, *wall, cell(record, Part::summerTime));
    const auto moment = momentOf(*wall);
    if (!moment) return;
    if (!isInHours(*moment)) add(ExceptionRule::outsideHours, record);
    const query::Season season = query::seasonOf(cell(record, Part::summerTime));
    if (latest_ && *moment < *latest_) {
      const bool endsSummer = latestSeason_ == query::Season::summer && season == query::Season::standard;
      if (!endsSummer || *latest_ - *moment > mostSetBack) add(ExceptionRule::clockStep, record);
    }
    latest_ = moment;
    latestSeason_ = season;
    judgeComputer(record, *moment);
  }

  [[nodiscard]] bool isInHours(nanoseconds moment) const {
    const WorkingHours& hours = settings_.hours;
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const nanoseconds time = moment - day;
    const auto isWorked = [&](std::chrono::days which) {
      const std::chrono::weekday weekday{std::chrono::sys_days{which}};
      return hours.days[weekday.iso_encoding() - 1];
    };
    if (hours.from < hours.to) return isWorked(day) && hours.from <= time && time < hours.to;
    return (time >= hours.from && isWorked(day)) || (time < hours.to && isWorked(day - std::chrono::days{1}));
  }

  /// The name that says most of who it was.
  [[nodiscard]] std::string_view userOf(RowId record) const {
    for (const Part part : {Part::userName, Part::appUser, Part::systemUser})
      if (const std::string_view name = text(record, part); !name.empty()) return name;
    return {};
  }

  void judgeComputer(RowId record, nanoseconds moment) {
    const std::string_view user = userOf(record);
    const std::string_view computer = text(record, Part::computer);
    if (user.empty() || computer.empty()) return;
    const std::uint32_t id = users_.idOf(user);
    if (id == seen_.size()) seen_.push_back({computer, moment});
    Seen& seen = seen_[id];
    const nanoseconds apart = moment < seen.moment ? seen.moment - moment : moment - seen.moment;
    if (seen.computer != computer && apart <= sameMoment) add(ExceptionRule::twoComputers, record);
    seen = {computer, moment};
  }

  void judgeItem(RowId record) {
    if (text(record, Part::itemId).empty()) return;
    std::uint32_t id = 0;
    for (std::size_t i = 0; i < identityParts.size(); ++i) {
      const std::uint32_t part = identityTexts_.at(i).idOf(text(record, identityParts.at(i)));
      id = i == 0 ? part : pairs_.at(i - 1).idOf(id, part);
    }
    if (id == items_.size()) items_.emplace_back();
    Item& item = items_[id];
    const std::string_view oldValue = text(record, Part::oldValue);
    const std::string_view newValue = text(record, Part::newValue);
    if (item.isKnown && item.value != oldValue) add(ExceptionRule::discontinued, record);
    item.isKnown = true;
    item.value = newValue;
    const auto before = query::quantityOf(oldValue);
    const auto now = query::quantityOf(newValue);
    if (before && now && before->unit == now->unit)
      changes_.push_back({id, std::abs(now->number - before->number), record});
  }

  void judgeRepeatedHours() {
    if (repeated_.all().empty()) return;
    for (const Entry& entry : entries_) {
      const auto wall = query::wallTimeOf(text(entry.record, Part::time));
      if (!wall) continue;
      const auto times = repeated_.on(wall->day);
      if (times && times->contains(wall->time)) add(ExceptionRule::repeatedHour, entry.record);
    }
  }

  void judgeChanges() {
    std::vector<std::size_t> counts(items_.size() + 1);
    for (const Change& change : changes_) ++counts[change.item + 1];
    for (std::size_t i = 1; i < counts.size(); ++i) counts[i] += counts[i - 1];
    std::vector<double> sizes(changes_.size());
    std::vector<std::size_t> next(counts.begin(), counts.end() - 1);
    for (const Change& change : changes_) sizes[next[change.item]++] = change.size;
    std::vector<double> limits(items_.size(), std::numeric_limits<double>::infinity());
    for (std::size_t item = 0; item < items_.size(); ++item) {
      const auto begin = sizes.begin() + static_cast<std::ptrdiff_t>(counts[item]);
      const auto end = sizes.begin() + static_cast<std::ptrdiff_t>(counts[item + 1]);
      if (static_cast<std::size_t>(end - begin) < leastChanges) continue;
      const auto middle = begin + (end - begin) / 2;
      std::nth_element(begin, middle, end);
      if (*middle > 0) limits[item] = timesUsual * *middle;
    }
    for (const Change& change : changes_)
      if (change.size > limits[change.item]) add(ExceptionRule::unusualChange, change.record);
  }

  /// Numbers pairs of numbers.
  class PairIds {
   public:
    std::uint32_t idOf(std::uint32_t first, std::uint32_t second) {
      const std::uint64_t key = (std::uint64_t{first} << 32U) | second;
      if (keys_.size() * 2 >= slots_.size()) grow();
      std::uint32_t& slot = slotOf(key);
      if (slot == 0) {
        keys_.push_back(key);
        slot = static_cast<std::uint32_t>(keys_.size());
      }
      return slot - 1;
    }

   private:
    std::uint32_t& slotOf(std::uint64_t key) {
      constexpr std::uint64_t mixer = 0x9E3779B97F4A7C15U;
      auto at = static_cast<std::size_t>(((key ^ (key >> 29U)) * mixer) >> 20U);
      while (true) {
        std::uint32_t& slot = slots_[at & (slots_.size() - 1)];
        if (slot == 0 || keys_[slot - 1] == key) return slot;
        ++at;
      }
    }
    void grow() {
      slots_.assign(slots_.size() * 4, 0);
      for (std::size_t i = 0; i < keys_.size(); ++i) slotOf(keys_[i]) = static_cast<std::uint32_t>(i + 1);
    }
    std::vector<std::uint32_t> slots_ = std::vector<std::uint32_t>(64);
    std::vector<std::uint64_t> keys_;
  };
  /// Where and when a user was seen last.
  struct Seen {
    std::string_view computer;
    nanoseconds moment;
  };
  struct Item {
    bool isKnown = false;
    std::string_view value;
  };
  struct Change {
    std::uint32_t item;
    double size;
    RowId record;
  };

  const ResultList& list_;
  const ExceptionSettings& settings_;
  std::array<ColumnIndex, partNames.size()> columns_{};
  std::vector<Entry> entries_;
  FoundExceptions found_;
  query::RepeatedTimes repeated_;
  std::optional<nanoseconds> latest_;
  query::Season latestSeason_ = query::Season::unknown;
  results::TextIds users_;
  std::vector<Seen> seen_;
  std::array<results::TextIds, identityParts.size()> identityTexts_;
  std::array<PairIds, identityParts.size() - 1> pairs_;
  std::vector<Item> items_;
  std::vector<Change> changes_;
};

}  // namespace

const std::array<ExceptionRuleInfo, exceptionRuleCount>& exceptionRules() noexcept {
  return rules;
}

std::optional<FoundExceptions> findExceptions(const ResultList& list, const ExceptionSettings& settings) {
  try {
    Search search(list, settings);
    if (list.store() == nullptr) return FoundExceptions{};
    if (!search.findColumns()) return std::nullopt;
    return search.find();
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

}  // namespace korvel::evidence
