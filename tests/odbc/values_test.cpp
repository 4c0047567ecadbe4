#include <array>
#include <limits>

#include "tests/odbc/wire.h"

namespace korvel::test {
namespace {

using namespace std::string_literals;
using db::ColumnKind;
using tds::Answer;
using tds::null;

struct Sample {
  const char* declaration;
  tds::Value value;
  const char* text;
  ColumnKind kind;
};

const auto samples = std::to_array<Sample>({
    {"tinyint", 255, "255", ColumnKind::number},
    {"smallint", -32768, "-32768", ColumnKind::number},
    {"smallint not null", 32767, "32767", ColumnKind::number},
    {"int", std::int64_t{-2147483648}, "-2147483648", ColumnKind::number},
    {"int not null", 2147483647, "2147483647", ColumnKind::number},
    {"bigint", std::numeric_limits<std::int64_t>::min(), "-9223372036854775808", ColumnKind::number},
    {"bigint not null", std::numeric_limits<std::int64_t>::max(), "9223372036854775807", ColumnKind::number},
    {"bit", 1, "1", ColumnKind::boolean},
    {"bit not null", 0, "0", ColumnKind::boolean},
    {"decimal(5,2)", "-123.45", "-123.45", ColumnKind::number},
    {"decimal(5,2)", "0.05", "0.05", ColumnKind::number},
    {"decimal(5,2)", "-0.50", "-0.50", ColumnKind::number},
    {"decimal(38,10)", "1234567890123456789012345678.0123456789", "1234567890123456789012345678.0123456789",
     ColumnKind::number},
    {"numeric(19,0)", "9999999999999999999", "9999999999999999999", ColumnKind::number},
    {"numeric(28,28)", "0.0000000000000000000000000001", "0.0000000000000000000000000001", ColumnKind::number},
    {"money", "-922337203685477.5808", "-922337203685477.5808", ColumnKind::number},
    {"money not null", "12.3", "12.3000", ColumnKind::number},
    {"money", "0.05", "0.0500", ColumnKind::number},
    {"smallmoney", "214748.3647", "214748.3647", ColumnKind::number},
    {"smallmoney not null", "-0.0001", "-0.0001", ColumnKind::number},
    {"float", 0.1, "0.1", ColumnKind::number},
    {"float", 5.0, "5", ColumnKind::number},
    {"float", -0.0, "0", ColumnKind::number},
    {"float", 1.0 / 3, "0.3333333333333333", ColumnKind::number},
    {"float", 12345678.9, "12345678.9", ColumnKind::number},
    {"float not null", -1e300, "-1e+300", ColumnKind::number},
    {"real", 0.1, "0.1", ColumnKind::number},
    {"real not null", -8.0, "-8", ColumnKind::number},
    {"datetime", "2024-02-29 13:45:59.123", "2024-02-29 13:45:59.123", ColumnKind::dateTime},
    {"datetime not null", "1753-01-01 00:00:00.000", "1753-01-01 00:00:00.000", ColumnKind::dateTime},
    {"smalldatetime", "2079-06-06 23:59:00", "2079-06-06 23:59:00", ColumnKind::dateTime},
    {"date", "1000-01-01", "1000-01-01", ColumnKind::dateTime},
    {"date", "9999-12-31", "9999-12-31", ColumnKind::dateTime},
    {"time(0)", "23:59:59", "23:59:59", ColumnKind::dateTime},
    {"time(7)", "13:45:59.1234567", "13:45:59.1234567", ColumnKind::dateTime},
    {"datetime2(0)", "2024-02-29 13:45:59", "2024-02-29 13:45:59", ColumnKind::dateTime},
    {"datetime2(3)", "2024-02-29 13:45:59.123", "2024-02-29 13:45:59.123", ColumnKind::dateTime},
    {"datetime2(7)", "1752-12-31 00:00:00.0000001", "1752-12-31 00:00:00.0000001", ColumnKind::dateTime},
    {"datetimeoffset(7)", "2024-02-29 01:45:59.1234567 +02:00", "2024-02-29 01:45:59.1234567 +02:00",
     ColumnKind::dateTime},
    {"datetimeoffset(0)", "2024-12-31 23:30:00 -05:30", "2024-12-31 23:30:00 -05:30", ColumnKind::dateTime},
    {"uniqueidentifier", "6F9619FF-8B86-D011-B42D-00C04FC964FF", "6F9619FF-8B86-D011-B42D-00C04FC964FF",
     ColumnKind::text},
    {"binary(4)", "0xCAFE", "cafe0000", ColumnKind::binary},
    {"varbinary(8)", "0xcafe00", "cafe00", ColumnKind::binary},
    {"varbinary(8)", "0x", "", ColumnKind::binary},
    {"varbinary(max)", "0xDEADBEEF", "deadbeef", ColumnKind::binary},
    {"image", "0x0102", "0102", ColumnKind::binary},
    {"char(5)", "ab", "ab   ", ColumnKind::text},
    {"varchar(20)", "Öl für 5 €", "Öl für 5 €", ColumnKind::text},
    {"varchar(20) collate cp1250", "Žluťoučký kůň", "Žluťoučký kůň", ColumnKind::text},
    {"varchar(20) collate cp1251", "Насос", "Насос", ColumnKind::text},
    {"varchar(20) collate utf8", "ポンプ 🛢", "ポンプ 🛢", ColumnKind::text},
    {"varchar(max)", "Öl", "Öl", ColumnKind::text},
    {"text", "Öl", "Öl", ColumnKind::text},
    {"nchar(4)", "ä", "ä   ", ColumnKind::text},
    {"nvarchar(30)", "Ventil ≤ 5 €, ポンプ, 🛢", "Ventil ≤ 5 €, ポンプ, 🛢", ColumnKind::text},
    {"nvarchar(30)", "", "", ColumnKind::text},
    {"nvarchar(max)", "Öl 🛢", "Öl 🛢", ColumnKind::text},
    {"nvarchar(max)", "", "", ColumnKind::text},
    {"ntext", "Öl 🛢", "Öl 🛢", ColumnKind::text},
    {"xml", "<a b=\"ü\">🛢</a>", "<a b=\"ü\">🛢</a>", ColumnKind::text},
    {"sql_variant", 17, "17", ColumnKind::text},
    {"sql_variant", "Öl", "Öl", ColumnKind::text},
});

class OdbcValues : public WireTest {};

TEST_F(OdbcValues, everyTypeHasItsExactText) {
  for (const Sample& sample : samples) {
    SCOPED_TRACE(sample.declaration + " "s + sample.text);
    const auto got = results(Answer().result({{"a", sample.declaration}}).row({sample.value}));
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].rows.at(0).at(0), sample.text);
    EXPECT_EQ(got[0].fields.at(0).kind, sample.kind);
  }
}

TEST_F(OdbcValues, everyTypeCanBeNull) {
  for (const Sample& sample : samples) {
    if (std::string(sample.declaration).ends_with("not null")) continue;
    SCOPED_TRACE(sample.declaration);
    EXPECT_EQ(text(Answer()
                       .result({{"before", "int"}, {"a", sample.declaration}, {"after", "nvarchar(5)"}})
                       .row({1, null, "x"})
                       .bitmapRow({2, null, "y"})),
              "before|a|after\n1|NULL|x\n2|NULL|y\n");
  }
}

TEST_F(OdbcValues, emptyTextIsNotNull) {
  EXPECT_EQ(value("nvarchar(9)", ""), "");
  EXPECT_EQ(value("varchar(9)", ""), "");
  EXPECT_EQ(value("nvarchar(9)", null), std::nullopt);
}

/// Every character except surrogates, in one text.
std::string allOfUnicode() {
  std::u16string wide;
  std::string all;
  for (char32_t c = 1; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    if (c < 0x80) {
      all += static_cast<char>(c);
    } else if (c < 0x800) {
      all += {static_cast<char>(0xC0 | c >> 6), static_cast<char>(0x80 | (c & 0x3F))};
    } else if (c < 0x10000) {
      all += {static_cast<char>(0xE0 | c >> 12), static_cast<char>(0x80 | (c >> 6 & 0x3F)),
              static_cast<char>(0x80 | (c & 0x3F))};
    } else {
      all += {static_cast<char>(0xF0 | c >> 18), static_cast<char>(0x80 | (c >> 12 & 0x3F)),
              static_cast<char>(0x80 | (c >> 6 & 0x3F)), static_cast<char>(0x80 | (c & 0x3F))};
    }
  }
  return all;
}

TEST_F(OdbcValues, everyCharacterArrives) {
  const std::string all = allOfUnicode();
  EXPECT_TRUE(value("nvarchar(max)", all) == all);
}

TEST_F(OdbcValues, aMegabyteArrivesWhole) {
  std::string megabyte;
  while (megabyte.size() < std::size_t{1024} * 1024) megabyte += "Ölstand ≤ 5 🛢; ";
  EXPECT_TRUE(value("nvarchar(max)", megabyte) == megabyte);
  EXPECT_TRUE(value("xml", "<a>" + megabyte + "</a>") == "<a>" + megabyte + "</a>");
}

TEST_F(OdbcValues, textsOfEveryLengthAroundAPartOfTheBuffer) {
  // 4,095 units fit into the buffer: pairs that end before, at and behind that position, and at every later one.
  for (const std::size_t units : {4093U, 4094U, 4095U, 4096U, 4097U, 8188U, 8189U, 8190U, 8191U, 8192U}) {
    for (const char* last : {"x", "🛢", "🛢🛢", "x🛢x"}) {
      const std::string text = std::string(units, 'a') + last;
      EXPECT_TRUE(value("nvarchar(max)", text) == text) << units << last;
    }
  }
  std::string pairs;
  for (int i = 0; i < 5000; ++i) pairs += "🛢";
  EXPECT_TRUE(value("nvarchar(max)", pairs) == pairs);
  EXPECT_TRUE(value("nvarchar(max)", "x" + pairs) == "x" + pairs);
}

TEST_F(OdbcValues, binaryValuesOfEveryLengthAroundAPartOfTheBuffer) {
  for (const std::size_t size : {8190U, 8191U, 8192U, 8193U, 16384U, 16385U, 100'000U}) {
    std::string bytes;
    std::string hex;
    for (std::size_t i = 0; i < size; ++i) {
      constexpr std::string_view digits = "0123456789abcdef";
      bytes += static_cast<char>(i % 251);
      hex += {digits[i % 251 / 16], digits[i % 251 % 16]};
    }
    EXPECT_TRUE(value("varbinary(max)", "0x" + hex) == hex) << size;
  }
}

TEST_F(OdbcValues, aSurrogateAloneBecomesTheReplacementCharacter) {
  EXPECT_EQ(value("nvarchar(9)", "a\xED\xA0\xBDz"), "a\uFFFDz");
  EXPECT_EQ(value("nvarchar(9)", "a\xED\xB2\x80"), "a\uFFFD");
  EXPECT_EQ(value("nvarchar(9)", "a\xED\xA0\xBD"), "a\uFFFD");
  const std::string longText(4094, 'x');
  EXPECT_TRUE(value("nvarchar(max)", longText + "\xED\xA0\xBDyz") == longText + "\uFFFDyz");
  EXPECT_TRUE(value("nvarchar(max)", longText + "\xED\xA0\xBD") == longText + "\uFFFD");
}

TEST_F(OdbcValues, aCharacterOfCodeZeroIsPartOfTheText) {
  EXPECT_EQ(value("nvarchar(9)", "a\0b"s), "a\0b"s);
  EXPECT_EQ(value("nvarchar(9)", "\0"s), "\0"s);
  EXPECT_EQ(value("varchar(9)", "a\0b"s), "a\0b"s);
}

TEST_F(OdbcValues, aThousandColumnsArriveInOrder) {
  std::vector<tds::Column> columns;
  std::vector<tds::Value> row;
  for (int i = 0; i < 1000; ++i) {
    columns.emplace_back("c" + std::to_string(i), "int");
    row.emplace_back(i);
  }
  const auto got = results(Answer().result(columns).row(row));
  ASSERT_EQ(got.at(0).rows.at(0).size(), 1000U);
  for (std::size_t i = 0; i < 1000; ++i) ASSERT_EQ(got[0].rows[0][i], std::to_string(i));
}

TEST_F(OdbcValues, namesOfColumnsAreWhole) {
  const std::string longest(128, 'n');
  const auto got = results(Answer().result({{"", "int"}, {"Größe 🛢", "int"}, {longest, "int"}}));
  ASSERT_EQ(got.at(0).fields.size(), 3U);
  EXPECT_EQ(got[0].fields[0].name, "");
  EXPECT_EQ(got[0].fields[1].name, "Größe 🛢");
  EXPECT_EQ(got[0].fields[2].name, longest);
}

}  // namespace
}  // namespace korvel::test
