#include "evidence/row_readers.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <vector>

#include "base/error.h"

namespace korvel::evidence {

namespace {

/// Records of comma-separated values, one after the other.
class CsvReader {
 public:
  explicit CsvReader(std::string_view bytes) : rest_(bytes) {}

  /// The next record's cells, valid until the next call; false at the end.
  bool next(std::vector<db::Cell>& cells) {
    if (rest_.empty()) return false;
    ++record_;
    fields_.clear();
    do fields_.push_back(field());
    while (!rest_.empty() && rest_.front() == ',' && skip(1));
    if (!rest_.starts_with("\r\n")) fail("does not end with CR LF");
    skip(2);
    cells.clear();
    for (const Field& field : fields_) cells.push_back({field.text, field.isNull});
    return true;
  }

  [[noreturn]] void fail(std::string_view why) const {
    throw Error(unspecifiedFailure,
                "line " + std::to_string(record_) + " of the comma-separated values " + std::string(why));
  }

 private:
  struct Field {
    std::string text;
    bool isNull = false;
  };

  bool skip(std::size_t bytes) {
    rest_.remove_prefix(bytes);
    return true;
  }

  Field field() {
    if (!rest_.starts_with('"')) {
      const std::size_t end = std::min(rest_.find_first_of(",\r\n\""), rest_.size());
      Field plain{std::string(rest_.substr(0, end)), end == 0};
      skip(end);
      return plain;
    }
    Field quoted;
    for (skip(1);; skip(1)) {
      const std::size_t end = rest_.find('"');
      if (end == std::string_view::npos) fail("has a quote that is not closed");
      quoted.text += rest_.substr(0, end);
      skip(end + 1);
      if (!rest_.starts_with('"')) return quoted;
      quoted.text += '"';
    }
  }

  std::string_view rest_;
  std::vector<Field> fields_;
  std::size_t record_ = 0;
};

/// An array of objects whose members are strings or null.
class JsonRows final : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit JsonRows(const RowTaker& take) : take_(take) {}

  bool null() override { return value({}, true); }
  bool string(string_t& text) override { return value(std::move(text), false); }
  bool key(string_t& name) override {
    fields_.push_back({std::move(name)});
    return true;
  }
  bool start_object(std::size_t /*elements*/) override {
    fields_.clear();
    values_.clear();
    return ++depth_ == 2;
  }
  bool end_object() override {
    --depth_;
    cells_.clear();
    cells_.reserve(values_.size());
    for (const Value& value : values_) cells_.push_back({value.text, value.isNull});
    ++rows_;
    take_(fields_, cells_);
    return true;
  }
  bool start_array(std::size_t /*elements*/) override { return ++depth_ == 1; }
  bool end_array() override { return --depth_ == 0; }
  bool boolean(bool /*value*/) override { return false; }
  bool number_integer(number_integer_t /*value*/) override { return false; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return false; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return false; }
  bool binary(binary_t& /*value*/) override { return false; }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::json::exception& /*what*/) override {
    return false;
  }

  [[nodiscard]] std::size_t rows() const noexcept { return rows_; }

 private:
  struct Value {
    std::string text;
    bool isNull = false;
  };

  bool value(string_t text, bool isNull) {
    values_.push_back({std::move(text), isNull});
    return depth_ == 2;
  }

  const RowTaker& take_;
  int depth_ = 0;
  std::size_t rows_ = 0;
  std::vector<db::Field> fields_;
  std::vector<Value> values_;
  std::vector<db::Cell> cells_;
};

}  // namespace

void readCsvRows(std::string_view bytes, const RowTaker& take) {
  CsvReader reader(bytes);
  std::vector<db::Cell> cells;
  if (!reader.next(cells)) return;
  std::vector<db::Field> fields;
  fields.reserve(cells.size());
  for (const db::Cell& name : cells) fields.push_back({std::string(name.text)});
  while (reader.next(cells)) {
    if (cells.size() != fields.size())
      reader.fail("has " + std::to_string(cells.size()) + " fields instead of " + std::to_string(fields.size()));
    take(fields, cells);
  }
}

void readJsonRows(std::string_view bytes, const RowTaker& take) {
  JsonRows rows(take);
  if (!nlohmann::json::sax_parse(bytes, &rows))
    throw Error(unspecifiedFailure, "behind row " + std::to_string(rows.rows()) +
                                        " it is no array of objects with texts, as JSON of ours is");
}

}  // namespace korvel::evidence
