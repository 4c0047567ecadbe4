#include "output/row_writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "output/csv_writer.h"
#include "output/json_writer.h"
#include "output/list_writers.h"
#include "output/separated_text.h"
#include "tests/support/filled_list.h"

namespace korvel::output {
namespace {

using test::ScriptedRow;

/// A format that is written row by row, and the same for a list.
struct Format {
  std::function<std::unique_ptr<RowWriter>(const ByteSink&)> writer;
  std::function<void(const results::ResultList&, const ByteSink&)> writeList;
};
const Format csv{[](const ByteSink& sink) { return std::make_unique<CsvWriter>(sink); }, writeCsv};
const std::vector<Format> formats = {
    {[](const ByteSink& sink) { return std::make_unique<SeparatedTextWriter>(sink, textExportSeparator); }, writeText},
    {[](const ByteSink& sink) { return std::make_unique<SeparatedTextWriter>(sink, exchangeSeparator); },
     writeExchange},
    csv,
    {[](const ByteSink& sink) { return std::make_unique<JsonWriter>(sink); }, writeJson}};

/// Streams answers into a text.
struct Stream : testing::Test {
  std::string bytes;
  std::size_t largest = 0;
  const ByteSink sink = [this](std::string_view chunk) {
    bytes += chunk;
    largest = std::max(largest, chunk.size());
  };
  bool wanted = true;

  RecordStream make(const Format& format) {
    bytes.clear();
    return {format.writer(sink), [this] { return wanted; }};
  }

  static bool push(db::ResultSink& stream, const ScriptedRow& row) {
    std::vector<db::Cell> cells;
    for (const auto& value : row) cells.push_back({value ? std::string_view(*value) : std::string_view{}, !value});
    return stream.row(cells);
  }

  std::string streamed(const Format& format, const std::vector<db::Field>& fields,
                       const std::vector<ScriptedRow>& rows) {
    RecordStream stream = make(format);
    stream.beginResult(fields);
    for (const ScriptedRow& row : rows) EXPECT_TRUE(push(stream, row));
    stream.endResult();
    stream.finish();
    EXPECT_EQ(stream.rowCount(), rows.size());
    return bytes;
  }
};

TEST_F(Stream, WritesTheSameBytesAsAList) {
  const std::vector<db::Field> fields{{"Nr"}, {"a,\"b"}, {"Nr"}, {""}};
  std::vector<ScriptedRow> rows = {{"1", " x ", std::nullopt, ""},
                                   {"ä\xFF", "\"", "1234567,", "12345678901\n"},
                                   {" ", "\x1B\u009B", "a\\b", "12345678"},
                                   {std::string(200'000, 'x'), std::string(200'000, '"'), ",", "\r"}};
  for (int i = 0; i < 5000; ++i) rows.push_back({std::to_string(i), "value", std::nullopt, std::string(40, 'y')});
  for (const Format& format : formats)
    EXPECT_EQ(streamed(format, fields, rows), test::written(format.writeList, test::filledList(fields, rows)));
}

TEST_F(Stream, HandsOverAsItGoes) {
  const std::vector<ScriptedRow> rows(20'000, ScriptedRow{"12345678901234567890"});
  for (const Format& format : formats) {
    largest = 0;
    EXPECT_GT(streamed(format, {{"a"}}, rows).size(), std::size_t{1} << 18U);
    EXPECT_LT(largest, std::size_t{1} << 17U);
  }
}

TEST_F(Stream, WritesNothingWithoutRows) {
  for (const Format& format : formats) EXPECT_EQ(streamed(format, {{"a"}}, {}), "");
}

TEST_F(Stream, TakesNothingBehindTheFirstResult) {
  RecordStream stream = make(csv);
  stream.beginResult(std::vector<db::Field>{{"a"}});
  EXPECT_TRUE(stream.shouldContinue());
  push(stream, {"1"});
  stream.endResult();
  EXPECT_FALSE(stream.shouldContinue());
  stream.beginResult(std::vector<db::Field>{{"b"}});
  EXPECT_FALSE(push(stream, {"2"}));
  stream.endResult();
  stream.finish();
  EXPECT_FALSE(stream.stopped());
  EXPECT_EQ(bytes, "a\r\n1\r\n");
}

TEST_F(Stream, EndsWhenItIsNotWanted) {
  RecordStream stream = make(csv);
  stream.beginResult(std::vector<db::Field>{{"a"}});
  EXPECT_TRUE(push(stream, {"1"}));
  wanted = false;
  EXPECT_FALSE(push(stream, {"2"}));
  EXPECT_FALSE(stream.shouldContinue());
  EXPECT_TRUE(stream.stopped());
}

}  // namespace
}  // namespace korvel::output
