#include "evidence/comparison_list.h"

#include <memory>
#include <optional>
#include <utility>

#include "results/row_store.h"

namespace korvel::evidence {

namespace {

using Value = std::optional<std::string>;

/// Only one side has the row.
bool isWhole(const RowDifference& difference) {
  return difference.kind == RowDifference::Kind::removed || difference.kind == RowDifference::Kind::inserted;
}

class ListMaker {
 public:
  ListMaker(ComparisonRows rows, const ComparisonLanguage& language)
      : isCompact_(rows == ComparisonRows::compact), language_(language) {
    std::vector<db::Field> fields;
    const auto add = [&](const std::string& caption, int widths) {
      fields.push_back({caption});
      headers_.push_back({caption, Twips{results::standardColumnWidth.value * widths}, 0});
    };
    add(language.text("compare.finding"), 1);
    add("Entry ID", 1);
    constexpr int rowWidths = 3;
    if (isCompact_) add(language.text("compare.row"), rowWidths);
    add(language.text("compare.column"), 1);
    add(language.text("compare.before"), isCompact_ ? 2 : 1);
    add(language.text("compare.now"), isCompact_ ? 2 : 1);
    store_->beginResult(fields);
  }

  void add(const ComparisonLine& line) {
    if (line.oddity != nullptr) return add(*line.oddity);
    const RowDifference& difference = *line.difference;
    const Value none;
    const std::string column = line.value == nullptr ? std::string() : line.value->column;
    const Value& before = line.value == nullptr ? none : line.value->before;
    const Value& now = line.value == nullptr ? none : line.value->now;
    if (!line.isFirst) return addRow({}, {}, {}, column, before, now);
    addRow(findingText(difference, language_), textOf(difference.number), rowText(difference), column, before, now);
  }

  /// All values of a difference.
  void add(const RowDifference& difference) {
    for (const ValueChange& value : difference.values)
      // Those that were empty on both sides say nothing.
      if (!isWhole(difference) || value.before.value_or("") != value.now.value_or(""))
        addRow(findingText(difference, language_), textOf(difference.number), {}, value.column, value.before,
               value.now);
  }

  void add(const TrailOddity& oddity) {
    std::string number = std::to_string(oddity.number);
    if (oddity.last != oddity.number) number = language_.text("compare.numbers", {number, std::to_string(oddity.last)});
    const bool isTime = oddity.kind == TrailOddity::Kind::clockStep;
    addRow(findingText(oddity, language_), number, {}, isTime ? "DateTime" : "Nr",
           isTime ? Value(language_.text("compare.after", {oddity.before})) : Value(),
           isTime ? Value(oddity.now) : Value());
  }

  [[nodiscard]] results::ResultList take() {
    results::ResultList list(results::RowFilling::whole);
    list.setColumns(std::move(headers_));
    list.setRows(store_, std::move(rows_));
    return list;
  }

 private:
  static std::string textOf(const std::optional<std::int64_t>& number) {
    return number ? std::to_string(*number) : std::string();
  }
  void addRow(const std::string& what, const std::string& number, const std::string& row, const std::string& column,
              const Value& before, const Value& now) {
    const auto cell = [](const Value& value) { return value ? db::Cell{*value, false} : db::Cell{{}, true}; };
    std::vector<db::Cell> cells = {{what, false}, {number, false}};
    if (isCompact_) cells.push_back({row, false});
    cells.push_back({column, false});
    cells.push_back(cell(before));
    cells.push_back(cell(now));
    rows_.push_back(store_->append(cells));
  }

  bool isCompact_;
  const ComparisonLanguage& language_;
  std::shared_ptr<results::RowStore> store_ = std::make_shared<results::RowStore>();
  std::vector<results::ColumnHeader> headers_;
  std::vector<results::RowId> rows_;
};

}  // namespace

std::vector<ComparisonLine> comparisonLines(const ComparedSnapshot& compared) {
  std::vector<ComparisonLine> lines;
  for (const RowDifference& difference : compared.found.differences) {
    if (isWhole(difference) || difference.values.empty()) {
      lines.push_back({&difference});
      continue;
    }
    for (const ValueChange& value : difference.values)
      lines.push_back({&difference, &value, nullptr, &value == &difference.values.front()});
  }
  for (const TrailOddity& oddity : compared.found.oddities) lines.push_back({nullptr, nullptr, &oddity});
  return lines;
}

results::ResultList comparisonList(const ComparedSnapshot& compared, ComparisonRows rows,
                                   const ComparisonLanguage& language) {
  ListMaker list(rows, language);
  if (rows == ComparisonRows::compact) {
    for (const ComparisonLine& line : comparisonLines(compared)) list.add(line);
  } else {
    for (const RowDifference& difference : compared.found.differences) list.add(difference);
    for (const TrailOddity& oddity : compared.found.oddities) list.add(oddity);
  }
  return list.take();
}

}  // namespace korvel::evidence
