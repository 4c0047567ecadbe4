#include "output/record_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/filled_list.h"

namespace korvel::output {
namespace {

using test::ScriptedRow;

/// Streams answers into a text.
struct Stream : testing::Test {
  std::string bytes;
  std::size_t largest = 0;
  const ByteSink sink = [this](std::string_view chunk) {
    bytes += chunk;
    largest = std::max(largest, chunk.size());
  };
  bool wanted = true;

  RecordStream make(ListFormat format) {
    bytes.clear();
    return {format, sink, [this] { return wanted; }};
  }

  static bool push(db::ResultSink& stream, const ScriptedRow& row) {
    std::vector<db::Cell> cells;
    for (const auto& value : row) cells.push_back({value ? std::string_view(*value) : std::string_view{}, !value});
    return stream.row(cells);
  }

  std::string streamed(ListFormat format, const std::vector<db::Field>& fields, const std::vector<ScriptedRow>& rows) {
    RecordStream stream = make(format);
    stream.beginResult(fields);
    for (const ScriptedRow& row : rows) EXPECT_TRUE(push(stream, row));
    stream.endResult();
    stream.finish();
    EXPECT_EQ(stream.rowCount(), rows.size());
    return bytes;
  }
};

const std::vector<ListFormat> formats = {ListFormat::text, ListFormat::exchange, ListFormat::csv, ListFormat::json};

TEST_F(Stream, WritesTheSameBytesAsAList) {
  const std::vector<db::Field> fields{{"Nr"}, {"a,\"b"}, {"Nr"}, {""}};
  std::vector<ScriptedRow> rows = {{"1", " x ", std::nullopt, ""},
                                   {"ä\xFF", "\"", "1234567,", "12345678901\n"},
                                   {" ", "\x1B\u009B", "a\\b", "12345678"},
                                   {std::string(200'000, 'x'), std::string(200'000, '"'), ",", "\r"}};
  for (int i = 0; i < 5000; ++i) rows.push_back({std::to_string(i), "value", std::nullopt, std::string(40, 'y')});
  for (const ListFormat format : formats)
    EXPECT_EQ(streamed(format, fields, rows), test::written(format, test::filledList(fields, rows)));
}

TEST_F(Stream, HandsOverAsItGoes) {
  const std::vector<ScriptedRow> rows(20'000, ScriptedRow{"12345678901234567890"});
  for (const ListFormat format : formats) {
    largest = 0;
    EXPECT_GT(streamed(format, {{"a"}}, rows).size(), std::size_t{1} << 18U);
    EXPECT_LT(largest, std::size_t{1} << 17U);
  }
}

TEST_F(Stream, WritesNothingWithoutRows) {
  for (const ListFormat format : formats) EXPECT_EQ(streamed(format, {{"a"}}, {}), "");
}

TEST_F(Stream, TakesNothingBehindTheFirstResult) {
  RecordStream stream = make(ListFormat::csv);
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
  RecordStream stream = make(ListFormat::csv);
  stream.beginResult(std::vector<db::Field>{{"a"}});
  EXPECT_TRUE(push(stream, {"1"}));
  wanted = false;
  EXPECT_FALSE(push(stream, {"2"}));
  EXPECT_FALSE(stream.shouldContinue());
  EXPECT_TRUE(stream.stopped());
}

TEST_F(Stream, IsForAllFormatsButTheTable) {
  for (const ListFormat format : formats) EXPECT_TRUE(canStream(format));
  EXPECT_FALSE(canStream(ListFormat::table));
}

}  // namespace
}  // namespace korvel::output
