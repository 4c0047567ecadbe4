#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "db/connection.h"

namespace korvel::test {

using TextRow = std::vector<std::optional<std::string>>;

struct CollectedResult {
  std::vector<db::Field> fields;
  std::vector<TextRow> rows;
  bool ended = false;

  /// The values of one column; null reads "NULL".
  [[nodiscard]] std::vector<std::string> column(std::size_t index) const {
    std::vector<std::string> values;
    for (const TextRow& row : rows) values.push_back(row.at(index).value_or("NULL"));
    return values;
  }
};

/// Copies an answer, and can stop it after a number of rows.
class CollectingSink final : public db::ResultSink {
 public:
  CollectingSink() = default;
  explicit CollectingSink(std::size_t enough) : enough_(enough) {}

  void beginResult(std::span<const db::Field> fields) override {
    results.push_back({{fields.begin(), fields.end()}, {}, false});
  }
  bool row(std::span<const db::Cell> cells) override {
    TextRow copy;
    for (const db::Cell& cell : cells)
      copy.push_back(cell.isNull ? std::nullopt : std::optional<std::string>(cell.text));
    results.back().rows.push_back(std::move(copy));
    return ++rowCount_ != enough_;
  }
  void endResult() override { results.back().ended = true; }

  std::vector<CollectedResult> results;

 private:
  std::size_t enough_ = 0;
  std::size_t rowCount_ = 0;
};

inline std::vector<CollectedResult> resultsOf(db::Connection& connection, std::string_view text) {
  CollectingSink sink;
  connection.execute(text, sink);
  return std::move(sink.results);
}

/// The answer as one text: fields with "|" between them, a line a row, null as "NULL", "--" before each further result.
inline std::string answerText(db::Connection& connection, std::string_view text) {
  std::string printed;
  for (const CollectedResult& result : resultsOf(connection, text)) {
    if (!printed.empty()) printed += "--\n";
    for (const db::Field& field : result.fields) printed += (&field == result.fields.data() ? "" : "|") + field.name;
    printed += '\n';
    for (const TextRow& row : result.rows) {
      for (const auto& value : row) printed += (&value == row.data() ? "" : "|") + value.value_or("NULL");
      printed += '\n';
    }
  }
  return printed;
}

/// The error of an action; nothing where it succeeds.
template <typename Action>
std::optional<Error> errorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error;
  }
  return std::nullopt;
}

inline std::optional<Error> errorOfText(db::Connection& connection, std::string_view text) {
  return errorOf([&] { (void)resultsOf(connection, text); });
}

}  // namespace korvel::test
