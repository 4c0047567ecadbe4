#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "base/numbers.h"
#include "base/text.h"
#include "results/result_list.h"
#include "tests/results/stored_rows.h"

namespace korvel::results::test {

/// A list of generated rows, and what a reader would see in it, worked out plainly. It has a column of running numbers
/// (which stops looking for repeats), dates, frequent and rare texts with accents, other alphabets, surrogate pairs,
/// blanks around, nulls and empty texts, and a second result set that is narrower.
class GeneratedList {
 public:
  static constexpr std::size_t columnCount = 8;
  static constexpr std::uint32_t wideRows = 12'000;
  static constexpr std::uint32_t narrowRows = 300;
  static constexpr std::size_t narrowColumns = 6;

  /// The list has every `step`-th record.
  explicit GeneratedList(RowFilling filling, std::uint32_t step = 1) : list(filling), filling_(filling) {
    std::mt19937 random(5);
    const auto store = std::make_shared<RowStore>();
    const auto add = [&](std::uint32_t count, std::size_t width) {
      std::vector<Row> rows;
      for (std::uint32_t i = 0; i < count; ++i) {
        Row row = generatedRow(random, static_cast<std::uint32_t>(records_.size()));
        row.resize(width);
        rows.push_back(row);
        records_.push_back(row);
      }
      addResult(*store, rows);
    };
    add(wideRows, columnCount);
    add(narrowRows, narrowColumns);
    std::vector<RowId> rows;
    for (std::uint32_t row = 0; row < records_.size(); row += step) rows.push_back({row});
    std::vector<ColumnHeader> headers(columnCount, ColumnHeader{"", standardColumnWidth, 0});
    list.setColumns(headers);
    list.setRows(store, rows);
  }

  /// What a record shows; nothing where it is null.
  [[nodiscard]] Value shown(RowId record, std::size_t column) const {
    const Row& row = records_[record.value];
    const bool filled = filling_ == RowFilling::whole || column == 0 ? column < row.size() : column + 3 <= row.size();
    if (!filled) return "";
    if (!row[column]) return null;
    const std::string text(trimBlanks(*row[column]));
    if (!list.rewritesEntryNumbers(ColumnIndex{column})) return text;
    const auto number = wholeNumber(text);
    return number && text.front() == '-' ? (number->negative ? "-" : "") + std::string(number->digits)
                                         : std::string(withoutLeadingZeros(text));
  }
  [[nodiscard]] std::string shownText(RowId record, std::size_t column) const {
    return shown(record, column).value_or("");
  }

  ResultList list;

 private:
  static Row generatedRow(std::mt19937& random, std::uint32_t number) {
    static const std::vector<std::string> users = {"Heike Bäuerle", "HEIKE BÄUERLE", "José Núñez", "jose", "Straße",
                                                   "STRASSE",       "  Luca  ",      "Małgorzata", "",     "   "};
    static const std::vector<std::string> items = {"TIC-1901", "tic-1926", "FIC-1021",      "日本語", "😀 pump",
                                                   "a😀b",      "\xFF raw", "Kelvin \u212A", "naïve",  "ﬁlter"};
    const auto pick = [&](const std::vector<std::string>& from) { return from[random() % from.size()]; };
    const auto twoDigits = [](std::uint_fast32_t value) { return (value < 10 ? "0" : "") + std::to_string(value); };
    const std::string date = "2004-0" + std::to_string(1 + number / 4000 % 9) + "-" + twoDigits(1 + number / 200 % 28) +
                             " " + twoDigits(random() % 24) + ":00:00." + std::to_string(number % 1000);
    Value comment;
    if (random() % 3 == 0)
      comment = "";
    else if (random() % 2 == 0)
      comment = std::to_string(random() % 100'000) + " bar";
    // Some numbers have zeros before them, and a few of the last ones are negative.
    std::string key = (number % 7 == 0 ? "00" : "") + std::to_string(number);
    if (number % 4000 == 3999) key = "-0" + std::to_string(number);
    return {key, date, pick(users), comment, "text " + std::to_string(random()), pick(items), "filled", "last"};
  }

  RowFilling filling_;
  std::vector<Row> records_;
};

}  // namespace korvel::results::test
