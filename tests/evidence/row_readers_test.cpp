#include "evidence/row_readers.h"

#include <gmock/gmock.h>

#include "base/error.h"
#include "output/csv_writer.h"
#include "output/json_writer.h"

namespace korvel::evidence {
namespace {

using db::Cell;
using db::Field;
using testing::HasSubstr;

/// Rows as text, null as "~".
class Taken {
 public:
  RowTaker taker() {
    return [this](std::span<const Field> fields, std::span<const Cell> cells) {
      for (std::size_t i = 0; i < cells.size(); ++i)
        text += fields[i].name + (cells[i].isNull ? "~" : "=" + std::string(cells[i].text)) + "|";
      text += "\n";
    };
  }
  std::string text;
};

const std::vector<Field> fields{{"A"}, {"B, \"b\""}, {"Ü"}};
const std::vector<std::vector<Cell>> rows = {{{"1"}, {"a,b"}, {{}, true}},
                                             {{""}, {"\"quoted\""}, {" blanks "}},
                                             {{"line\r\nline"}, {{}, true}, {"\x01\x7F"}},
                                             {{{}, true}, {{}, true}, {{}, true}},
                                             {{"Małgorzata \xF0\x9F\x94\xA7"}, {"\\n"}, {"\""}}};

template <typename Writer>
std::string written() {
  std::string bytes;
  const output::ByteSink sink = [&](std::string_view part) { bytes += part; };
  Writer writer(sink);
  writer.begin(fields);
  for (const auto& row : rows) writer.row(row);
  writer.end();
  return bytes;
}

std::string expected() {
  Taken taken;
  const RowTaker take = taken.taker();
  for (const auto& row : rows) take(fields, row);
  return taken.text;
}

std::string failure(void (*read)(std::string_view, const RowTaker&), std::string_view bytes, Taken& taken) {
  try {
    read(bytes, taken.taker());
  } catch (const Error& error) {
    return error.description();
  }
  return {};
}

TEST(RowReaders, ReadWhatTheWritersWrite) {
  Taken csv;
  readCsvRows(written<output::CsvWriter>(), csv.taker());
  EXPECT_EQ(csv.text, expected());
  Taken json;
  readJsonRows(written<output::JsonWriter>(), json.taker());
  EXPECT_EQ(json.text, expected());
}

TEST(RowReaders, TakeRowsUntilACsvFileIsCut) {
  const std::string bytes = written<output::CsvWriter>();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    Taken taken;
    const std::string why = failure(&readCsvRows, std::string_view(bytes).substr(0, size), taken);
    EXPECT_TRUE(expected().starts_with(taken.text)) << size;
    // Between two lines a cut is no fault of the form.
    const bool between = size == 0 || (bytes[size - 1] == '\n' && bytes[size - 2] == '\r' && why.empty());
    EXPECT_EQ(why.empty(), between) << size;
  }
  Taken taken;
  EXPECT_THAT(failure(&readCsvRows, "A,B\r\n1,2\r\n3\r\n", taken),
              HasSubstr("line 3 of the comma-separated values has 1 fields instead of 2"));
  EXPECT_EQ(taken.text, "A=1|B=2|\n");
  EXPECT_THAT(failure(&readCsvRows, "A,B\r\n1,\"2\r\n", taken), HasSubstr("has a quote that is not closed"));
}

TEST(RowReaders, TakeRowsUntilAJsonFileIsNotOurs) {
  const std::string bytes = written<output::JsonWriter>();
  const std::size_t end = bytes.find_last_of(']');
  for (std::size_t size = 0; size < end; ++size) {
    Taken taken;
    EXPECT_NE(failure(&readJsonRows, std::string_view(bytes).substr(0, size), taken), "") << size;
    EXPECT_TRUE(expected().starts_with(taken.text)) << size;
  }
  for (const char* const other : {"{}", "[1]", "[\"a\"]", "[[]]", R"([{"a":1}])", R"([{"a":true}])", R"([{"a":{}}])",
                                  R"([{"a":[]}])", R"([{"a":1.5}])", "null"}) {
    Taken taken;
    EXPECT_THAT(failure(&readJsonRows, other, taken), HasSubstr("no array of objects")) << other;
  }
}

}  // namespace
}  // namespace korvel::evidence
