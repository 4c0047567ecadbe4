#include <array>

#include "tests/tds_server/tests/server_fixture.h"

namespace korvel::test::tds {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Sample {
  const char* declaration;
  Value value;
  const char* shown;
};

const std::array samples{
    Sample{"tinyint", 255, "255"},
    Sample{"tinyint not null", 0, "0"},
    Sample{"smallint", -32768, "-32768"},
    Sample{"smallint not null", 32767, "32767"},
    Sample{"int", std::int64_t{-2147483648}, "-2147483648"},
    Sample{"int not null", 2147483647, "2147483647"},
    Sample{"bigint", std::int64_t{-9223372036854775807} - 1, "-9223372036854775808"},
    Sample{"bigint not null", std::int64_t{9223372036854775807}, "9223372036854775807"},
    Sample{"bit", 1, "1"},
    Sample{"bit not null", 0, "0"},
    Sample{"decimal(5,2)", "-123.45", "-123.45"},
    Sample{"decimal(38,10)", "1234567890123456789012345678.0123456789", "1234567890123456789012345678.0123456789"},
    Sample{"numeric(19,0)", "9999999999999999999", "9999999999999999999"},
    Sample{"numeric(28,28)", "0.0000000000000000000000000001", "0.0000000000000000000000000001"},
    Sample{"money", "-922337203685477.5808", "-922337203685477.5808"},
    Sample{"money not null", "12.3", "12.3000"},
    Sample{"smallmoney", "214748.3647", "214748.3647"},
    Sample{"smallmoney not null", "-0.0001", "-0.0001"},
    Sample{"float", 0.5, "0.5"},
    Sample{"float not null", -1e300, "-1.0000000000000001e+300"},
    Sample{"real", 0.25, "0.25"},
    Sample{"real not null", -8.0, "-8"},
    Sample{"datetime", "2024-02-29 13:45:59.123", "2024-02-29 13:45:59.123"},
    Sample{"datetime not null", "1753-01-01 00:00:00.000", "1753-01-01 00:00:00.000"},
    Sample{"smalldatetime", "2079-06-06 23:59:00", "2079-06-06 23:59:00"},
    Sample{"date", "1000-01-01", "1000-01-01"},
    Sample{"date", "9999-12-31", "9999-12-31"},
    Sample{"time(0)", "23:59:59", "23:59:59"},
    Sample{"time(7)", "13:45:59.1234567", "13:45:59.1234567"},
    Sample{"datetime2(0)", "2024-02-29 13:45:59", "2024-02-29 13:45:59"},
    Sample{"datetime2(3)", "2024-02-29 13:45:59.123", "2024-02-29 13:45:59.123"},
    Sample{"datetime2(7)", "1752-12-31 00:00:00.0000001", "1752-12-31 00:00:00.0000001"},
    Sample{"datetimeoffset(7)", "2024-02-29 01:45:59.1234567 +02:00", "2024-02-29 01:45:59.1234567 +02:00"},
    Sample{"datetimeoffset(0)", "2024-12-31 23:30:00 -05:30", "2024-12-31 23:30:00 -05:30"},
    Sample{"uniqueidentifier", "6F9619FF-8B86-D011-B42D-00C04FC964FF", "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
    Sample{"binary(4)", "0xCAFE", "cafe0000"},
    Sample{"varbinary(8)", "0xcafe00", "cafe00"},
    Sample{"varbinary(max)", "0xDEADBEEF", "deadbeef"},
    Sample{"image", "0x0102", "0102"},
    Sample{"char(5)", "ab", "ab   "},
    Sample{"varchar(20)", "Öl für 5 €", "Öl für 5 €"},
    Sample{"varchar(20) collate cp1250", "Žluťoučký kůň", "Žluťoučký kůň"},
    Sample{"varchar(20) collate cp1251", "Насос", "Насос"},
    Sample{"varchar(20) collate utf8", "ポンプ 🛢", "ポンプ 🛢"},
    Sample{"varchar(max)", "Öl", "Öl"},
    Sample{"text", "Öl", "Öl"},
    Sample{"nchar(4)", "ä", "ä   "},
    Sample{"nvarchar(30)", "Ventil ≤ 5 €, ポンプ, 🛢", "Ventil ≤ 5 €, ポンプ, 🛢"},
    Sample{"nvarchar(30)", "", ""},
    Sample{"nvarchar(max)", "Öl 🛢", "Öl 🛢"},
    Sample{"nvarchar(max)", "", ""},
    Sample{"ntext", "Öl 🛢", "Öl 🛢"},
    Sample{"xml", "<a b=\"ü\">🛢</a>", "<a b=\"ü\">🛢</a>"},
    Sample{"sql_variant", 17, "17"},
    Sample{"sql_variant", "Öl", "Öl"},
};

class ServerTypes : public ServerTest {};

TEST_F(ServerTypes, EveryTypeArrivesAsItIs) {
  for (const Sample& sample : samples) {
    SCOPED_TRACE(::testing::PrintToString(sample.declaration));
    EXPECT_THAT(shown(Answer().result({{"a", sample.declaration}}).row({sample.value})),
                ElementsAre("[a]", sample.shown));
  }
  EXPECT_THAT(server_.record().problems, IsEmpty());
}

TEST_F(ServerTypes, EveryTypeCanBeNull) {
  for (const Sample& sample : samples) {
    if (std::string(sample.declaration).ends_with("not null")) continue;
    SCOPED_TRACE(sample.declaration);
    const std::vector<Column> columns{{"before", "int"}, {"a", sample.declaration}, {"after", "nvarchar(5)"}};
    EXPECT_THAT(shown(Answer().result(columns).row({1, null, "x"}).bitmapRow({2, null, "y"})),
                ElementsAre("[before, a, after]", "1, NULL, x", "2, NULL, y"));
  }
}

TEST_F(ServerTypes, AMegabyteArrivesInChunksOfAnySize) {
  for (const std::size_t chunkSize : {1U, 999U, 8000U, 4U * 1024 * 1024}) {
    SCOPED_TRACE(chunkSize);
    // A megabyte in chunks of one byte would be mostly lengths; a shorter text tests the same.
    const std::size_t size = chunkSize == 1 ? 20'000 : 1024 * 1024;
    std::string sent;
    while (sent.size() < size) sent += "Ölstand ≤ 5 🛢; ";
    const auto lines = shown(Answer().chunks(chunkSize).result({{"a", "nvarchar(max)"}}).row({sent}).row({"end"}));
    // Not EXPECT_EQ: a failure would print a megabyte twice.
    EXPECT_TRUE(lines == (std::vector<std::string>{"[a]", sent, "end"}));
  }
}

TEST_F(ServerTypes, ASurrogateAloneArrivesAlone) {
  const char* const alone = "a\xED\xA0\xBDz";
  EXPECT_THAT(shown(Answer().result({{"a", "nvarchar(9)"}}).row({alone})), ElementsAre("[a]", alone));
}

TEST_F(ServerTypes, AThousandColumnsArriveInOrder) {
  std::vector<Column> columns;
  std::vector<Value> values;
  std::string header = "[";
  std::string row;
  for (int i = 0; i < 1000; ++i) {
    const std::string comma = i == 0 ? "" : ", ";
    columns.emplace_back("c" + std::to_string(i), "int");
    values.emplace_back(i);
    header += comma + "c" + std::to_string(i);
    row += comma + std::to_string(i);
  }
  EXPECT_THAT(shown(Answer().result(columns).row(values)), ElementsAre(header + "]", row));
}

TEST(Answer, RejectsInvalidColumnsAndValues) {
  EXPECT_THROW(Column("a", "integer"), std::invalid_argument);
  EXPECT_THROW(Column("a", "varchar"), std::invalid_argument);
  EXPECT_THROW(Column("a", "varchar(9000)"), std::invalid_argument);
  EXPECT_THROW(Column("a", "varchar(9) collate cp0"), std::invalid_argument);
  EXPECT_THROW(Answer().row({1}), std::logic_error);
  EXPECT_THROW(Answer().result({{"a", "int"}}).row({1, 2}), std::invalid_argument);
  EXPECT_THROW(Answer().result({{"a", "int not null"}}).row({null}), std::invalid_argument);
  EXPECT_THROW(Answer().result({{"a", "int"}}).row({"one"}), std::invalid_argument);
  EXPECT_THROW(Answer().result({{"a", "decimal(5,2)"}}).row({"1.234"}), std::invalid_argument);
  EXPECT_THROW(Answer().result({{"a", "date"}}).row({"2023-02-29"}), std::invalid_argument);
  EXPECT_THROW(Answer().result({{"a", "varchar(9)"}}).row({"ポンプ"}), std::invalid_argument);
}

}  // namespace
}  // namespace korvel::test::tds
