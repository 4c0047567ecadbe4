#include "evidence/trail_comparison.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "base/numbers.h"
#include "query/buffered_rows.h"
#include "settings/string_table.h"

namespace korvel::evidence {

namespace {

constexpr std::string_view numberColumn = "Nr";
constexpr std::string_view timeColumn = "DateTime";

using Value = std::optional<std::string>;
using Row = std::vector<Value>;

/// Rows without a number come first.
using Number = std::optional<std::int64_t>;

/// A stream, one row after the other.
class Cursor {
 public:
  Cursor(RowStream& stream, const std::function<void()>& whileWaiting) : stream_(stream), whileWaiting_(whileWaiting) {
    load();
  }

  [[nodiscard]] bool atEnd() const noexcept { return batch_ == nullptr; }
  [[nodiscard]] const std::vector<db::Field>& fields() const noexcept { return fields_; }
  [[nodiscard]] Number number() const noexcept { return number_; }
  [[nodiscard]] std::span<const db::Cell> cells() const noexcept { return cells_; }
  [[nodiscard]] std::string_view time() const {
    return timeAt_ && !cells_[*timeAt_].isNull ? cells_[*timeAt_].text : std::string_view();
  }
  void advance() {
    ++row_;
    load();
  }

 private:
  void load() {
    while (batch_ == nullptr || row_ == batch_->rowCount()) {
      batch_ = stream_.next(whileWaiting_);
      if (batch_ == nullptr) return;
      row_ = 0;
      if (fields_.empty()) takeFields();
      if (batch_->fields().size() != fields_.size())
        throw settings::localizedError(unspecifiedFailure, "compare.otherColumns");
    }
    cells_ = batch_->row(row_);
    const db::Cell& cell = cells_[numberAt_];
    number_ = cell.isNull ? std::nullopt : parseInteger<std::int64_t>(cell.text);
    if (!number_ && !cell.isNull)
      throw settings::localizedError(unspecifiedFailure, "snapshot.numberNotWhole", {std::string(cell.text)});
  }
  void takeFields() {
    fields_ = batch_->fields();
    const auto number = query::columnOf(fields_, numberColumn);
    if (!number) throw settings::localizedError(unspecifiedFailure, "snapshot.noNumbers");
    numberAt_ = *number;
    timeAt_ = query::columnOf(fields_, timeColumn);
  }

  RowStream& stream_;
  const std::function<void()>& whileWaiting_;
  const query::BufferedRows* batch_ = nullptr;
  std::size_t row_ = 0;
  std::vector<db::Field> fields_;
  std::size_t numberAt_ = 0;
  std::optional<std::size_t> timeAt_;
  std::span<const db::Cell> cells_;
  Number number_;
};

bool isSame(const db::Cell& left, const db::Cell& right) {
  return left.isNull == right.isNull && left.text == right.text;
}

/// Watches what the numbers and times of the later trail show.
class OddityWatch {
 public:
  explicit OddityWatch(TrailComparison& found) : found_(found) {}

  void see(Number number, std::string_view time) {
    if (number && last_) {
      if (*number == *last_) {
        if (!isRepeat_) add(found_.repeatedNumbers, {TrailOddity::Kind::repeated, *number, *number, {}, {}});
        isRepeat_ = true;
      } else {
        isRepeat_ = false;
        if (*number - 1 > *last_) {
          found_.missingNumbers += static_cast<std::uint64_t>(*number) - static_cast<std::uint64_t>(*last_) - 1;
          add(found_.gaps, {TrailOddity::Kind::gap, *last_ + 1, *number - 1, {}, {}});
        }
      }
    }
    if (number && !time.empty() && time < time_)
      add(found_.clockSteps, {TrailOddity::Kind::clockStep, *number, *number, time_, std::string(time)});
    if (number) last_ = number;
    if (!time.empty()) time_ = time;
  }

 private:
  void add(std::uint64_t& count, TrailOddity oddity) {
    if (count++ < TrailComparison::mostNamed) found_.oddities.push_back(std::move(oddity));
  }

  TrailComparison& found_;
  Number last_;
  bool isRepeat_ = false;
  std::string time_;
};

class Comparing {
 public:
  Comparing(RowStream& before, RowStream& now, Number last, const ComparisonProgress& progress)
      : progress_(progress),
        whileWaiting_([this] {
          if (progress_) progress_(found_.rowsBefore + found_.rowsNow);
        }),
        before_(before, whileWaiting_),
        now_(now, whileWaiting_),
        last_(last),
        oddities_(found_) {
    pairColumns();
  }

  TrailComparison compare() {
    while (!before_.atEnd() || !now_.atEnd()) {
      if (now_.atEnd() || (!before_.atEnd() && before_.number() < now_.number()))
        removed(takeBefore());
      else if (before_.atEnd() || now_.number() < before_.number())
        came();
      else if (rowsAreSame()) {
        ++found_.same;
        skipBefore();
        skipNow();
      } else {
        compareRowsOfNumber();
      }
    }
    nameMoves();
    return std::move(found_);
  }

 private:
  struct Taken {
    Number number;
    Row values;  ///< of the columns that both trails have
  };

  void pairColumns() {
    // Of a trail without rows the columns are not known, and nothing is compared with them.
    if (before_.fields().empty() || now_.fields().empty()) {
      const auto& fields = before_.fields().empty() ? now_.fields() : before_.fields();
      for (std::size_t i = 0; i < fields.size(); ++i) pairs_.push_back({i, i});
      return;
    }
    for (std::size_t i = 0; i < before_.fields().size(); ++i) {
      const std::string& name = before_.fields()[i].name;
      if (const auto place = query::columnOf(now_.fields(), name))
        pairs_.push_back({i, *place});
      else
        found_.columnsGone.push_back(name);
    }
    for (const db::Field& field : now_.fields())
      if (!query::columnOf(before_.fields(), field.name)) found_.columnsNew.push_back(field.name);
  }

  [[nodiscard]] const std::string& nameOf(std::size_t pair) const {
    return before_.fields().empty() ? now_.fields()[pairs_[pair][1]].name : before_.fields()[pairs_[pair][0]].name;
  }

  [[nodiscard]] bool rowsAreSame() const {
    const auto before = before_.cells();
    const auto now = now_.cells();
    return std::all_of(pairs_.begin(), pairs_.end(),
                       [&](const auto& pair) { return isSame(before[pair[0]], now[pair[1]]); });
  }

  [[nodiscard]] Taken taken(const Cursor& cursor, std::size_t side) const {
    Taken row{cursor.number(), {}};
    for (const auto& pair : pairs_) {
      const db::Cell& cell = cursor.cells()[pair.at(side)];
      row.values.push_back(cell.isNull ? Value() : Value(cell.text));
    }
    return row;
  }

  void told() {
    constexpr std::uint64_t rowsBetween = 16384;
    if (progress_ && (found_.rowsBefore + found_.rowsNow) % rowsBetween == 0)
      progress_(found_.rowsBefore + found_.rowsNow);
  }
  void skipBefore() {
    ++found_.rowsBefore;
    told();
    before_.advance();
  }
  void skipNow() {
    ++found_.rowsNow;
    oddities_.see(now_.number(), now_.time());
    told();
    now_.advance();
  }
  Taken takeBefore() {
    Taken row = taken(before_, 0);
    skipBefore();
    return row;
  }
  Taken takeNow() {
    Taken row = taken(now_, 1);
    skipNow();
    return row;
  }

  /// The row of the later trail has no counterpart.
  void came() {
    if (now_.number() > last_) {
      ++found_.newer;
      // One that was removed may come again as one of these.
      if (newer_.size() < TrailComparison::mostNamed) newer_.push_back(insertedRow(taken(now_, 1)));
      return skipNow();
    }
    inserted(takeNow());
  }

  /// Rows of both trails with the same number: those that are the same are paired, whatever their order.
  void compareRowsOfNumber() {
    const Number number = before_.number();
    std::vector<Taken> before;
    std::vector<Taken> now;
    while (!before_.atEnd() && before_.number() == number) before.push_back(takeBefore());
    while (!now_.atEnd() && now_.number() == number) now.push_back(takeNow());
    const auto byValues = [](const Taken& left, const Taken& right) { return left.values < right.values; };
    std::sort(before.begin(), before.end(), byValues);
    std::sort(now.begin(), now.end(), byValues);
    std::vector<Taken> onlyBefore;
    std::vector<Taken> onlyNow;
    std::set_difference(before.begin(), before.end(), now.begin(), now.end(), std::back_inserter(onlyBefore), byValues);
    std::set_difference(now.begin(), now.end(), before.begin(), before.end(), std::back_inserter(onlyNow), byValues);
    found_.same += before.size() - onlyBefore.size();
    const std::size_t pairs = std::min(onlyBefore.size(), onlyNow.size());
    for (std::size_t i = 0; i < pairs; ++i) changed(onlyBefore[i], onlyNow[i]);
    for (std::size_t i = pairs; i < onlyBefore.size(); ++i) removed(onlyBefore[i]);
    for (std::size_t i = pairs; i < onlyNow.size(); ++i) inserted(onlyNow[i]);
  }

  [[nodiscard]] std::vector<ColumnValue> rowOf(const Taken& row) const {
    std::vector<ColumnValue> values;
    for (std::size_t i = 0; i < pairs_.size(); ++i) values.push_back({nameOf(i), row.values[i]});
    return values;
  }
  void add(RowDifference difference) {
    if (found_.differences.size() < TrailComparison::mostNamed) found_.differences.push_back(std::move(difference));
  }
  void changed(const Taken& before, const Taken& now) {
    ++found_.changed;
    RowDifference difference{RowDifference::Kind::changed, before.number, {}, {}, rowOf(before)};
    for (std::size_t i = 0; i < pairs_.size(); ++i)
      if (before.values[i] != now.values[i]) difference.values.push_back({nameOf(i), before.values[i], now.values[i]});
    add(std::move(difference));
  }
  void removed(const Taken& row) {
    ++found_.removed;
    RowDifference difference{RowDifference::Kind::removed, row.number, {}, {}, rowOf(row)};
    for (std::size_t i = 0; i < pairs_.size(); ++i) difference.values.push_back({nameOf(i), row.values[i], {}});
    add(std::move(difference));
  }
  [[nodiscard]] RowDifference insertedRow(const Taken& row) const {
    RowDifference difference{RowDifference::Kind::inserted, row.number, {}, {}, rowOf(row)};
    for (std::size_t i = 0; i < pairs_.size(); ++i) difference.values.push_back({nameOf(i), {}, row.values[i]});
    return difference;
  }
  void inserted(const Taken& row) {
    ++found_.inserted;
    add(insertedRow(row));
  }

  static bool isNumber(const ValueChange& value) {
    const std::array<db::Field, 1> field = {db::Field{value.column}};
    return query::columnOf(field, numberColumn).has_value();
  }

  /// A removed row and one that came, with the same values, are one row that has another number now; two changed rows
  /// that have each other's values were exchanged.
  void nameMoves() {
    std::vector<RowDifference>& all = found_.differences;
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (all[i].kind == RowDifference::Kind::removed && !takeRenumbered(all[i], newer_)) takeRenumbered(all[i], all);
      if (all[i].kind == RowDifference::Kind::changed) nameExchanged(all[i]);
    }
    std::erase_if(all, [](const RowDifference& each) { return each.isTaken; });
  }
  /// Looks for the row among those that came, and marks what it finds.
  static bool takeRenumbered(RowDifference& removed, std::vector<RowDifference>& came) {
    for (RowDifference& each : came) {
      if (each.kind != RowDifference::Kind::inserted || each.isTaken || !isRenumbered(removed, each)) continue;
      each.isTaken = true;
      removed.kind = RowDifference::Kind::renumbered;
      removed.otherNumber = each.number;
      removed.values = {{std::string(numberColumn), textOf(removed.number), textOf(each.number)}};
      return true;
    }
    return false;
  }
  void nameExchanged(RowDifference& changed) {
    for (RowDifference& other : found_.differences) {
      if (&other == &changed || other.kind != RowDifference::Kind::changed || !areExchanged(changed, other)) continue;
      changed.kind = other.kind = RowDifference::Kind::exchanged;
      changed.otherNumber = other.number;
      other.otherNumber = changed.number;
      return;
    }
  }
  static Value textOf(Number number) { return number ? Value(std::to_string(*number)) : Value(); }
  static bool isRenumbered(const RowDifference& removed, const RowDifference& inserted) {
    return std::equal(removed.values.begin(), removed.values.end(), inserted.values.begin(), inserted.values.end(),
                      [](const ValueChange& before, const ValueChange& now) {
                        return before.column == now.column && (isNumber(before) || before.before == now.now);
                      });
  }
  static bool areExchanged(const RowDifference& one, const RowDifference& other) {
    return std::equal(one.values.begin(), one.values.end(), other.values.begin(), other.values.end(),
                      [](const ValueChange& left, const ValueChange& right) {
                        return left.column == right.column && left.before == right.now && left.now == right.before;
                      });
  }

  TrailComparison found_;
  const ComparisonProgress& progress_;
  std::function<void()> whileWaiting_;
  Cursor before_;
  Cursor now_;
  Number last_;
  OddityWatch oddities_;
  std::vector<RowDifference> newer_;               ///< the first ones
  std::vector<std::array<std::size_t, 2>> pairs_;  ///< places of the columns that both have
};

}  // namespace

TrailComparison compareTrails(RowStream& before, RowStream& now, std::optional<std::int64_t> last,
                              const ComparisonProgress& progress) {
  return Comparing(before, now, last, progress).compare();
}

}  // namespace korvel::evidence
